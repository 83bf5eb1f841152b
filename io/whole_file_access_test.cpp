// Whole-file helpers of Filesystem over paths that are not plain readable files, and over handles
// whose claimed size differs from what they deliver. No helper may throw, block or lose data.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "io/filesystem.h"
#include "io/memory_file_driver.h"
#include "io/std_file_driver.h"
#include "io/testing/log_capture.h"
#include "io/testing/temp_dir.h"

namespace kesta {
namespace {

using testing::LogCapture;
using testing::TempDir;

// What every whole-file helper of a filesystem gives for one path.
struct HelperResults {
    bool opened = false;
    bool exists = false;
    std::uint64_t size = 0;
    bool data_ok = false;
    std::vector<std::uint8_t> data;
    bool buffer_ok = false;
    std::string buffer_text;
    std::string text;
    bool copied = false;
    std::string hash;
};

HelperResults run_every_helper(Filesystem& filesystem, FileDriver& driver, const std::string& path,
                               const std::string& copy_to)
{
    HelperResults r;
    r.opened = filesystem.Open(path, kFileRead) != nullptr;
    r.exists = filesystem.Exists(path);
    r.size = filesystem.FileSize(path);
    r.data_ok = filesystem.FileToData(path, r.data);
    DataBuffer buffer;
    r.buffer_ok = filesystem.FileToBuffer(path, buffer);
    r.buffer_text.assign(reinterpret_cast<const char*>(buffer.storage.data()), buffer.size);
    r.text = filesystem.FileToString(path);
    r.copied = filesystem.Copy(path, copy_to);
    r.hash = driver.FileHash(path);
    return r;
}

void expect_refused_everywhere(const HelperResults& r, const std::string& copy_target)
{
    EXPECT_FALSE(r.opened);
    EXPECT_FALSE(r.exists);
    EXPECT_EQ(r.size, 0u);
    EXPECT_FALSE(r.data_ok);
    EXPECT_TRUE(r.data.empty());
    EXPECT_FALSE(r.buffer_ok);
    EXPECT_EQ(r.text, "");
    EXPECT_FALSE(r.copied);
    EXPECT_FALSE(std::filesystem::exists(copy_target));
    EXPECT_EQ(r.hash, "");
}

void expect_read_whole(const HelperResults& r, const std::string& content)
{
    EXPECT_TRUE(r.opened);
    EXPECT_TRUE(r.exists);
    EXPECT_TRUE(r.data_ok);
    EXPECT_EQ(std::string(r.data.begin(), r.data.end()), content);
    EXPECT_TRUE(r.buffer_ok);
    EXPECT_EQ(r.buffer_text, content);
    EXPECT_EQ(r.text, content);
    EXPECT_TRUE(r.copied);
    EXPECT_EQ(r.hash.size(), 40u);
}

class WholeFileAccessTest : public ::testing::Test {
protected:
    void SetUp() override { filesystem.Mount(driver); }

    HelperResults Run(const std::string& absolute)
    {
        return run_every_helper(filesystem, *driver, absolute, copy_target());
    }
    std::string copy_target() const { return folder.File("copy.bin"); }

    LogCapture captured;
    TempDir folder;
    Filesystem filesystem;
    std::shared_ptr<StdFileDriver> driver = std::make_shared<StdFileDriver>();
};

TEST_F(WholeFileAccessTest, FolderIsNotAFile)
{
    std::filesystem::create_directory(folder.File("sub"));
    expect_refused_everywhere(Run(folder.File("sub")), copy_target());
    EXPECT_TRUE(driver->IsDir(folder.File("sub")));
}

TEST_F(WholeFileAccessTest, FifoIsRefusedWithoutBlocking)
{
    ASSERT_EQ(::mkfifo(folder.File("pipe").c_str(), 0600), 0);
    // A blocking open of a FIFO with no writer would never return and hang the test.
    expect_refused_everywhere(Run(folder.File("pipe")), copy_target());
    EXPECT_FALSE(filesystem.Open(folder.File("pipe"), kFileWrite));
    EXPECT_FALSE(filesystem.DataToFile(folder.File("pipe"), "x", 1));
}

TEST_F(WholeFileAccessTest, DeviceIsNeitherReadNorTruncatedNorWritten)
{
    expect_refused_everywhere(Run("/dev/zero"), copy_target());
    EXPECT_FALSE(filesystem.Open("/dev/null", kFileWrite));
}

TEST_F(WholeFileAccessTest, SymbolicLinkLoopIsRefused)
{
    std::filesystem::create_symlink(folder.File("b"), folder.File("a"));
    std::filesystem::create_symlink(folder.File("a"), folder.File("b"));
    expect_refused_everywhere(Run(folder.File("a")), copy_target());
}

TEST_F(WholeFileAccessTest, UnreadableFileIsRefused)
{
    folder.Write("secret.txt", "private");
    ASSERT_EQ(::chmod(folder.File("secret.txt").c_str(), 0), 0);
    // The superuser reads any file: the check runs with the rights of an ordinary user.
    const uid_t user = ::geteuid();
    if (user == 0) {
        ASSERT_EQ(::seteuid(65534), 0);
    }
    const HelperResults results = Run(folder.File("secret.txt"));
    if (user == 0) {
        ASSERT_EQ(::seteuid(0), 0);
    }
    expect_refused_everywhere(results, copy_target());
}

TEST_F(WholeFileAccessTest, ProcFileWithNoReportedSizeIsReadWhole)
{
    // /proc files report size 0 but have content; their text is made at each read, so only its
    // start is compared.
    const HelperResults r = Run("/proc/self/status");
    EXPECT_TRUE(r.exists);
    EXPECT_EQ(r.size, 0u);
    EXPECT_TRUE(r.data_ok);
    EXPECT_TRUE(r.buffer_ok);
    EXPECT_TRUE(r.copied);
    for (const std::string& text : {std::string(r.data.begin(), r.data.end()), r.buffer_text, r.text})
        EXPECT_TRUE(text.starts_with("Name:\t")) << text.substr(0, 40);
    EXPECT_TRUE(std::filesystem::file_size(copy_target()) > 100u);
    EXPECT_EQ(r.hash.size(), 40u);
    EXPECT_NE(r.hash, "da39a3ee5e6b4b0d3255bfef95601890afd80709");  // the SHA-1 of nothing
}

TEST_F(WholeFileAccessTest, LargeFileIsReadWhole)
{
    // Larger than the first allocation and not a multiple of any read size.
    std::string content(3 * 1024 * 1024 + 7, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 131 % 251);
    folder.Write("large.bin", content);
    const HelperResults r = Run(folder.File("large.bin"));
    expect_read_whole(r, content);
    EXPECT_EQ(r.size, content.size());
    EXPECT_EQ(folder.Read("copy.bin"), content);
}

TEST_F(WholeFileAccessTest, EmptyFileIsReadAsEmpty)
{
    folder.Write("empty.txt", "");
    const HelperResults r = Run(folder.File("empty.txt"));
    expect_read_whole(r, "");
    EXPECT_EQ(r.hash, "da39a3ee5e6b4b0d3255bfef95601890afd80709");
}

// Truncates its file to `keep` bytes as soon as its size is asked: the file shrinks between the
// helpers' size query and their read.
class ShrinkingDriver final : public StdFileDriver {
public:
    ShrinkingDriver(const std::string& folder, std::string file, std::uint64_t keep)
        : StdFileDriver(folder), file_(std::move(file)), keep_(keep)
    {
    }
    std::uint64_t Size(FileHandle&) override
    {
        const std::uint64_t size = std::filesystem::file_size(file_);
        if (::truncate(file_.c_str(), static_cast<off_t>(keep_)) != 0)
            ADD_FAILURE() << "cannot truncate " << file_;
        return size;
    }

private:
    std::string file_;
    std::uint64_t keep_;
};

TEST(WholeFileShrinkTest, FileThatShrinksAfterItsSizeIsReadAsItNowIs)
{
    LogCapture captured;
    TempDir folder;
    const std::string full = "0123456789abcdefghij";
    Filesystem filesystem;
    filesystem.Mount(std::make_shared<ShrinkingDriver>(folder.path(), folder.File("f.txt"), 8), "s/");
    filesystem.Mount(std::make_shared<StdFileDriver>(folder.path()), "out/");

    folder.Write("f.txt", full);
    std::vector<std::uint8_t> data(3, 'z');
    EXPECT_TRUE(filesystem.FileToData("s/f.txt", data));
    EXPECT_EQ(std::string(data.begin(), data.end()), "01234567");

    folder.Write("f.txt", full);
    DataBuffer buffer;
    EXPECT_TRUE(filesystem.FileToBuffer("s/f.txt", buffer));
    EXPECT_EQ(buffer.size, 8u);

    folder.Write("f.txt", full);
    EXPECT_EQ(filesystem.FileToString("s/f.txt"), "01234567");

    folder.Write("f.txt", full);
    EXPECT_TRUE(filesystem.Copy("s/f.txt", "out/copy.txt"));
    EXPECT_EQ(folder.Read("copy.txt"), "01234567");
}

// A memory driver whose handles claim far more than they hold, as fopen'ed folders did.
class OverclaimingDriver final : public MemoryFileDriver {
public:
    std::uint64_t Size(FileHandle&) override { return std::uint64_t{1} << 62; }
};

TEST(WholeFileClaimTest, ClaimedSizeIsNeverAllocatedBeforeTheDataArrives)
{
    LogCapture captured;
    auto driver = std::make_shared<OverclaimingDriver>();
    driver->Open("f", kFileWrite)->Write("seven b", 7);
    Filesystem filesystem;
    filesystem.Mount(driver, "m/");

    std::vector<std::uint8_t> data;
    EXPECT_TRUE(filesystem.FileToData("m/f", data));
    EXPECT_EQ(std::string(data.begin(), data.end()), "seven b");
    DataBuffer buffer;
    buffer.cursor = 10;
    EXPECT_TRUE(filesystem.FileToBuffer("m/f", buffer));
    EXPECT_EQ(buffer.size, 7u);
    EXPECT_LE(buffer.storage.size(), 128u << 20);
    EXPECT_EQ(filesystem.FileToString("m/f"), "seven b");
    EXPECT_TRUE(filesystem.Copy("m/f", "m/g"));
    EXPECT_EQ(filesystem.FileToString("m/g"), "seven b");
}

}  // namespace
}  // namespace kesta
