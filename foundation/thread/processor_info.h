#pragma once
// Processor counts of the machine, as far as this process may use them. Taken once per process.

#include <cstdint>

namespace kesta {

struct ProcessorCounts {
    std::uint64_t logical = 1;  // hardware threads this process may run on
    std::uint64_t cores = 1;    // distinct physical cores among them
};

// Both counts are 1 when the system cannot be queried.
const ProcessorCounts& processor_counts();

}  // namespace kesta
