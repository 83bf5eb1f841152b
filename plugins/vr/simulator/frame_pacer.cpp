#include "plugins/vr/simulator/frame_pacer.h"

#include <thread>

namespace kesta::vrsim {

FramePacer::FramePacer(double refresh_rate, bool paced)
    : FramePacer(refresh_rate, paced,
                 TimeSource{&Clock::now, [](Clock::time_point until) { std::this_thread::sleep_until(until); }})
{
}

FramePacer::FramePacer(double refresh_rate, bool paced, TimeSource time)
    : time_(std::move(time)),
      period_(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1.0 / refresh_rate))),
      paced_(paced),
      last_vsync_(time_.now().time_since_epoch().count())
{
}

void FramePacer::WaitForNextFrame()
{
    const Clock::time_point now = time_.now();
    if (!paced_) {
        last_vsync_ = now.time_since_epoch().count();
        return;
    }
    const Clock::time_point last = last_vsync();
    Clock::time_point next = last + period_;
    if (next < now) {
        // Missed one or more vsyncs: wait for the first one on the same grid that is not in the past.
        const auto since = now - last;
        next = last + period_ * (since / period_ + (since % period_ != Clock::duration::zero() ? 1 : 0));
    }
    time_.sleep_until(next);
    last_vsync_ = next.time_since_epoch().count();
}

double FramePacer::SecondsRemaining() const
{
    if (!paced_)
        return 0.0;
    const auto remaining = last_vsync() + period_ - time_.now();
    return remaining.count() > 0 ? std::chrono::duration<double>(remaining).count() : 0.0;
}

}  // namespace kesta::vrsim
