#include "plugins/vr/simulator/frame_pacer.h"

#include <thread>

namespace kesta::vrsim {

FramePacer::FramePacer(double refresh_rate, bool paced)
    : period_(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1.0 / refresh_rate))),
      paced_(paced),
      last_vsync_(Clock::now().time_since_epoch().count())
{
}

void FramePacer::WaitForNextFrame()
{
    const Clock::time_point now = Clock::now();
    if (!paced_) {
        last_vsync_ = now.time_since_epoch().count();
        return;
    }
    const Clock::time_point last = last_vsync();
    Clock::time_point next = last + period_;
    if (next < now) {
        // Missed one or more vsyncs: wait for the next one on the same grid.
        const auto missed = (now - last) / period_;
        next = last + period_ * (missed + 1);
    }
    std::this_thread::sleep_until(next);
    last_vsync_ = next.time_since_epoch().count();
}

double FramePacer::SecondsRemaining() const
{
    if (!paced_)
        return 0.0;
    const auto remaining = last_vsync() + period_ - Clock::now();
    return remaining.count() > 0 ? std::chrono::duration<double>(remaining).count() : 0.0;
}

}  // namespace kesta::vrsim
