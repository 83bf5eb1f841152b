#include "io/file_handle_segment.h"

#include <algorithm>

namespace kesta {

bool FileHandleSegment::IsEOF()
{
    std::lock_guard guard(lock);
    return cursor >= size;
}

std::int64_t FileHandleSegment::Tell()
{
    std::lock_guard guard(lock);
    return static_cast<std::int64_t>(cursor);
}

std::int64_t FileHandleSegment::Seek(std::int64_t offset_to_apply, int origin)
{
    std::lock_guard guard(lock);
    const auto window = static_cast<std::int64_t>(size);
    const std::int64_t target = origin == kSeekCurrent ? static_cast<std::int64_t>(cursor) + offset_to_apply
                                : origin == kSeekEnd   ? window - offset_to_apply
                                                       : offset_to_apply;
    if (target < 0 || target > window) {
        cursor = 0;
        return -1;
    }
    cursor = static_cast<std::uint64_t>(target);
    return 0;
}

template <typename Transfer>
std::uint64_t FileHandleSegment::AtWindowPosition(Transfer transfer)
{
    std::lock_guard guard(lock);
    if (!source)
        return 0;
    // The source's lock is held across seek, transfer and seek back, so that no other reader of
    // the source runs in between.
    std::lock_guard source_guard(source->lock);
    const std::int64_t saved = source->Tell();
    if (source->Seek(static_cast<std::int64_t>(offset + cursor), kSeekStart) != 0)
        return 0;
    const std::uint64_t count = transfer();
    cursor += count;
    source->Seek(saved, kSeekStart);
    return count;
}

std::uint64_t FileHandleSegment::Read(void* buffer, std::uint64_t count)
{
    return AtWindowPosition([&] {
        const std::uint64_t available = cursor < size ? size - cursor : 0;
        return source->Read(buffer, std::min(count, available));
    });
}

std::uint64_t FileHandleSegment::Write(const void* buffer, std::uint64_t count)
{
    return AtWindowPosition([&] { return source->Write(buffer, count); });
}

}  // namespace kesta
