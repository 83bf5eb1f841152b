#include "io/file_driver.h"

#include <nettle/sha1.h>

#include <array>

namespace kesta {

std::string FileDriver::FileHash(std::string_view path)
{
    const std::shared_ptr<FileHandle> handle = Open(path, kFileRead);
    if (!handle)
        return {};

    sha1_ctx context;
    sha1_init(&context);
    std::array<std::uint8_t, 64 * 1024> chunk;
    // Read to the end rather than to the claimed size, which may be 0 for a file with content.
    while (const std::uint64_t count = handle->Read(chunk.data(), chunk.size()))
        sha1_update(&context, count, chunk.data());
    if (!handle->IsEOF())
        return {};

    std::array<std::uint8_t, SHA1_DIGEST_SIZE> digest;
    sha1_digest(&context, digest.size(), digest.data());
    static constexpr char kHex[] = "0123456789abcdef";
    std::string text;
    for (std::uint8_t byte : digest) {
        text += kHex[byte >> 4];
        text += kHex[byte & 0xF];
    }
    return text;
}

std::vector<DirEntry> FileDriver::Dir(std::string_view, std::string_view, std::uint32_t) { return {}; }

bool FileDriver::IsDir(std::string_view) { return false; }

}  // namespace kesta
