#include "io/zip_file_driver.h"

#include <algorithm>
#include <new>
#include <set>

#include "foundation/format.h"
#include "foundation/log/log.h"
#include "io/file_handle_segment.h"
#include "io/memory_file_driver.h"
#include "io/path.h"
#include "io/wildcard.h"
#include "io/zip_archive_io.h"
#include "io/zip_encrypted_entry.h"

namespace kesta {

namespace {

constexpr int kCaseSensitive = 1;
constexpr uLong kEncryptedFlag = 1;
// Deflate cannot expand data by more than about 1032:1. An entry that claims more than its
// compressed bytes can yield is corrupt, and is refused before its claim is allocated.
constexpr std::uint64_t kMaxInflateRatio = 1032;
constexpr std::uint64_t kInflateSlack = 64 * 1024;
// unzReadCurrentFile takes an unsigned count: large entries are read in pieces.
constexpr std::uint64_t kReadPiece = 1u << 30;

ZipHandle* as_zip(FileHandle& handle) { return dynamic_cast<ZipHandle*>(&handle); }

std::string current_entry_name(unzFile archive)
{
    unz_file_info64 info{};
    if (unzGetCurrentFileInfo64(archive, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK)
        return {};
    std::string name(info.size_filename, '\0');
    if (unzGetCurrentFileInfo64(archive, &info, name.data(), name.size(), nullptr, 0, nullptr, 0) != UNZ_OK)
        return {};
    return name;
}

}  // namespace

ZipFileDriver::ZipFileDriver(std::shared_ptr<FileHandle> archive_handle, std::string archive_password)
    : archive_handle_(std::move(archive_handle)),
      io_(MakeArchiveIO(archive_handle_.get())),
      password_(std::move(archive_password)),
      cache_(std::make_shared<MemoryFileDriver>())
{
    if (archive_handle_)
        archive_ = unzOpen2_64(archive_handle_.get(), &io_);
}

ZipFileDriver::~ZipFileDriver()
{
    if (archive_)
        unzClose(archive_);
}

std::uint32_t ZipFileDriver::GetCaps() { return kCapsCaseSensitive | kCapsReadable | kCapsSeekable; }

std::shared_ptr<FileHandle> ZipFileDriver::Open(std::string_view path, std::uint32_t mode)
{
    std::lock_guard guard(lock_);
    if (!archive_) {
        error("Cannot open file with no archive support");
        return nullptr;
    }
    if (mode == kFileWrite)
        return nullptr;

    const std::string name = NormalizePath(path);
    std::shared_ptr<FileHandle> cached = cache_->Open(name, kFileRead);
    if (!cached) {
        if (unzLocateFile(archive_, name.c_str(), kCaseSensitive) != UNZ_OK)
            return nullptr;
        unz_file_info64 info{};
        if (unzGetCurrentFileInfo64(archive_, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK)
            return nullptr;
        // An encrypted entry must be decrypted even when it is stored, so it takes the cache path.
        if (info.compression_method == 0 && !(info.flag & kEncryptedFlag))
            return MapStoredEntry(name, info);
        if (!InflateToCache(name, info))
            return nullptr;
        cached = cache_->Open(name, kFileRead);
        if (!cached)
            return nullptr;
    }

    UnzippedEntry& record = opened_files_[name];
    record.name = name;
    ++record.use_count;
    return std::make_shared<ZipHandle>(shared_from_this(), std::move(cached), &record);
}

std::shared_ptr<FileHandle> ZipFileDriver::MapStoredEntry(const std::string& name, const unz_file_info64& info)
{
    if (unzOpenCurrentFile(archive_) != UNZ_OK) {
        error((format("Failed to open file '%1'") << name).str());
        return nullptr;
    }
    const ZPOS64_T position = unzGetCurrentFileZStreamPos64(archive_);
    unzCloseCurrentFile(archive_);
    debug((format("Mapping zip segment to '%1' @%2") << name << position).str());
    return std::make_shared<FileHandleSegment>(shared_from_this(), archive_handle_, position, info.uncompressed_size);
}

bool ZipFileDriver::InflateToCache(const std::string& name, const unz_file_info64& info)
{
    debug((format("Mapping unzipped '%1' to memory...") << name).str());
    const std::uint64_t archive_size = archive_handle_->GetSize();
    const std::uint64_t compressed = std::min<std::uint64_t>(info.compressed_size, archive_size);
    if (info.uncompressed_size > compressed * kMaxInflateRatio + kInflateSlack) {
        error((format("Failed to read file '%1'") << name).str());
        return false;
    }

    std::vector<std::uint8_t> bytes;
    try {
        bytes.resize(info.uncompressed_size);
    } catch (const std::bad_alloc&) {
        error((format("Failed to allocate decompression space for '%1'") << name).str());
        return false;
    }

    std::string detail;
    EntryReadResult result = EntryReadResult::kOk;
    if (info.flag & kEncryptedFlag)
        result = ReadEncryptedEntry(archive_, info, password_, archive_size, bytes);
    else if (info.compression_method == Z_DEFLATED && Inflater())
        result = InflateDeflatedEntry(archive_, info, archive_handle_, *decompressor_, bytes, detail);
    else
        result = ReadPlainEntry(bytes);
    if (result == EntryReadResult::kOpenFailed) {
        error((format("Failed to open file '%1'") << name).str());
        return false;
    }
    if (result == EntryReadResult::kReadFailed) {
        error((format("Failed to read file '%1'") << name).str(), detail);
        return false;
    }

    // The inflated bytes become the cache's file as they are, so a large entry is never held twice.
    cache_->AddFile(name, std::move(bytes));
    return true;
}

bool ZipFileDriver::Inflater()
{
    if (!decompressor_)
        decompressor_.reset(libdeflate_alloc_decompressor());
    return decompressor_ != nullptr;
}

EntryReadResult ZipFileDriver::ReadPlainEntry(std::vector<std::uint8_t>& bytes)
{
    if (unzOpenCurrentFile(archive_) != UNZ_OK)
        return EntryReadResult::kOpenFailed;
    std::uint64_t done = 0;
    while (done < bytes.size()) {
        const auto piece = static_cast<unsigned>(std::min<std::uint64_t>(bytes.size() - done, kReadPiece));
        const int count = unzReadCurrentFile(archive_, bytes.data() + done, piece);
        if (count <= 0)
            break;
        done += static_cast<std::uint64_t>(count);
    }
    // Closing checks the CRC once the whole entry was read: damaged data that still inflated to
    // the right length is caught here.
    const int closed = unzCloseCurrentFile(archive_);
    return done == bytes.size() && closed == UNZ_OK ? EntryReadResult::kOk : EntryReadResult::kReadFailed;
}

void ZipFileDriver::Close(FileHandle& handle)
{
    ZipHandle* zip = as_zip(handle);
    if (!zip)
        return;  // a segment holds nothing of the driver's
    std::lock_guard guard(lock_);
    std::lock_guard handle_guard(zip->lock);
    if (zip->is_cached && zip->entry && --zip->entry->use_count == 0) {
        const std::string name = zip->entry->name;
        cache_->Delete(name);
        opened_files_.erase(name);
    }
    zip->entry = nullptr;
    zip->source.reset();
}

bool ZipFileDriver::Delete(std::string_view) { return false; }

std::int64_t ZipFileDriver::Tell(FileHandle& handle)
{
    ZipHandle* zip = as_zip(handle);
    if (!zip)
        return -1;
    std::lock_guard guard(zip->lock);
    return zip->source ? zip->source->Tell() : -1;
}

std::int64_t ZipFileDriver::Seek(FileHandle& handle, std::int64_t offset, int origin)
{
    ZipHandle* zip = as_zip(handle);
    if (!zip)
        return -1;
    std::lock_guard guard(zip->lock);
    return zip->source ? zip->source->Seek(offset, origin) : -1;
}

std::uint64_t ZipFileDriver::Size(FileHandle& handle)
{
    ZipHandle* zip = as_zip(handle);
    if (!zip)
        return 0;
    std::lock_guard guard(zip->lock);
    return zip->source ? zip->source->GetSize() : 0;
}

bool ZipFileDriver::IsEOF(FileHandle& handle)
{
    ZipHandle* zip = as_zip(handle);
    if (!zip)
        return true;
    std::lock_guard guard(zip->lock);
    return zip->source ? zip->source->IsEOF() : true;
}

std::uint64_t ZipFileDriver::Read(FileHandle& handle, void* buffer, std::uint64_t size)
{
    ZipHandle* zip = as_zip(handle);
    if (!zip)
        return 0;
    std::lock_guard guard(zip->lock);
    return zip->source ? zip->source->Read(buffer, size) : 0;
}

std::uint64_t ZipFileDriver::Write(FileHandle&, const void*, std::uint64_t) { return 0; }

std::vector<DirEntry> ZipFileDriver::Dir(std::string_view path, std::string_view wildcard, std::uint32_t flags)
{
    std::lock_guard guard(lock_);
    std::vector<DirEntry> entries;
    if (!archive_)
        return entries;
    const std::string folder = NormalizePath(path);
    const std::string prefix = folder.empty() ? folder : folder + "/";
    const std::string_view pattern = wildcard.empty() ? std::string_view("*") : wildcard;
    std::set<std::string> listed_folders;
    for (int status = unzGoToFirstFile(archive_); status == UNZ_OK; status = unzGoToNextFile(archive_)) {
        const std::string name = current_entry_name(archive_);
        if (!name.starts_with(prefix) || name.size() == prefix.size())
            continue;
        const std::string_view rest = std::string_view(name).substr(prefix.size());
        const std::size_t slash = rest.find('/');
        const bool is_directory = slash != std::string_view::npos;
        const std::string child(rest.substr(0, slash));
        if (child.empty() || !(flags & (is_directory ? kDirDirectories : kDirFiles)))
            continue;
        if (!WildcardMatch(pattern, child))
            continue;
        if (is_directory && !listed_folders.insert(child).second)
            continue;
        entries.push_back({child, is_directory});
    }
    return entries;
}

bool ZipFileDriver::MkDir(std::string_view) { return false; }

bool ZipFileDriver::IsDir(std::string_view) { return false; }

}  // namespace kesta
