#include "io/testing/zip_builder.h"

#include <gtest/gtest.h>
#include <minizip/zip.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <random>

#include "io/testing/temp_dir.h"

// The cipher of minizip's header is used to encrypt members; it is written for C.
#include <stdlib.h>
#include <time.h>
#define INCLUDECRYPTINGCODE_IFCRYPTALLOWED
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wregister"
#pragma GCC diagnostic ignored "-Wpedantic"
#include <minizip/crypt.h>
#pragma GCC diagnostic pop

namespace kesta::testing {

namespace {

std::string deflate_raw(const std::string& content)
{
    z_stream stream{};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, content.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

// Traditional PKWARE encryption: a 12-byte header, then the enciphered data.
std::string encipher(const std::string& password, uLong crc, const std::string& data)
{
    std::array<unsigned long, 256> table{};
    const z_crc_t* source = get_crc_table();
    std::copy(source, source + 256, table.begin());
    unsigned long keys[3];
    unsigned char header[RAND_HEAD_LEN];
    const int header_size = crypthead(password.c_str(), header, RAND_HEAD_LEN, keys, table.data(), crc);
    std::string out(reinterpret_cast<const char*>(header), static_cast<std::size_t>(header_size));
    for (char byte : data) {
        int plain = static_cast<unsigned char>(byte);
        int scratch = 0;
        out += static_cast<char>(zencode(keys, table.data(), plain, scratch));
    }
    return out;
}

// minizip's own encrypting writer hands zlib's 32-bit CRC table to a cipher that reads it as
// unsigned long, so what it encrypts on this platform no other reader can decrypt. Encrypted
// members are compressed and enciphered here and given to minizip raw, flagged as encrypted.
int add_encrypted_member(zipFile zip, const ZipMember& member, uLong crc)
{
    zip_fileinfo info{};
    const std::string compressed = member.deflated ? deflate_raw(member.content) : member.content;
    const std::string enciphered = encipher(member.password, crc, compressed);
    const int method = member.deflated ? Z_DEFLATED : 0;
    int status = zipOpenNewFileInZip4_64(zip, member.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, method,
                                         Z_DEFAULT_COMPRESSION, 1, -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY,
                                         nullptr, 0, 0, 1, 0);
    if (status == ZIP_OK)
        status = zipWriteInFileInZip(zip, enciphered.data(), static_cast<unsigned>(enciphered.size()));
    if (status == ZIP_OK)
        status = zipCloseFileInZipRaw64(zip, member.content.size(), crc);
    return status;
}

}  // namespace

std::vector<std::uint8_t> MakeZipArchive(const std::vector<ZipMember>& members)
{
    const TempDir folder;
    const std::string path = folder.File("archive.zip");
    zipFile zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
    if (!zip) {
        ADD_FAILURE() << "zipOpen64 failed";
        return {};
    }
    for (const ZipMember& member : members) {
        const auto crc = static_cast<uLong>(
            crc32(0, reinterpret_cast<const Bytef*>(member.content.data()), static_cast<uInt>(member.content.size())));
        if (!member.password.empty()) {
            if (add_encrypted_member(zip, member, crc) != ZIP_OK)
                ADD_FAILURE() << "cannot add " << member.name << " to the test archive";
            continue;
        }
        zip_fileinfo info{};
        const int method = member.deflated ? Z_DEFLATED : 0;
        const int level = member.deflated ? Z_DEFAULT_COMPRESSION : 0;
        int status = zipOpenNewFileInZip3_64(zip, member.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, method,
                                             level, 0, -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY, nullptr, 0,
                                             member.content.size() >= 0xffffffffu);
        if (status == ZIP_OK && !member.content.empty())
            status = zipWriteInFileInZip(zip, member.content.data(), static_cast<unsigned>(member.content.size()));
        if (status == ZIP_OK)
            status = zipCloseFileInZip(zip);
        if (status != ZIP_OK)
            ADD_FAILURE() << "cannot add " << member.name << " to the test archive";
    }
    zipClose(zip, nullptr);

    std::ifstream in(path, std::ios::binary);
    return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string MakeSampleText(std::size_t size, unsigned seed)
{
    static constexpr std::array<const char*, 12> kWords = {"vertex ", "shader ", "texture ", "light ",
                                                           "scene ",  "node ",   "mesh ",    "frame ",
                                                           "camera ", "buffer ", "matrix ",  "\n"};
    std::mt19937 random(seed);
    std::string text;
    text.reserve(size + 16);
    while (text.size() < size) {
        text += kWords[random() % kWords.size()];
        if (random() % 7 == 0)
            text += std::to_string(random() % 100000);
    }
    text.resize(size);
    return text;
}

}  // namespace kesta::testing
