#include "io/whole_file_reader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <stdexcept>

namespace kesta {

namespace {

// Larger claims are believed only as data arrives, doubling the room each time it fills.
constexpr std::uint64_t kFirstRoomLimit = 64u << 20;
constexpr std::uint64_t kSmallestGrowth = 64u << 10;
constexpr std::size_t kProbeSize = 4096;

}  // namespace

WholeFileResult ReadWholeFile(FileHandle& handle, const GrowFunction& grow)
{
    WholeFileResult result;
    try {
        std::uint64_t room = std::min(handle.GetSize(), kFirstRoomLimit);
        std::uint8_t* data = room > 0 ? grow(room) : nullptr;
        for (;;) {
            if (result.size < room) {
                const std::uint64_t count = handle.Read(data + result.size, room - result.size);
                if (count == 0)
                    break;
                result.size += count;
                continue;
            }
            // The room is full. A small read on the stack tells whether more follows, so a file of
            // exactly its claimed size is never moved to a larger block.
            std::array<std::uint8_t, kProbeSize> probe;
            const std::uint64_t count = handle.Read(probe.data(), probe.size());
            if (count == 0)
                break;
            room = std::max({room * 2, result.size + count, kSmallestGrowth});
            data = grow(room);
            std::memcpy(data + result.size, probe.data(), count);
            result.size += count;
        }
        // A read that stops short of the end is an error of the medium, not the end of the file.
        result.complete = handle.IsEOF();
    } catch (const std::bad_alloc&) {
        result.out_of_memory = true;
    } catch (const std::length_error&) {
        result.out_of_memory = true;
    }
    return result;
}

}  // namespace kesta
