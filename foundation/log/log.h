#pragma once
// The process-wide log. A message goes at once to the output function and to a ring of the latest
// text; listeners receive messages in batches on the timer thread, at most one batch per 5 ms, so a
// log call on a time-critical thread never runs their code.

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/format.h"
#include "foundation/time/clock.h"

namespace kesta {

class timer_thread;

struct LogMessage {
    std::string timestamp;
    std::string message;
    std::string category;
    std::string details;
};

using LogListener = std::function<void(const std::vector<LogMessage>&)>;
using LogOutputFunction = void (*)(const std::string& message, const std::string& category, const std::string& details,
                                   std::uint32_t output_mask, bool output_details);

// Mask bits of the default output function.
enum LogLevelBit : std::uint32_t { kLogNormal = 1, kLogWarn = 2, kLogError = 4, kLogDebug = 8 };

// "h:m:s:ms" of an engine time, the milliseconds zero-padded to three digits.
std::string MakeLogTimestamp(time_ns now);

class LogSystem {
public:
    static constexpr std::size_t kTailSize = 8192;
    static constexpr time_ns kFlushDelay = 5'000'000;

    LogSystem();
    ~LogSystem();
    LogSystem(const LogSystem&) = delete;
    LogSystem& operator=(const LogSystem&) = delete;

    void Log(std::string_view message, std::string_view category, std::string_view details = {});

    void SetOutputMask(std::uint32_t mask) { output_mask_ = mask; }
    void SetOutputDetails(bool details) { output_details_ = details; }
    void SetOutputFunction(LogOutputFunction output) { output_ = output; }
    std::uint32_t GetOutputMask() const { return output_mask_; }

    // The latest text, oldest first, at most kTailSize bytes.
    std::string GetTail() const;
    void Connect(LogListener listener);

    // The timer that runs the flush; null (the default) means the global g_timer_thread. With no
    // timer at all, listeners are called at once on the logging thread.
    void SetFlushTimer(timer_thread* timer);

    // The console output used unless another is set.
    static void DefaultOutput(const std::string& message, const std::string& category, const std::string& details,
                              std::uint32_t output_mask, bool output_details);

private:
    // Shared with the scheduled flush, which must not reach a destroyed log.
    struct FlushLink {
        std::mutex lock;
        LogSystem* owner = nullptr;
    };

    void ScheduleFlush();
    void Flush();

    std::atomic<LogOutputFunction> output_{&DefaultOutput};
    mutable std::mutex listeners_lock_;
    std::vector<std::shared_ptr<LogListener>> listeners_;
    std::mutex pending_lock_;
    std::vector<LogMessage> pending_;
    bool flush_scheduled_ = false;  // guarded by pending_lock_
    mutable std::mutex tail_lock_;
    std::array<char, kTailSize + 1> tail_{};
    std::size_t tail_position_ = 0;
    bool tail_wrapped_ = false;
    std::atomic<std::uint32_t> output_mask_{kLogWarn | kLogError};
    std::atomic<bool> output_details_{false};
    std::atomic<timer_thread*> flush_timer_{nullptr};
    std::shared_ptr<FlushLink> flush_link_;
};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern LogSystem* g_log_system;

// Free functions on the global instance. Nothing is logged while no instance is set.
void log(std::string_view message, std::string_view details = {});
void warn(std::string_view message, std::string_view details = {});
void error(std::string_view message, std::string_view details = {});
void debug(std::string_view message, std::string_view details = {});

}  // namespace kesta
