#include "apps/viewer/frame_time_stats.h"

#include <algorithm>
#include <cmath>

namespace kesta {

time_ns FrameTimeStats::Mean() const
{
    if (durations_.empty())
        return 0;
    // Summed as double: a long run of nanosecond durations stays far from overflow either way, and
    // the mean is a display value.
    double sum = 0.0;
    for (const time_ns d : durations_)
        sum += static_cast<double>(d);
    return static_cast<time_ns>(std::llround(sum / static_cast<double>(durations_.size())));
}

time_ns FrameTimeStats::Percentile(double percent) const
{
    if (durations_.empty())
        return 0;
    std::vector<time_ns> sorted = durations_;
    std::sort(sorted.begin(), sorted.end());
    const double rank = std::ceil(std::clamp(percent, 0.0, 100.0) / 100.0 * static_cast<double>(sorted.size()));
    const std::size_t index = rank < 1.0 ? 0 : static_cast<std::size_t>(rank) - 1;
    return sorted[std::min(index, sorted.size() - 1)];
}

}  // namespace kesta
