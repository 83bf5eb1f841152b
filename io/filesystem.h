#pragma once
// Virtual paths resolved through mounted file drivers. A path that begins with a mounted prefix
// goes to that prefix's driver, without the prefix; any other path is offered to the root drivers
// in order of mounting.
//
// The mount lists are not locked: mount and unmount while nothing reads files (at start-up).
// Open and the helpers may then be called from any thread.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "io/data_buffer.h"
#include "io/file_driver.h"
#include "io/file_handle.h"

namespace kesta {

class Filesystem {
public:
    struct MountEntry {
        std::string prefix;
        std::shared_ptr<FileDriver> driver;
    };

    void Mount(const std::shared_ptr<FileDriver>& driver);
    void Mount(const std::shared_ptr<FileDriver>& driver, std::string_view prefix);
    void Unmount(const std::shared_ptr<FileDriver>& driver);
    void Unmount(std::string_view prefix);
    void UnmountAll();

    // The first mount entry, in order of mounting, whose prefix begins the path. A shorter prefix
    // mounted first shadows a longer one; there is no longest-match rule.
    std::shared_ptr<FileDriver> GetDriver(std::string_view path) const;
    std::shared_ptr<FileDriver> IsPrefixMounted(std::string_view path) const { return GetDriver(path); }
    std::string GetPrefix(std::string_view path) const;
    std::string StripPrefix(std::string_view path) const;

    // A prefixed path goes to its driver alone: a failure there does not fall back to the roots.
    std::shared_ptr<FileHandle> Open(std::string_view path, std::uint32_t mode = kFileRead);
    bool Exists(std::string_view path);
    std::uint64_t FileSize(std::string_view path);
    bool FileToData(std::string_view path, std::vector<std::uint8_t>& data);
    bool FileToBuffer(std::string_view path, DataBuffer& buffer);
    std::string FileToString(std::string_view path);
    bool DataToFile(std::string_view path, const void* data, std::uint64_t size);
    bool Copy(std::string_view source, std::string_view destination);
    bool Move(std::string_view source, std::string_view destination);

    // Path operations reach prefixed drivers only; an unprefixed path gives false or nothing.
    bool Delete(std::string_view path);
    std::vector<DirEntry> Dir(std::string_view path, std::string_view wildcard, std::uint32_t flags);
    bool MkDir(std::string_view path);
    bool IsDir(std::string_view path);

    std::string MapToAbsolute(std::string_view path);
    std::string MapToRelative(std::string_view path);

    const std::vector<MountEntry>& mounts() const { return mounts_; }
    const std::vector<std::shared_ptr<FileDriver>>& root_drivers() const { return root_drivers_; }

private:
    const MountEntry* FindMount(std::string_view path) const;

    std::vector<MountEntry> mounts_;
    std::vector<std::shared_ptr<FileDriver>> root_drivers_;
};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern Filesystem* g_filesystem;

}  // namespace kesta
