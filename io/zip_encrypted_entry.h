#pragma once
// Entries protected with the traditional PKWARE cipher. Debian's minizip reads archives with its
// decryption compiled out, so these entries are read raw through minizip, deciphered with
// minizip's own cipher code, and inflated with zlib.

#include <minizip/unzip.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kesta {

enum class EntryReadResult { kOk, kOpenFailed, kReadFailed };

// Fills `bytes` (already sized to the entry's uncompressed size) with the current entry of the
// archive. A wrong password shows as kReadFailed: the content then fails its CRC.
EntryReadResult ReadEncryptedEntry(unzFile archive, const unz_file_info64& info, const std::string& password,
                                   std::uint64_t archive_size, std::vector<std::uint8_t>& bytes);

}  // namespace kesta
