#include "io/std_file_driver.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>

#include "io/path.h"

namespace kesta {

namespace {

CFileHandle& as_cfile(FileHandle& handle) { return static_cast<CFileHandle&>(handle); }

bool starts_with_ignoring_case(std::string_view text, std::string_view prefix)
{
    return text.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), text.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
           });
}

// Saves the stream position, seeks to the end, and gives the end's position, restoring the
// original position afterwards.
std::int64_t end_position(std::FILE* file, std::int64_t* saved)
{
    *saved = ftello(file);
    fseeko(file, 0, SEEK_END);
    const std::int64_t end = ftello(file);
    fseeko(file, *saved, SEEK_SET);
    return end;
}

// Opens a regular file only: a folder, FIFO, socket or device is not a file that can be read whole or
// sized, and fopen would accept several of them (a FIFO even blocks until a writer comes). The open is
// non-blocking so that a FIFO is refused at once; a file opened for writing is truncated only once it
// is known to be a regular file.
std::FILE* open_regular_file(const std::string& path, bool write)
{
    const int flags = (write ? O_WRONLY | O_CREAT : O_RDONLY) | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int fd = ::open(path.c_str(), flags, 0666);
    if (fd < 0)
        return nullptr;
    struct stat info {};
    const int status = ::fcntl(fd, F_GETFL);
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode) || status < 0 ||
        ::fcntl(fd, F_SETFL, status & ~O_NONBLOCK) != 0 || (write && ::ftruncate(fd, 0) != 0)) {
        ::close(fd);
        return nullptr;
    }
    std::FILE* file = ::fdopen(fd, write ? "wb" : "rb");
    if (!file)
        ::close(fd);
    return file;
}

}  // namespace

bool StdFileDriver::Allowed(std::string_view path) const
{
    if (!sandbox)
        return true;
    const std::string normalized = NormalizePath(path);
    // An absolute path would leave the base too when the base is empty.
    return normalized != ".." && !normalized.starts_with("../") && !normalized.starts_with("/");
}

std::string StdFileDriver::EffectivePath(std::string_view path) const
{
    if (base_path.empty())
        return std::string(path);
    return base_path + "/" + std::string(path);
}

std::string StdFileDriver::MapToAbsolute(std::string_view path) { return EffectivePath(path); }

std::string StdFileDriver::MapToRelative(std::string_view path)
{
    if (base_path.empty())
        return std::string(path);
    const bool matches =
        (GetCaps() & kCapsCaseSensitive) ? path.starts_with(base_path) : starts_with_ignoring_case(path, base_path);
    if (!matches)
        return std::string(path);
    path.remove_prefix(base_path.size());
    if (!path.empty() && path.front() == '/')
        path.remove_prefix(1);
    return std::string(path);
}

std::uint32_t StdFileDriver::GetCaps() { return kCapsReadable | kCapsWritable | kCapsSeekable | kCapsDirectoryTree; }

std::shared_ptr<FileHandle> StdFileDriver::Open(std::string_view path, std::uint32_t mode)
{
    if (!Allowed(path))
        return nullptr;
    std::FILE* file = open_regular_file(EffectivePath(path), mode == kFileWrite);
    if (!file)
        return nullptr;
    return std::make_shared<CFileHandle>(shared_from_this(), file);
}

void StdFileDriver::Close(FileHandle& handle)
{
    CFileHandle& cfile = as_cfile(handle);
    std::lock_guard guard(cfile.lock);
    if (cfile.file) {
        std::fclose(cfile.file);
        cfile.file = nullptr;
    }
}

bool StdFileDriver::Delete(std::string_view path)
{
    return Allowed(path) && ::unlink(EffectivePath(path).c_str()) == 0;
}

std::int64_t StdFileDriver::Tell(FileHandle& handle)
{
    CFileHandle& cfile = as_cfile(handle);
    std::lock_guard guard(cfile.lock);
    return cfile.file ? ftello(cfile.file) : -1;
}

std::int64_t StdFileDriver::Seek(FileHandle& handle, std::int64_t offset, int origin)
{
    CFileHandle& cfile = as_cfile(handle);
    std::lock_guard guard(cfile.lock);
    if (!cfile.file)
        return -1;
    const int whence = origin == kSeekCurrent ? SEEK_CUR : origin == kSeekEnd ? SEEK_END : SEEK_SET;
    return fseeko(cfile.file, offset, whence);
}

std::uint64_t StdFileDriver::Size(FileHandle& handle)
{
    CFileHandle& cfile = as_cfile(handle);
    std::lock_guard guard(cfile.lock);
    if (!cfile.file)
        return 0;
    std::int64_t saved = 0;
    const std::int64_t end = end_position(cfile.file, &saved);
    return end < 0 ? 0 : static_cast<std::uint64_t>(end);
}

bool StdFileDriver::IsEOF(FileHandle& handle)
{
    CFileHandle& cfile = as_cfile(handle);
    std::lock_guard guard(cfile.lock);
    if (!cfile.file)
        return true;
    // The stream's own EOF flag is only set after a read fails; compare positions instead.
    std::int64_t saved = 0;
    const std::int64_t end = end_position(cfile.file, &saved);
    return saved >= end;
}

std::uint64_t StdFileDriver::Read(FileHandle& handle, void* buffer, std::uint64_t size)
{
    CFileHandle& cfile = as_cfile(handle);
    std::lock_guard guard(cfile.lock);
    return cfile.file ? std::fread(buffer, 1, size, cfile.file) : 0;
}

std::uint64_t StdFileDriver::Write(FileHandle& handle, const void* buffer, std::uint64_t size)
{
    CFileHandle& cfile = as_cfile(handle);
    std::lock_guard guard(cfile.lock);
    if (!cfile.file || size == 0)
        return 0;
    // One element of the whole size: a short write counts as nothing written.
    return std::fwrite(buffer, size, 1, cfile.file) * size;
}

std::vector<DirEntry> StdFileDriver::Dir(std::string_view path, std::string_view wildcard, std::uint32_t flags)
{
    std::vector<DirEntry> entries;
    if (!Allowed(path))
        return entries;
    std::string folder = NormalizePath(EffectivePath(path));
    if (folder.empty())
        folder = ".";
    DIR* dir = ::opendir(folder.c_str());
    if (!dir)
        return entries;
    const std::string pattern(wildcard.empty() ? "*" : wildcard);
    while (const dirent* item = ::readdir(dir)) {
        const std::string_view name = item->d_name;
        if (name == "." || name == "..")
            continue;
        if (::fnmatch(pattern.c_str(), item->d_name, 0) != 0)
            continue;
        bool is_directory = item->d_type == DT_DIR;
        if (item->d_type == DT_UNKNOWN || item->d_type == DT_LNK) {
            struct stat info {};
            is_directory = ::stat((folder + "/" + item->d_name).c_str(), &info) == 0 && S_ISDIR(info.st_mode);
        }
        if (flags & (is_directory ? kDirDirectories : kDirFiles))
            entries.push_back({std::string(name), is_directory});
    }
    ::closedir(dir);
    return entries;
}

bool StdFileDriver::MkDir(std::string_view path)
{
    return Allowed(path) && ::mkdir(EffectivePath(path).c_str(), 0777) == 0;
}

bool StdFileDriver::IsDir(std::string_view path)
{
    struct stat info {};
    return Allowed(path) && ::stat(EffectivePath(path).c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

}  // namespace kesta
