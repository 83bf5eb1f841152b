#pragma once
// What one frame drew, reset at the start of each frame and read by the debugger after it.

#include <cstddef>

#include "foundation/time/clock.h"

namespace kesta {

struct RenderFrameStatistics {
    time_ns start = 0;
    std::size_t primitives_drawn = 0;   // "Render primitive drawn: %zd"
    std::size_t lines = 0;              // "Line drawn: %zd"
    std::size_t triangles = 0;          // "Triangle drawn: %zd"
    std::size_t instanced_batches = 0;  // "Instanced batch count: %zd"
    std::size_t instances = 0;          // "Instanced batch size: %zd"
};

}  // namespace kesta
