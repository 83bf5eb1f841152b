#pragma once
// Durations of the frames of a run, summed up as a person reads them: mean and 99th percentile.

#include <cstdint>
#include <vector>

#include "foundation/time/clock.h"

namespace kesta {

class FrameTimeStats {
public:
    void Add(time_ns duration) { durations_.push_back(duration); }
    std::uint64_t Count() const { return durations_.size(); }
    // 0 with no frame.
    time_ns Mean() const;
    // The nearest-rank percentile: the smallest duration that at least `percent` of the frames do
    // not exceed. 0 with no frame.
    time_ns Percentile(double percent) const;

private:
    std::vector<time_ns> durations_;
};

}  // namespace kesta
