#include "foundation/log/log.h"

#include <cstdio>

#include "foundation/format.h"
#include "foundation/time/clock.h"

namespace kesta {

LogSystem* g_log_system = nullptr;

namespace {

std::string make_timestamp(time_ns now)
{
    const std::int64_t ms_total = now / 1'000'000;
    const std::int64_t seconds = ms_total / 1000;
    char millis[16];
    std::snprintf(millis, sizeof millis, "%03d", static_cast<int>(ms_total % 1000));
    return format("%1:%2:%3:%4") << seconds / 3600 << (seconds / 60) % 60 << seconds % 60 << millis;
}

std::uint32_t category_bit(std::string_view category)
{
    if (category == "warn")
        return kLogWarn;
    if (category == "error")
        return kLogError;
    if (category == "debug")
        return kLogDebug;
    return kLogNormal;
}

void log_with(std::string_view category, std::string_view message, std::string_view details)
{
    if (g_log_system)
        g_log_system->Log(message, category, details);
}

}  // namespace

LogSystem::LogSystem() = default;
LogSystem::~LogSystem() = default;

void LogSystem::Log(std::string_view message, std::string_view category, std::string_view details)
{
    if (message.empty())
        return;
    const std::string timestamp = make_timestamp(time_now());
    output_(std::string(message), std::string(category), std::string(details), output_mask_, output_details_);
    {
        std::lock_guard lock(tail_lock_);
        auto append = [this](char c) {
            tail_[tail_position_++] = c;
            if (tail_position_ == kTailSize) {
                tail_position_ = 0;
                tail_wrapped_ = true;
            }
        };
        for (char c : message)
            append(c);
        append('\n');
    }
}

std::string LogSystem::GetTail() const
{
    std::lock_guard lock(tail_lock_);
    if (!tail_wrapped_)
        return std::string(tail_.data(), tail_position_);
    std::string text(tail_.data() + tail_position_, kTailSize - tail_position_);
    text.append(tail_.data(), tail_position_);
    return text;
}

void LogSystem::Connect(LogListener listener)
{
    std::lock_guard lock(listeners_lock_);
    listeners_.push_back(std::make_shared<LogListener>(std::move(listener)));
}

void LogSystem::DefaultOutput(const std::string& message, const std::string& category, const std::string& details,
                              std::uint32_t output_mask, bool output_details)
{
    if (!(category_bit(category) & output_mask))
        return;
    std::string line = "(" + make_timestamp(time_now()) + ") ";
    if (!category.empty())
        line += category + ": ";
    line += message;
    if (output_details && !details.empty())
        line += "\n  Details:\n" + details;
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

void log(std::string_view message, std::string_view details) { log_with("", message, details); }
void warn(std::string_view message, std::string_view details) { log_with("warn", message, details); }
void error(std::string_view message, std::string_view details) { log_with("error", message, details); }
void debug(std::string_view message, std::string_view details) { log_with("debug", message, details); }

}  // namespace kesta
