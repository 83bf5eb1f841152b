#pragma once
#include <cstdint>

namespace kesta {

// Signed nanoseconds: durations and the engine clock.
using time_ns = std::int64_t;

// Nanoseconds since the engine clock started (the first use in this process).
time_ns time_now();

}  // namespace kesta
