#pragma once

#include <atomic>
#include <chrono>
#include <functional>

namespace kesta::vrsim {

// Paces frames at the display's refresh rate as a compositor does: each wait returns at the next vsync.
// A frame that started late resynchronises instead of trying to catch up, so a slow application drops
// frames rather than getting a burst of short ones.
class FramePacer {
public:
    using Clock = std::chrono::steady_clock;

    // Where the pacer reads the time and how it waits: the steady clock and the thread's sleep, or
    // a scripted clock in tests.
    struct TimeSource {
        std::function<Clock::time_point()> now;
        std::function<void(Clock::time_point)> sleep_until;
    };

    FramePacer(double refresh_rate, bool paced);
    FramePacer(double refresh_rate, bool paced, TimeSource time);

    // Blocks until the next vsync when pacing is on; returns at once otherwise.
    void WaitForNextFrame();

    // Safe from any thread: other threads ask for the time since the last vsync.
    Clock::time_point last_vsync() const { return Clock::time_point(Clock::duration(last_vsync_.load())); }
    Clock::duration period() const { return period_; }
    // Time until the next vsync, zero when unpaced or overdue.
    double SecondsRemaining() const;

private:
    const TimeSource time_;
    const Clock::duration period_;
    const bool paced_;
    std::atomic<Clock::rep> last_vsync_;  // written by the thread that waits
};

}  // namespace kesta::vrsim
