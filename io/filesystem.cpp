#include "io/filesystem.h"

#include <algorithm>
#include <functional>

#include "foundation/format.h"
#include "foundation/log/log.h"
#include "io/path.h"
#include "io/whole_file_reader.h"

namespace kesta {

Filesystem* g_filesystem = nullptr;

namespace {

// Drivers are named in the log by their address, which stays stable while they are mounted.
const void* driver_id(const std::shared_ptr<FileDriver>& driver) { return driver.get(); }

std::string strip(std::string_view path, std::string_view prefix)
{
    if (path.starts_with(prefix))
        path.remove_prefix(prefix.size());
    return std::string(path);
}

// Trims the destination to what was read and reports a whole-file read that did not reach the end.
bool finish_read(std::string_view path, const WholeFileResult& result, const std::function<void(std::uint64_t)>& trim)
{
    if (result.out_of_memory) {
        error((format("Not enough memory to read '%1'") << path).str());
        trim(0);
        return false;
    }
    trim(result.size);
    if (!result.complete)
        error((format("Failed to read '%1' to its end") << path).str());
    return result.complete;
}

}  // namespace

void Filesystem::Mount(const std::shared_ptr<FileDriver>& driver)
{
    if (!driver)
        return;
    log((format("Mount root driver %1 (relative to '%2')") << driver_id(driver) << driver->MapToAbsolute("")).str());
    if (std::find(root_drivers_.begin(), root_drivers_.end(), driver) != root_drivers_.end()) {
        error((format("Driver %1 is already mounted as a root driver on this filesystem") << driver_id(driver)).str());
        return;
    }
    root_drivers_.push_back(driver);
}

void Filesystem::Mount(const std::shared_ptr<FileDriver>& driver, std::string_view prefix)
{
    if (!driver)
        return;
    log((format("Mount driver %1 on prefix %2 (relative to '%3')")
         << driver_id(driver) << prefix << driver->MapToAbsolute(""))
            .str());
    const bool taken = std::any_of(mounts_.begin(), mounts_.end(),
                                   [prefix](const MountEntry& entry) { return entry.prefix == prefix; });
    if (taken) {
        error((format("Prefix %1 is already mounted on this filesystem") << prefix).str());
        return;
    }
    mounts_.push_back({std::string(prefix), driver});
}

void Filesystem::Unmount(const std::shared_ptr<FileDriver>& driver)
{
    log((format("Unmount driver %1") << driver_id(driver)).str());
    std::erase_if(mounts_, [&driver](const MountEntry& entry) { return entry.driver == driver; });
    std::erase(root_drivers_, driver);
}

void Filesystem::Unmount(std::string_view prefix)
{
    if (const MountEntry* entry = FindMount(prefix)) {
        // Copy: unmounting erases the entry that holds the pointer.
        const std::shared_ptr<FileDriver> driver = entry->driver;
        Unmount(driver);
    }
}

void Filesystem::UnmountAll()
{
    while (!mounts_.empty())
        Unmount(std::shared_ptr<FileDriver>(mounts_.front().driver));
    while (!root_drivers_.empty())
        Unmount(std::shared_ptr<FileDriver>(root_drivers_.front()));
}

const Filesystem::MountEntry* Filesystem::FindMount(std::string_view path) const
{
    for (const MountEntry& entry : mounts_) {
        if (path.starts_with(entry.prefix))
            return &entry;
    }
    return nullptr;
}

std::shared_ptr<FileDriver> Filesystem::GetDriver(std::string_view path) const
{
    const MountEntry* entry = FindMount(path);
    return entry ? entry->driver : nullptr;
}

std::string Filesystem::GetPrefix(std::string_view path) const
{
    const MountEntry* entry = FindMount(path);
    return entry ? entry->prefix : std::string();
}

std::string Filesystem::StripPrefix(std::string_view path) const
{
    const MountEntry* entry = FindMount(path);
    return entry ? strip(path, entry->prefix) : std::string(path);
}

std::shared_ptr<FileHandle> Filesystem::Open(std::string_view path, std::uint32_t mode)
{
    if (const MountEntry* entry = FindMount(path)) {
        std::shared_ptr<FileHandle> handle = entry->driver->Open(strip(path, entry->prefix), mode);
        if (!handle) {
            debug((format("Failed to open '%1' on driver %2 (prefix match: %3)")
                   << path << driver_id(entry->driver) << entry->prefix)
                      .str());
        }
        return handle;
    }
    for (const std::shared_ptr<FileDriver>& driver : root_drivers_) {
        if (std::shared_ptr<FileHandle> handle = driver->Open(path, mode))
            return handle;
    }
    debug((format("Failed to open '%1' on any mounted file driver") << path).str());
    return nullptr;
}

bool Filesystem::Exists(std::string_view path) { return Open(path, kFileRead) != nullptr; }

std::uint64_t Filesystem::FileSize(std::string_view path)
{
    const std::shared_ptr<FileHandle> handle = Open(path, kFileRead);
    return handle ? handle->GetSize() : 0;
}

bool Filesystem::FileToData(std::string_view path, std::vector<std::uint8_t>& data)
{
    const std::shared_ptr<FileHandle> handle = Open(path, kFileRead);
    if (!handle)
        return false;
    const WholeFileResult result = ReadWholeFile(*handle, [&data](std::uint64_t bytes) {
        data.resize(bytes);
        return data.data();
    });
    return finish_read(path, result, [&data](std::uint64_t size) { data.resize(size); });
}

bool Filesystem::FileToBuffer(std::string_view path, DataBuffer& buffer)
{
    static constexpr std::uint64_t kGranule = 8192;
    const std::shared_ptr<FileHandle> handle = Open(path, kFileRead);
    if (!handle)
        return false;
    // The storage only grows, in whole granules past the owner's cursor; the file goes to its start.
    const WholeFileResult result = ReadWholeFile(*handle, [&buffer](std::uint64_t bytes) {
        if (buffer.storage.size() < buffer.cursor + bytes)
            buffer.storage.resize((buffer.cursor + bytes) / kGranule * kGranule + kGranule);
        return buffer.storage.data();
    });
    return finish_read(path, result, [&buffer](std::uint64_t size) { buffer.size = size; });
}

std::string Filesystem::FileToString(std::string_view path)
{
    const std::shared_ptr<FileHandle> handle = Open(path, kFileRead);
    if (!handle)
        return {};
    std::string text;
    const WholeFileResult result = ReadWholeFile(*handle, [&text](std::uint64_t bytes) {
        text.resize(bytes);
        return reinterpret_cast<std::uint8_t*>(text.data());
    });
    // Whatever could be read is kept, as a string has no failure of its own to report.
    finish_read(path, result, [&text](std::uint64_t size) { text.resize(size); });
    return text;
}

bool Filesystem::DataToFile(std::string_view path, const void* data, std::uint64_t size)
{
    const std::shared_ptr<FileHandle> handle = Open(path, kFileWrite);
    return handle && handle->Write(data, size) == size;
}

bool Filesystem::Copy(std::string_view source, std::string_view destination)
{
    std::vector<std::uint8_t> data;
    return FileToData(source, data) && DataToFile(destination, data.data(), data.size());
}

bool Filesystem::Move(std::string_view source, std::string_view destination)
{
    return Copy(source, destination) && Delete(source);
}

bool Filesystem::Delete(std::string_view path)
{
    const MountEntry* entry = FindMount(path);
    return entry && entry->driver->Delete(strip(path, entry->prefix));
}

std::vector<DirEntry> Filesystem::Dir(std::string_view path, std::string_view wildcard, std::uint32_t flags)
{
    const MountEntry* entry = FindMount(path);
    if (!entry)
        return {};
    return entry->driver->Dir(strip(path, entry->prefix), wildcard, flags);
}

bool Filesystem::MkDir(std::string_view path)
{
    const MountEntry* entry = FindMount(path);
    return entry && entry->driver->MkDir(strip(path, entry->prefix));
}

bool Filesystem::IsDir(std::string_view path)
{
    const MountEntry* entry = FindMount(path);
    return entry && entry->driver->IsDir(strip(path, entry->prefix));
}

std::string Filesystem::MapToAbsolute(std::string_view path)
{
    if (const MountEntry* entry = FindMount(path))
        return NormalizePath(entry->driver->MapToAbsolute(strip(path, entry->prefix)));
    for (const std::shared_ptr<FileDriver>& driver : root_drivers_) {
        if (driver->Open(path, kFileRead) || driver->IsDir(path))
            return driver->MapToAbsolute(path);
    }
    return std::string(path);
}

std::string Filesystem::MapToRelative(std::string_view path)
{
    const std::string normalized = NormalizePath(path);
    for (const std::shared_ptr<FileDriver>& driver : root_drivers_) {
        std::string relative = driver->MapToRelative(normalized);
        if (!relative.empty() && relative != normalized)
            return relative;
    }
    return normalized;
}

}  // namespace kesta
