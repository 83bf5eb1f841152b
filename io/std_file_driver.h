#pragma once
// The operating system's files, optionally below a base folder. A sandboxed driver refuses paths
// that climb out of its base.

#include <cstdio>
#include <string>

#include "io/file_driver.h"

namespace kesta {

class CFileHandle final : public FileHandle {
public:
    CFileHandle(std::shared_ptr<FileDriver> owner, std::FILE* stream) : FileHandle(std::move(owner)), file(stream) {}
    ~CFileHandle() override { CloseThroughDriver(); }

    std::FILE* file;  // null once closed
};

class StdFileDriver : public FileDriver {
public:
    explicit StdFileDriver(std::string base = {}, bool sandboxed = false)
        : base_path(std::move(base)), sandbox(sandboxed)
    {
    }

    std::string MapToAbsolute(std::string_view path) override;
    std::string MapToRelative(std::string_view path) override;
    std::uint32_t GetCaps() override;
    std::shared_ptr<FileHandle> Open(std::string_view path, std::uint32_t mode) override;
    void Close(FileHandle& handle) override;
    bool Delete(std::string_view path) override;
    std::int64_t Tell(FileHandle& handle) override;
    std::int64_t Seek(FileHandle& handle, std::int64_t offset, int origin) override;
    std::uint64_t Size(FileHandle& handle) override;
    bool IsEOF(FileHandle& handle) override;
    std::uint64_t Read(FileHandle& handle, void* buffer, std::uint64_t size) override;
    std::uint64_t Write(FileHandle& handle, const void* buffer, std::uint64_t size) override;
    std::vector<DirEntry> Dir(std::string_view path, std::string_view wildcard, std::uint32_t flags) override;
    bool MkDir(std::string_view path) override;
    bool IsDir(std::string_view path) override;

    const std::string base_path;
    const bool sandbox;

private:
    // False when the sandbox refuses the path.
    bool Allowed(std::string_view path) const;
    std::string EffectivePath(std::string_view path) const;
};

}  // namespace kesta
