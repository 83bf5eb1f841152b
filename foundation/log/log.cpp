#include "foundation/log/log.h"

#include <cinttypes>
#include <cstdio>

#include "foundation/time/timer_thread.h"

namespace kesta {

LogSystem* g_log_system = nullptr;

namespace {

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
    if (LogSystem* system = g_log_system)
        system->Log(message, category, details);
}

// Set while this thread delivers a batch without a timer, so that a listener's own line waits for
// the running delivery instead of recursing into it.
thread_local bool t_flushing_inline = false;

}  // namespace

std::string MakeLogTimestamp(time_ns now)
{
    const std::int64_t ms_total = now / 1'000'000;
    const std::int64_t seconds = ms_total / 1000;
    char text[64];
    std::snprintf(text, sizeof text, "%" PRId64 ":%" PRId64 ":%" PRId64 ":%03d", seconds / 3600, (seconds / 60) % 60,
                  seconds % 60, static_cast<int>(ms_total % 1000));
    return text;
}

LogSystem::LogSystem() : flush_link_(std::make_shared<FlushLink>()) { flush_link_->owner = this; }

LogSystem::~LogSystem()
{
    // Waits for a flush that runs right now; a later one finds no owner.
    std::lock_guard lock(flush_link_->lock);
    flush_link_->owner = nullptr;
}

void LogSystem::SetFlushTimer(timer_thread* timer) { flush_timer_ = timer; }

void LogSystem::Log(std::string_view message, std::string_view category, std::string_view details)
{
    if (message.empty())
        return;
    std::string timestamp = MakeLogTimestamp(time_now());
    const std::string message_text(message);
    const std::string category_text(category);
    const std::string details_text(details);
    output_.load()(message_text, category_text, details_text, output_mask_, output_details_);
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
    bool schedule = false;
    {
        std::lock_guard pending_lock(pending_lock_);
        bool has_listeners = false;
        {
            std::lock_guard listeners_lock(listeners_lock_);
            has_listeners = !listeners_.empty();
        }
        if (has_listeners) {
            pending_.push_back({std::move(timestamp), message_text, category_text, details_text});
            if (!flush_scheduled_) {
                flush_scheduled_ = true;
                schedule = true;
            }
        }
    }
    // Outside pending_lock: the timer thread holds its own lock while it flushes, and a flush takes
    // pending_lock.
    if (schedule)
        ScheduleFlush();
}

void LogSystem::ScheduleFlush()
{
    timer_thread* timer = flush_timer_.load();
    if (!timer)
        timer = g_timer_thread;
    if (!timer) {
        if (t_flushing_inline)
            return;
        // Also when a listener throws: the thread and this log must not stay marked as flushing.
        struct InlineFlush {
            LogSystem& log;
            explicit InlineFlush(LogSystem& owner) : log(owner) { t_flushing_inline = true; }
            ~InlineFlush()
            {
                t_flushing_inline = false;
                std::lock_guard lock(log.pending_lock_);
                log.flush_scheduled_ = false;
            }
            InlineFlush(const InlineFlush&) = delete;
            InlineFlush& operator=(const InlineFlush&) = delete;
        } inline_flush(*this);
        Flush();
        return;
    }
    timer->run_once(
        [link = flush_link_] {
            std::lock_guard lock(link->lock);
            if (link->owner)
                link->owner->Flush();
        },
        kFlushDelay);
}

void LogSystem::Flush()
{
    for (;;) {
        std::vector<LogMessage> batch;
        {
            std::lock_guard lock(pending_lock_);
            batch.swap(pending_);
            // Cleared together with the swap, so that every line after it schedules a new flush.
            flush_scheduled_ = false;
            if (batch.empty())
                return;
            // Delivered inline, a listener's own lines join the next round of this loop.
            if (t_flushing_inline)
                flush_scheduled_ = true;
        }
        std::vector<std::shared_ptr<LogListener>> listeners;
        {
            std::lock_guard lock(listeners_lock_);
            listeners = listeners_;
        }
        for (const auto& listener : listeners)
            (*listener)(batch);
        if (!t_flushing_inline)
            return;
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
    std::string line(1, '(');
    line += MakeLogTimestamp(time_now());
    line += ") ";
    if (!category.empty()) {
        line += category;
        line += ": ";
    }
    line += message;
    if (output_details && !details.empty()) {
        line += "\n  Details:\n";
        line += details;
    }
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

void log(std::string_view message, std::string_view details) { log_with("", message, details); }
void warn(std::string_view message, std::string_view details) { log_with("warn", message, details); }
void error(std::string_view message, std::string_view details) { log_with("error", message, details); }
void debug(std::string_view message, std::string_view details) { log_with("debug", message, details); }

}  // namespace kesta
