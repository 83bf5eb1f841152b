#pragma once
// Read-only files from a ZIP archive that is itself read through another handle. Stored entries
// are served in place as segments of the archive; compressed entries are inflated once into a
// private memory cache and shared by every handle open on them, until the last one closes. Plain
// deflated entries are inflated whole with libdeflate; minizip reads the directory, encrypted entries
// and any other compression method.
//
// Lock order: the driver's lock, then a handle's lock.

#include <minizip/unzip.h>

#include <map>
#include <mutex>
#include <string>

#include "io/file_driver.h"
#include "io/memory_file_driver.h"
#include "io/zip_deflated_entry.h"
#include "io/zip_encrypted_entry.h"

namespace kesta {

// An inflated entry held in the cache, with the number of handles open on it.
struct UnzippedEntry {
    std::string name;
    std::uint32_t use_count = 0;
};

class ZipHandle final : public FileHandle {
public:
    ZipHandle(std::shared_ptr<FileDriver> owner, std::shared_ptr<FileHandle> cached, UnzippedEntry* record)
        : FileHandle(std::move(owner)), source(std::move(cached)), entry(record), is_cached(true)
    {
    }
    ~ZipHandle() override { CloseThroughDriver(); }

    std::shared_ptr<FileHandle> source;  // on the cache; cleared at close
    UnzippedEntry* entry;
    bool is_cached;
};

class ZipFileDriver : public FileDriver {
public:
    // An empty handle, or one that holds no readable archive, leaves the driver without an archive:
    // every open then fails.
    explicit ZipFileDriver(std::shared_ptr<FileHandle> archive_handle, std::string archive_password = {});
    ~ZipFileDriver() override;

    bool HasArchive() const { return archive_ != nullptr; }

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
    // The files and folders directly inside a folder of the archive whose names match the wildcard.
    // Folders are listed also when the archive has no entry of their own, only files inside them.
    std::vector<DirEntry> Dir(std::string_view path, std::string_view wildcard, std::uint32_t flags) override;
    bool MkDir(std::string_view path) override;
    bool IsDir(std::string_view path) override;

private:
    std::shared_ptr<FileHandle> MapStoredEntry(const std::string& name, const unz_file_info64& info);
    // Leaves the entry's bytes in the cache under its name, or logs and gives false.
    bool InflateToCache(const std::string& name, const unz_file_info64& info);
    EntryReadResult ReadPlainEntry(std::vector<std::uint8_t>& bytes);
    // The whole-entry decompressor, made on first use; false when it cannot be made.
    bool Inflater();

    std::mutex lock_;
    std::shared_ptr<FileHandle> archive_handle_;
    zlib_filefunc64_def io_;
    unzFile archive_ = nullptr;
    const std::string password_;
    std::map<std::string, UnzippedEntry> opened_files_;
    const std::shared_ptr<MemoryFileDriver> cache_;
    Decompressor decompressor_;  // made at the first deflated entry; used under lock_
};

}  // namespace kesta
