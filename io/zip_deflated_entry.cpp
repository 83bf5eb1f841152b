#include "io/zip_deflated_entry.h"

#include <new>

#include "foundation/format.h"

namespace kesta {

namespace {

std::string hex(std::uint32_t value)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text = "0x00000000";
    for (int i = 9; i >= 2; --i, value >>= 4)
        text[static_cast<std::size_t>(i)] = kDigits[value & 0xF];
    return text;
}

// The entry's compressed bytes, read under the archive handle's lock and leaving its position as it
// was, as segment reads do: other readers of the archive see no change.
bool read_compressed(FileHandle& archive, std::uint64_t position, std::vector<std::uint8_t>& compressed)
{
    std::lock_guard guard(archive.lock);
    const std::int64_t saved = archive.Tell();
    bool ok = archive.Seek(static_cast<std::int64_t>(position), kSeekStart) == 0 &&
              archive.Read(compressed.data(), compressed.size()) == compressed.size();
    archive.Seek(saved, kSeekStart);
    return ok;
}

}  // namespace

EntryReadResult InflateDeflatedEntry(unzFile archive, const unz_file_info64& info,
                                     const std::shared_ptr<FileHandle>& archive_handle,
                                     libdeflate_decompressor& decompressor, std::vector<std::uint8_t>& bytes,
                                     std::string& detail)
{
    // Raw mode: minizip only finds where the entry's data starts, and sets up no inflate stream.
    int method = 0;
    int level = 0;
    if (unzOpenCurrentFile2(archive, &method, &level, 1) != UNZ_OK)
        return EntryReadResult::kOpenFailed;
    const ZPOS64_T position = unzGetCurrentFileZStreamPos64(archive);
    unzCloseCurrentFile(archive);

    if (info.compressed_size > archive_handle->GetSize()) {
        detail = "the compressed data lies beyond the end of the archive";
        return EntryReadResult::kReadFailed;
    }
    std::vector<std::uint8_t> compressed;
    try {
        compressed.resize(info.compressed_size);
    } catch (const std::bad_alloc&) {
        detail = "no memory for the compressed data";
        return EntryReadResult::kReadFailed;
    }
    if (!read_compressed(*archive_handle, position, compressed)) {
        detail = "the compressed data lies beyond the end of the archive";
        return EntryReadResult::kReadFailed;
    }
    // With no count of bytes out, libdeflate succeeds only when the stream fills the buffer exactly.
    const libdeflate_result inflated = libdeflate_deflate_decompress(
        &decompressor, compressed.data(), compressed.size(), bytes.data(), bytes.size(), nullptr);
    if (inflated != LIBDEFLATE_SUCCESS) {
        detail = inflated == LIBDEFLATE_BAD_DATA ? "the deflate stream is damaged"
                                                 : "the deflate stream does not give the recorded size";
        return EntryReadResult::kReadFailed;
    }
    const std::uint32_t crc = libdeflate_crc32(0, bytes.data(), bytes.size());
    if (crc != static_cast<std::uint32_t>(info.crc)) {
        detail = (format("CRC-32 mismatch: the data gives %1, the archive records %2")
                  << hex(crc) << hex(static_cast<std::uint32_t>(info.crc)))
                     .str();
        return EntryReadResult::kReadFailed;
    }
    return EntryReadResult::kOk;
}

}  // namespace kesta
