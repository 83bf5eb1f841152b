#pragma once
// A reusable byte block that whole files are read into: the storage only grows, so one buffer
// serves many reads without reallocating.

#include <cstdint>
#include <vector>

namespace kesta {

struct DataBuffer {
    std::vector<std::uint8_t> storage;
    std::uint64_t size = 0;    // bytes of storage in use
    std::uint64_t cursor = 0;  // position of the reader or writer that owns the buffer
};

}  // namespace kesta
