#pragma once
// A window on a range of another handle, read in place: an archive's stored entry is served this
// way without copying it. Several segments over one source may be read from different threads;
// each read restores the source's position, so neither the segments nor other users of the
// source see each other's cursors move.

#include "io/file_handle.h"

namespace kesta {

class FileHandleSegment final : public FileHandle {
public:
    FileHandleSegment(std::shared_ptr<FileDriver> owner, std::shared_ptr<FileHandle> source_handle, std::uint64_t start,
                      std::uint64_t length)
        : FileHandle(std::move(owner)), source(std::move(source_handle)), offset(start), size(length)
    {
    }
    ~FileHandleSegment() override { CloseThroughDriver(); }

    std::uint64_t GetSize() override { return size; }
    bool IsEOF() override;
    std::int64_t Tell() override;
    // A target outside the window resets the cursor to 0 and gives -1; otherwise 0.
    std::int64_t Seek(std::int64_t offset_to_apply, int origin) override;
    std::uint64_t Read(void* buffer, std::uint64_t count) override;
    // Writes into the source at the window's position; the window does not limit writes.
    std::uint64_t Write(const void* buffer, std::uint64_t count) override;

    const std::shared_ptr<FileHandle> source;
    const std::uint64_t offset;  // start of the window in the source
    const std::uint64_t size;
    std::uint64_t cursor = 0;

private:
    template <typename Transfer>
    std::uint64_t AtWindowPosition(Transfer transfer);
};

}  // namespace kesta
