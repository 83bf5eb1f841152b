#pragma once
// Named blocks of memory served as files. A file lives until it is deleted, and after that as long
// as a handle is open on it.

#include <mutex>
#include <string>
#include <vector>

#include "io/file_driver.h"

namespace kesta {

struct MemoryFile {
    std::string name;
    std::vector<std::uint8_t> data;  // capacity: may run past the logical size
    std::int64_t size = 0;           // the file's logical size
};

class IOMemoryHandle final : public FileHandle {
public:
    IOMemoryHandle(std::shared_ptr<FileDriver> owner, std::shared_ptr<MemoryFile> memory_file, std::uint32_t open_mode)
        : FileHandle(std::move(owner)), file(std::move(memory_file)), mode(open_mode)
    {
    }
    ~IOMemoryHandle() override { CloseThroughDriver(); }

    std::shared_ptr<MemoryFile> file;
    std::int64_t cursor = 0;
    std::uint32_t mode;
};

class MemoryFileDriver : public FileDriver {
public:
    // Writing past the end grows the block by this much beyond what is needed, so that a file
    // written in many small pieces is not reallocated for each one.
    static constexpr std::size_t kGrowthStep = 16384;

    std::uint32_t GetCaps() override;
    // Reading needs an existing file; writing creates a missing one and keeps an existing one's
    // content, starting at its beginning.
    std::shared_ptr<FileHandle> Open(std::string_view path, std::uint32_t mode) override;
    // Makes a file that takes over the bytes without copying them, in place of any file of that
    // name (handles open on the old one keep its content).
    void AddFile(std::string_view name, std::vector<std::uint8_t> bytes);
    void Close(FileHandle& handle) override;
    bool Delete(std::string_view path) override;
    std::int64_t Tell(FileHandle& handle) override;
    // Clamps the cursor into the file; the result is 0 whenever there is a file.
    std::int64_t Seek(FileHandle& handle, std::int64_t offset, int origin) override;
    std::uint64_t Size(FileHandle& handle) override;
    bool IsEOF(FileHandle& handle) override;
    std::uint64_t Read(FileHandle& handle, void* buffer, std::uint64_t size) override;
    std::uint64_t Write(FileHandle& handle, const void* buffer, std::uint64_t size) override;
    bool MkDir(std::string_view path) override;

private:
    std::mutex lock_;
    std::vector<std::shared_ptr<MemoryFile>> files_;
};

}  // namespace kesta
