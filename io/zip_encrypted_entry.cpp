#include "io/zip_encrypted_entry.h"

#include <zlib.h>

#include <algorithm>
#include <array>

// minizip's cipher header is written for C: it uses `register` and defines static functions that
// not every includer calls.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wregister"
#pragma GCC diagnostic ignored "-Wpedantic"
#include <minizip/crypt.h>
#pragma GCC diagnostic pop

namespace kesta {

namespace {

constexpr std::size_t kCipherHeaderSize = 12;

// The cipher header takes its table as unsigned long, wider than zlib's z_crc_t here.
const std::array<unsigned long, 256>& cipher_crc_table()
{
    static const std::array<unsigned long, 256> table = [] {
        std::array<unsigned long, 256> widened{};
        const z_crc_t* source = get_crc_table();
        std::copy(source, source + 256, widened.begin());
        return widened;
    }();
    return table;
}

void decipher(const std::string& password, std::vector<std::uint8_t>& data)
{
    const unsigned long* table = cipher_crc_table().data();
    unsigned long keys[3];
    init_keys(password.c_str(), keys, table);
    for (std::uint8_t& byte : data) {
        int c = byte;
        zdecode(keys, table, c);
        byte = static_cast<std::uint8_t>(c);
    }
}

bool inflate_raw(const std::vector<std::uint8_t>& compressed, std::vector<std::uint8_t>& bytes)
{
    z_stream stream{};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return false;
    stream.next_in = const_cast<Bytef*>(compressed.data());
    stream.avail_in = static_cast<uInt>(compressed.size());
    stream.next_out = bytes.data();
    stream.avail_out = static_cast<uInt>(bytes.size());
    const int status = inflate(&stream, Z_FINISH);
    const bool complete = status == Z_STREAM_END && stream.total_out == bytes.size();
    inflateEnd(&stream);
    return complete;
}

}  // namespace

EntryReadResult ReadEncryptedEntry(unzFile archive, const unz_file_info64& info, const std::string& password,
                                   std::uint64_t archive_size, std::vector<std::uint8_t>& bytes)
{
    const bool known_method = info.compression_method == 0 || info.compression_method == Z_DEFLATED;
    if (password.empty() || !known_method || info.compressed_size < kCipherHeaderSize ||
        info.compressed_size > archive_size || info.compressed_size > 0xFFFFFFFFu || bytes.size() > 0xFFFFFFFFu)
        return EntryReadResult::kOpenFailed;

    int method = 0;
    int level = 0;
    if (unzOpenCurrentFile2(archive, &method, &level, 1) != UNZ_OK)
        return EntryReadResult::kOpenFailed;
    std::vector<std::uint8_t> raw(info.compressed_size);
    const int count = unzReadCurrentFile(archive, raw.data(), static_cast<unsigned>(raw.size()));
    unzCloseCurrentFile(archive);
    if (count < 0 || static_cast<std::uint64_t>(count) != raw.size())
        return EntryReadResult::kReadFailed;

    decipher(password, raw);
    raw.erase(raw.begin(), raw.begin() + kCipherHeaderSize);
    if (info.compression_method == 0) {
        if (raw.size() != bytes.size())
            return EntryReadResult::kReadFailed;
        bytes = std::move(raw);
    } else if (!inflate_raw(raw, bytes)) {
        return EntryReadResult::kReadFailed;
    }
    const uLong crc = crc32(0, bytes.data(), static_cast<uInt>(bytes.size()));
    return crc == info.crc ? EntryReadResult::kOk : EntryReadResult::kReadFailed;
}

}  // namespace kesta
