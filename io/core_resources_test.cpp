#include "io/core_resources.h"

#include <gtest/gtest.h>
#include <minizip/unzip.h>
#include <zlib.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "io/filesystem.h"
#include "io/std_file_driver.h"
#include "io/testing/log_capture.h"
#include "io/testing/temp_dir.h"

namespace kesta {
namespace {

struct Member {
    std::string bytes;
    int method = -1;
};

// Every member of the linked archive, read with minizip straight from a copy on disk.
std::map<std::string, Member> linked_members()
{
    testing::TempDir dir;
    const std::span<const std::uint8_t> bytes = CoreArchiveBytes();
    dir.Write("core.zip", std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    std::map<std::string, Member> members;
    unzFile zip = unzOpen64(dir.File("core.zip").c_str());
    if (!zip)
        return members;
    for (int status = unzGoToFirstFile(zip); status == UNZ_OK; status = unzGoToNextFile(zip)) {
        unz_file_info64 info{};
        char name[512];
        unzGetCurrentFileInfo64(zip, &info, name, sizeof name, nullptr, 0, nullptr, 0);
        Member member;
        member.method = static_cast<int>(info.compression_method);
        member.bytes.resize(info.uncompressed_size);
        unzOpenCurrentFile(zip);
        unzReadCurrentFile(zip, member.bytes.data(), static_cast<unsigned>(member.bytes.size()));
        unzCloseCurrentFile(zip);
        members[name] = std::move(member);
    }
    unzClose(zip);
    return members;
}

std::string read_file(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(CoreArchive, HoldsExactlyThePackedSourcesAllDeflated)
{
    const auto members = linked_members();
    std::map<std::string, std::string> expected;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(NORVANE_CORE_SOURCE_DIR))
        if (entry.is_regular_file())
            expected[std::filesystem::relative(entry.path(), NORVANE_CORE_SOURCE_DIR).generic_string()] =
                read_file(entry.path());
    expected["fonts/default.ttf"] = read_file(NORVANE_DEFAULT_FONT);

    ASSERT_EQ(members.size(), expected.size() + 2);  // and the two provenance files
    for (const auto& [name, bytes] : expected) {
        const auto it = members.find(name);
        ASSERT_NE(it, members.end()) << name;
        EXPECT_EQ(it->second.bytes, bytes) << name;
    }
    for (const auto& [name, member] : members)
        EXPECT_EQ(member.method, Z_DEFLATED) << name;
}

TEST(CoreArchive, RecordsItsProvenance)
{
    const auto members = linked_members();
    ASSERT_TRUE(members.count("version.txt") && members.count("sha1.txt"));
    EXPECT_EQ(members.at("version.txt").bytes, NORVANE_VERSION);
    const std::string& hash = members.at("sha1.txt").bytes;
    ASSERT_EQ(hash.size(), 40u);
    for (char c : hash)
        EXPECT_TRUE(std::isxdigit(static_cast<unsigned char>(c))) << hash;
}

TEST(CoreArchive, CarriesTheShadersTheRendererOpensFirst)
{
    const auto members = linked_members();
    for (const char* name : {"shaders/single_texture_2d.isl", "shaders/single_texture_color.isl",
                             "shaders/single_texture.isl", "shaders/single_color.isl", "shaders/simple.isl"})
        EXPECT_TRUE(members.count(name)) << name;
}

class CoreMount : public ::testing::Test {
protected:
    void SetUp() override
    {
        previous_ = g_filesystem;
        g_filesystem = &filesystem;
    }
    void TearDown() override { g_filesystem = previous_; }

    testing::LogCapture log;
    Filesystem filesystem;

private:
    Filesystem* previous_ = nullptr;
};

TEST_F(CoreMount, MountsTheArchiveOnce)
{
    MountCoreResources();
    ASSERT_TRUE(filesystem.GetDriver("@core/"));
    EXPECT_EQ(filesystem.FileToString("@core/version.txt"), NORVANE_VERSION);
    EXPECT_TRUE(filesystem.Exists("@core/fonts/default.ttf"));
    const auto driver = filesystem.GetDriver("@core/");

    log.Clear();
    MountCoreResources();
    EXPECT_EQ(filesystem.GetDriver("@core/"), driver);
    EXPECT_TRUE(log.Contains("debug", "Not mounting internal core resources since '@core/' is already mounted"));
}

TEST_F(CoreMount, HostFolderOnCoreReplacesTheWholeSet)
{
    testing::TempDir dir;
    dir.Write("version.txt", "host");
    filesystem.Mount(std::make_shared<StdFileDriver>(dir.path()), "@core/");
    log.Clear();
    MountCoreResources();
    EXPECT_EQ(log.Lines(), std::vector<std::string>{
                               "debug: Not mounting internal core resources since '@core/' is already mounted"});
    EXPECT_EQ(filesystem.FileToString("@core/version.txt"), "host");
    EXPECT_FALSE(filesystem.Exists("@core/shaders/simple.isl"));
}

}  // namespace
}  // namespace kesta
