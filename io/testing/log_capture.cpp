#include "io/testing/log_capture.h"

#include <algorithm>

namespace kesta::testing {

namespace {
// The output function is a plain pointer without user data, so the active capture is global.
LogCapture* g_active_capture = nullptr;
std::string line_of(std::string_view level, std::string_view message)
{
    return std::string(level) + ": " + std::string(message);
}
}  // namespace

LogCapture::LogCapture() : previous_(g_log_system)
{
    g_active_capture = this;
    log_.SetOutputFunction(&LogCapture::Record);
    g_log_system = &log_;
}

LogCapture::~LogCapture()
{
    g_log_system = previous_;
    g_active_capture = nullptr;
}

void LogCapture::Record(const std::string& message, const std::string& category, const std::string&, std::uint32_t,
                        bool)
{
    LogCapture* capture = g_active_capture;
    if (!capture)
        return;
    std::lock_guard guard(capture->lock_);
    capture->lines_.push_back(line_of(category, message));
}

std::vector<std::string> LogCapture::Lines() const
{
    std::lock_guard guard(lock_);
    return lines_;
}

bool LogCapture::Contains(std::string_view level, std::string_view message) const { return Count(level, message) > 0; }

std::size_t LogCapture::Count(std::string_view level, std::string_view message) const
{
    std::lock_guard guard(lock_);
    return static_cast<std::size_t>(std::count(lines_.begin(), lines_.end(), line_of(level, message)));
}

void LogCapture::Clear()
{
    std::lock_guard guard(lock_);
    lines_.clear();
}

}  // namespace kesta::testing
