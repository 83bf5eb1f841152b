#pragma once
// Whole-entry inflation of a plain deflated ZIP entry with libdeflate: the entry's compressed bytes
// are read at once and inflated in one call, about twice as fast as zlib's streaming inflate. The
// CRC-32 that the archive records is checked, so damaged data that still inflates is refused.

#include <libdeflate.h>
#include <minizip/unzip.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "io/file_handle.h"
#include "io/zip_encrypted_entry.h"

namespace kesta {

struct DecompressorDeleter {
    void operator()(libdeflate_decompressor* decompressor) const { libdeflate_free_decompressor(decompressor); }
};
using Decompressor = std::unique_ptr<libdeflate_decompressor, DecompressorDeleter>;

// Fills `bytes` (already sized to the entry's uncompressed size) with the current entry of the
// archive, which must be deflated and not encrypted. `archive_handle` is the handle the archive is read
// through. On a failure after opening, `detail` says what was wrong.
EntryReadResult InflateDeflatedEntry(unzFile archive, const unz_file_info64& info,
                                     const std::shared_ptr<FileHandle>& archive_handle,
                                     libdeflate_decompressor& decompressor, std::vector<std::uint8_t>& bytes,
                                     std::string& detail);

}  // namespace kesta
