#pragma once
// A source of files: the operating system's, named memory blocks, an archive. The filesystem maps
// virtual paths onto drivers; a driver opens handles and carries out every operation on them.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "io/file_handle.h"

namespace kesta {

// Open modes.
enum FileMode : std::uint32_t { kFileRead = 0, kFileWrite = 1 };

// Capability bits of GetCaps.
enum FileDriverCaps : std::uint32_t {
    kCapsCaseSensitive = 1u << 0,
    kCapsReadable = 1u << 1,
    kCapsWritable = 1u << 2,
    kCapsSeekable = 1u << 3,
    kCapsDirectoryTree = 1u << 5,
};

// Which kinds of entry a directory listing returns.
enum DirFlags : std::uint32_t { kDirFiles = 1u << 0, kDirDirectories = 1u << 1 };

struct DirEntry {
    std::string name;  // the bare name, without the listed folder
    bool is_directory = false;
};

class FileDriver : public std::enable_shared_from_this<FileDriver> {
public:
    FileDriver() = default;
    FileDriver(const FileDriver&) = delete;
    FileDriver& operator=(const FileDriver&) = delete;
    virtual ~FileDriver() = default;

    // SHA-1 of the whole content as 40 lowercase hexadecimal digits; empty if it cannot be read.
    virtual std::string FileHash(std::string_view path);
    virtual std::string MapToAbsolute(std::string_view path) { return std::string(path); }
    virtual std::string MapToRelative(std::string_view path) { return std::string(path); }
    virtual std::uint32_t GetCaps() = 0;
    virtual std::shared_ptr<FileHandle> Open(std::string_view path, std::uint32_t mode) = 0;
    virtual void Close(FileHandle& handle) = 0;
    virtual bool Delete(std::string_view path) = 0;
    virtual std::int64_t Tell(FileHandle& handle) = 0;
    virtual std::int64_t Seek(FileHandle& handle, std::int64_t offset, int origin) = 0;
    virtual std::uint64_t Size(FileHandle& handle) = 0;
    virtual bool IsEOF(FileHandle& handle) = 0;
    virtual std::uint64_t Read(FileHandle& handle, void* buffer, std::uint64_t size) = 0;
    virtual std::uint64_t Write(FileHandle& handle, const void* buffer, std::uint64_t size) = 0;
    virtual std::vector<DirEntry> Dir(std::string_view path, std::string_view wildcard, std::uint32_t flags);
    virtual bool MkDir(std::string_view path) = 0;
    virtual bool IsDir(std::string_view path);
    // A driver layered over another one could expose it here; none of ours is.
    virtual std::shared_ptr<FileDriver> GetSubDriver() { return {}; }
    virtual std::string GetSubPath() { return {}; }
};

}  // namespace kesta
