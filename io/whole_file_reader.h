#pragma once
// Reads a handle from its position to its end into memory that grows as data arrives. What the handle
// says its size is only sizes the first allocation, and only up to a bound: a handle may claim more
// than it can deliver, or nothing at all, like files under /proc that have content.

#include <cstdint>
#include <functional>

#include "io/file_handle.h"

namespace kesta {

// Makes room for at least `bytes` bytes and gives the start of the room; earlier bytes are kept.
using GrowFunction = std::function<std::uint8_t*(std::uint64_t bytes)>;

struct WholeFileResult {
    bool complete = false;  // the handle was read to its end
    bool out_of_memory = false;
    std::uint64_t size = 0;  // bytes read
};

// Never throws: an allocation failure in `grow` is reported as out_of_memory.
WholeFileResult ReadWholeFile(FileHandle& handle, const GrowFunction& grow);

}  // namespace kesta
