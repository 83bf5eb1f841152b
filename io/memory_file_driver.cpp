#include "io/memory_file_driver.h"

#include <algorithm>
#include <cstring>

namespace kesta {

namespace {

IOMemoryHandle& as_memory(FileHandle& handle) { return static_cast<IOMemoryHandle&>(handle); }

}  // namespace

std::uint32_t MemoryFileDriver::GetCaps() { return kCapsCaseSensitive | kCapsReadable | kCapsWritable | kCapsSeekable; }

std::shared_ptr<FileHandle> MemoryFileDriver::Open(std::string_view path, std::uint32_t mode)
{
    std::lock_guard guard(lock_);
    auto found = std::find_if(files_.begin(), files_.end(),
                              [path](const std::shared_ptr<MemoryFile>& file) { return file->name == path; });
    std::shared_ptr<MemoryFile> file;
    if (found != files_.end()) {
        file = *found;
    } else if (mode == kFileWrite) {
        file = std::make_shared<MemoryFile>();
        file->name = std::string(path);
        files_.push_back(file);
    } else {
        return nullptr;
    }
    return std::make_shared<IOMemoryHandle>(shared_from_this(), std::move(file), mode);
}

void MemoryFileDriver::AddFile(std::string_view name, std::vector<std::uint8_t> bytes)
{
    auto file = std::make_shared<MemoryFile>();
    file->name = std::string(name);
    file->size = static_cast<std::int64_t>(bytes.size());
    file->data = std::move(bytes);
    std::lock_guard guard(lock_);
    std::erase_if(files_, [name](const std::shared_ptr<MemoryFile>& existing) { return existing->name == name; });
    files_.push_back(std::move(file));
}

void MemoryFileDriver::Close(FileHandle&)
{
    // The file stays until deleted; the handle's reference goes with the handle.
}

bool MemoryFileDriver::Delete(std::string_view path)
{
    std::lock_guard guard(lock_);
    return std::erase_if(files_, [path](const std::shared_ptr<MemoryFile>& file) { return file->name == path; }) > 0;
}

std::int64_t MemoryFileDriver::Tell(FileHandle& handle)
{
    IOMemoryHandle& memory = as_memory(handle);
    std::lock_guard guard(memory.lock);
    return memory.file ? memory.cursor : -1;
}

std::int64_t MemoryFileDriver::Seek(FileHandle& handle, std::int64_t offset, int origin)
{
    IOMemoryHandle& memory = as_memory(handle);
    std::lock_guard guard(memory.lock);
    if (!memory.file)
        return -1;
    const std::int64_t size = memory.file->size;
    // An offset from the end counts backward.
    std::int64_t target = origin == kSeekCurrent ? memory.cursor + offset : origin == kSeekEnd ? size - offset : offset;
    memory.cursor = std::clamp<std::int64_t>(target, 0, size);
    return 0;
}

std::uint64_t MemoryFileDriver::Size(FileHandle& handle)
{
    IOMemoryHandle& memory = as_memory(handle);
    std::lock_guard guard(memory.lock);
    return memory.file ? static_cast<std::uint64_t>(memory.file->size) : 0;
}

bool MemoryFileDriver::IsEOF(FileHandle& handle)
{
    IOMemoryHandle& memory = as_memory(handle);
    std::lock_guard guard(memory.lock);
    return !memory.file || memory.cursor >= memory.file->size;
}

std::uint64_t MemoryFileDriver::Read(FileHandle& handle, void* buffer, std::uint64_t size)
{
    IOMemoryHandle& memory = as_memory(handle);
    std::lock_guard guard(memory.lock);
    if (!memory.file || memory.mode != kFileRead || memory.cursor >= memory.file->size)
        return 0;
    const std::uint64_t count = std::min<std::uint64_t>(size, memory.file->size - memory.cursor);
    std::memcpy(buffer, memory.file->data.data() + memory.cursor, count);
    memory.cursor += static_cast<std::int64_t>(count);
    return count;
}

std::uint64_t MemoryFileDriver::Write(FileHandle& handle, const void* buffer, std::uint64_t size)
{
    IOMemoryHandle& memory = as_memory(handle);
    std::lock_guard guard(memory.lock);
    if (!memory.file || memory.mode != kFileWrite || size == 0)
        return 0;
    MemoryFile& file = *memory.file;
    const std::uint64_t end = static_cast<std::uint64_t>(memory.cursor) + size;
    if (end > file.data.size())
        file.data.resize(end + kGrowthStep);
    std::memcpy(file.data.data() + memory.cursor, buffer, size);
    memory.cursor = static_cast<std::int64_t>(end);
    file.size = std::max(file.size, memory.cursor);
    return size;
}

bool MemoryFileDriver::MkDir(std::string_view)
{
    // Names are flat: there are no folders to make.
    return false;
}

}  // namespace kesta
