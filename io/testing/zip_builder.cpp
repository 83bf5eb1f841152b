#include "io/testing/zip_builder.h"

#include <gtest/gtest.h>
#include <minizip/zip.h>
#include <zlib.h>

#include <array>
#include <fstream>
#include <iterator>
#include <random>

#include "io/testing/temp_dir.h"

namespace kesta::testing {

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
        zip_fileinfo info{};
        const char* password = member.password.empty() ? nullptr : member.password.c_str();
        const auto crc = static_cast<uLong>(
            crc32(0, reinterpret_cast<const Bytef*>(member.content.data()), static_cast<uInt>(member.content.size())));
        const int method = member.deflated ? Z_DEFLATED : 0;
        const int level = member.deflated ? Z_DEFAULT_COMPRESSION : 0;
        int status = zipOpenNewFileInZip3_64(zip, member.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, method,
                                             level, 0, -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY, password, crc,
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
