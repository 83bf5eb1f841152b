#include "foundation/time/clock.h"

#include <time.h>

namespace kesta {

namespace {

time_ns monotonic_ns()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<time_ns>(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

// Taken during static initialisation, so every module of the process starts from a nearby origin.
const time_ns g_clock_origin = monotonic_ns();

}  // namespace

time_ns time_now() { return monotonic_ns() - g_clock_origin; }

}  // namespace kesta
