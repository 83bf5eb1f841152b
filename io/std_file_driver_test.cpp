#include "io/std_file_driver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include <sys/resource.h>

#include <csignal>

#include "io/testing/temp_dir.h"

namespace kesta {
namespace {

using testing::TempDir;

std::string read_all(FileHandle& handle)
{
    std::string text(handle.GetSize(), '\0');
    text.resize(handle.Read(text.data(), text.size()));
    return text;
}

std::vector<std::string> names_of(std::vector<DirEntry> entries)
{
    std::vector<std::string> names;
    for (const DirEntry& entry : entries)
        names.push_back(entry.name + (entry.is_directory ? "/" : ""));
    std::sort(names.begin(), names.end());
    return names;
}

class StdFileDriverTest : public ::testing::Test {
protected:
    TempDir folder;
};

TEST_F(StdFileDriverTest, WritesAndReadsBinaryFilesBelowItsBase)
{
    auto driver = std::make_shared<StdFileDriver>(folder.path());
    EXPECT_EQ(driver->GetCaps(), 0x2Eu);
    const std::string bytes("\x00\x01\r\n\xff", 5);
    {
        auto writer = driver->Open("out.bin", kFileWrite);
        ASSERT_TRUE(writer);
        EXPECT_EQ(writer->Write(bytes.data(), bytes.size()), bytes.size());
        EXPECT_EQ(writer->Write(bytes.data(), 0), 0u);
    }
    EXPECT_EQ(folder.Read("out.bin"), bytes);
    auto reader = driver->Open("out.bin", kFileRead);
    ASSERT_TRUE(reader);
    EXPECT_EQ(read_all(*reader), bytes);
    EXPECT_FALSE(driver->Open("missing.bin", kFileRead));
    // A handle keeps its driver alive.
    std::weak_ptr<StdFileDriver> watch = driver;
    driver.reset();
    EXPECT_FALSE(watch.expired());
    reader.reset();
    EXPECT_TRUE(watch.expired());
}

TEST_F(StdFileDriverTest, SizeAndEndTestLeaveThePositionAlone)
{
    folder.Write("ten", "0123456789");
    auto driver = std::make_shared<StdFileDriver>(folder.path());
    auto handle = driver->Open("ten", kFileRead);
    EXPECT_EQ(handle->Seek(3, kSeekStart), 0);
    EXPECT_EQ(handle->GetSize(), 10u);
    EXPECT_FALSE(handle->IsEOF());
    EXPECT_EQ(handle->Tell(), 3);
    EXPECT_EQ(handle->Seek(2, kSeekCurrent), 0);
    EXPECT_EQ(handle->Tell(), 5);
    // Standard streams count an end-relative offset forward.
    EXPECT_EQ(handle->Seek(-2, kSeekEnd), 0);
    EXPECT_EQ(handle->Tell(), 8);
    char buffer[8];
    EXPECT_EQ(handle->Read(buffer, sizeof buffer), 2u);
    EXPECT_TRUE(handle->IsEOF());
    handle->Rewind();
    EXPECT_EQ(handle->Tell(), 0);
    EXPECT_EQ(handle->Seek(-1, kSeekStart), -1);
}

TEST_F(StdFileDriverTest, ClosedHandleRefusesEveryOperation)
{
    folder.Write("f", "abc");
    auto driver = std::make_shared<StdFileDriver>(folder.path());
    auto handle = driver->Open("f", kFileRead);
    driver->Close(*handle);
    EXPECT_EQ(static_cast<CFileHandle&>(*handle).file, nullptr);
    char buffer[3];
    EXPECT_EQ(handle->Tell(), -1);
    EXPECT_EQ(handle->Seek(0, kSeekStart), -1);
    EXPECT_EQ(handle->Read(buffer, sizeof buffer), 0u);
    EXPECT_EQ(handle->Write("x", 1), 0u);
    EXPECT_EQ(handle->GetSize(), 0u);
    EXPECT_TRUE(handle->IsEOF());
    driver->Close(*handle);  // closing twice is harmless
}

TEST_F(StdFileDriverTest, ShortWriteReportsNothingWritten)
{
    // A file size limit makes the kernel stop a regular file's write part way (EFBIG once SIGXFSZ is
    // ignored); both are restored before the test ends.
    rlimit saved{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    rlimit small = saved;
    small.rlim_cur = 64 * 1024;
    const auto previous_handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    auto driver = std::make_shared<StdFileDriver>();
    auto handle = driver->Open(folder.File("limited.bin"), kFileWrite);
    const std::string block(1 << 20, 'x');
    const std::uint64_t written = handle ? handle->Write(block.data(), block.size()) : 1;
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous_handler);
    ASSERT_TRUE(handle);
    EXPECT_EQ(written, 0u);
}

TEST_F(StdFileDriverTest, SandboxRefusesPathsThatClimbOutOfTheBase)
{
    folder.Write("secret.txt", "outside");
    folder.Write("base/x/inside.txt", "inside");
    folder.Write("base/a", "a");
    auto sandboxed = std::make_shared<StdFileDriver>(folder.File("base"), true);
    EXPECT_FALSE(sandboxed->Open("../secret.txt", kFileRead));
    EXPECT_FALSE(sandboxed->Open("x/../../secret.txt", kFileRead));
    EXPECT_FALSE(sandboxed->Open("x/../../base/a", kFileRead));
    EXPECT_FALSE(sandboxed->Open("..", kFileRead));
    EXPECT_TRUE(sandboxed->Open("x/../a", kFileRead));
    EXPECT_TRUE(sandboxed->Open("x/inside.txt", kFileRead));
    EXPECT_FALSE(sandboxed->Open("../new.txt", kFileWrite));
    EXPECT_FALSE(std::filesystem::exists(folder.File("new.txt")));
    EXPECT_FALSE(sandboxed->Delete("../secret.txt"));
    EXPECT_TRUE(std::filesystem::exists(folder.File("secret.txt")));
    EXPECT_FALSE(sandboxed->MkDir("../escaped"));
    EXPECT_FALSE(std::filesystem::exists(folder.File("escaped")));
    EXPECT_TRUE(sandboxed->Dir("..", "*", kDirFiles | kDirDirectories).empty());

    // Without the sandbox the same path is followed.
    auto open = std::make_shared<StdFileDriver>(folder.File("base"));
    EXPECT_TRUE(open->Open("../secret.txt", kFileRead));
}

TEST_F(StdFileDriverTest, SandboxWithoutBaseRefusesAbsolutePaths)
{
    folder.Write("f", "x");
    auto sandboxed = std::make_shared<StdFileDriver>("", true);
    EXPECT_FALSE(sandboxed->Open(folder.File("f"), kFileRead));
    auto open = std::make_shared<StdFileDriver>();
    EXPECT_TRUE(open->Open(folder.File("f"), kFileRead));
}

TEST_F(StdFileDriverTest, DirectoryOperations)
{
    folder.Write("d/one.dll", "1");
    folder.Write("d/two.dll", "2");
    folder.Write("d/notes.txt", "3");
    folder.Write("d/plugins.dll/inner", "4");
    auto driver = std::make_shared<StdFileDriver>(folder.path());

    EXPECT_EQ(names_of(driver->Dir("d", "*.dll", kDirFiles)), (std::vector<std::string>{"one.dll", "two.dll"}));
    EXPECT_EQ(names_of(driver->Dir("d", "*.dll", kDirDirectories)), (std::vector<std::string>{"plugins.dll/"}));
    EXPECT_EQ(names_of(driver->Dir("d/./sub/..", "*", kDirFiles | kDirDirectories)),
              (std::vector<std::string>{"notes.txt", "one.dll", "plugins.dll/", "two.dll"}));
    EXPECT_TRUE(driver->Dir("missing", "*", kDirFiles).empty());

    EXPECT_TRUE(driver->IsDir("d"));
    EXPECT_FALSE(driver->IsDir("d/one.dll"));
    EXPECT_FALSE(driver->IsDir("missing"));
    EXPECT_TRUE(driver->MkDir("new"));
    EXPECT_FALSE(driver->MkDir("new"));
    EXPECT_TRUE(driver->IsDir("new"));
    EXPECT_TRUE(driver->Delete("d/notes.txt"));
    EXPECT_FALSE(driver->Delete("d/notes.txt"));
}

TEST_F(StdFileDriverTest, MapsBetweenBaseAndDriverPaths)
{
    auto driver = std::make_shared<StdFileDriver>("/data/Assets");
    EXPECT_EQ(driver->MapToAbsolute("tex/a.png"), "/data/Assets/tex/a.png");
    EXPECT_EQ(driver->MapToRelative("/data/Assets/tex/a.png"), "tex/a.png");
    // The driver does not claim case-sensitive names, so the base matches ignoring case.
    EXPECT_EQ(driver->MapToRelative("/DATA/assets/tex/a.png"), "tex/a.png");
    EXPECT_EQ(driver->MapToRelative("/other/tex/a.png"), "/other/tex/a.png");

    auto unbased = std::make_shared<StdFileDriver>();
    EXPECT_EQ(unbased->MapToAbsolute("tex/a.png"), "tex/a.png");
    EXPECT_EQ(unbased->MapToRelative("tex/a.png"), "tex/a.png");
}

TEST_F(StdFileDriverTest, FileHashReadsLargeFilesWhole)
{
    folder.Write("big", std::string(100000, 'a'));
    auto driver = std::make_shared<StdFileDriver>(folder.path());
    EXPECT_EQ(driver->FileHash("big"), "c4d4b30851182fc4eb8675494d42fd7f17e29c93");
    EXPECT_EQ(driver->FileHash("absent"), "");
}

}  // namespace
}  // namespace kesta
