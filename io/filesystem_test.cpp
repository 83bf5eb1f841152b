#include "io/filesystem.h"

#include <gtest/gtest.h>

#include <string>

#include "foundation/format.h"
#include "io/memory_file_driver.h"
#include "io/std_file_driver.h"
#include "io/testing/log_capture.h"
#include "io/testing/temp_dir.h"

namespace kesta {
namespace {

using testing::LogCapture;
using namespace std::string_literals;

std::string id(const std::shared_ptr<FileDriver>& driver)
{
    return format("%1") << static_cast<const void*>(driver.get());
}

std::shared_ptr<MemoryFileDriver> memory_with(std::string_view name, std::string_view content)
{
    auto driver = std::make_shared<MemoryFileDriver>();
    auto handle = driver->Open(name, kFileWrite);
    handle->Write(content.data(), content.size());
    return driver;
}

class FilesystemTest : public ::testing::Test {
protected:
    LogCapture captured;
    Filesystem filesystem;
};

TEST_F(FilesystemTest, FirstMountedPrefixWinsAndSeesThePathWithoutIt)
{
    auto first = memory_with("b/c", "first");
    auto second = memory_with("c", "second");
    filesystem.Mount(first, "a/");
    filesystem.Mount(second, "a/b/");

    EXPECT_EQ(filesystem.GetDriver("a/b/c"), first);
    EXPECT_EQ(filesystem.IsPrefixMounted("a/b/c"), first);
    EXPECT_EQ(filesystem.GetPrefix("a/b/c"), "a/");
    EXPECT_EQ(filesystem.StripPrefix("a/b/c"), "b/c");
    EXPECT_EQ(filesystem.FileToString("a/b/c"), "first");

    EXPECT_EQ(filesystem.GetDriver("x/a/"), nullptr);
    EXPECT_EQ(filesystem.GetPrefix("x/a/"), "");
    EXPECT_EQ(filesystem.StripPrefix("x/a/"), "x/a/");
    // Prefixes compare byte for byte.
    EXPECT_EQ(filesystem.GetDriver("A/b/c"), nullptr);
}

TEST_F(FilesystemTest, PathEqualToPrefixReachesTheDriverAsEmptyPath)
{
    auto driver = memory_with("", "whole");
    filesystem.Mount(driver, "@core/");
    EXPECT_EQ(filesystem.StripPrefix("@core/"), "");
    EXPECT_EQ(filesystem.FileToString("@core/"), "whole");
}

TEST_F(FilesystemTest, EmptyPrefixMountedFirstTakesEveryPath)
{
    auto everything = memory_with("@core/x", "from empty prefix");
    auto core = memory_with("x", "from core");
    filesystem.Mount(everything, "");
    filesystem.Mount(core, "@core/");
    EXPECT_EQ(filesystem.FileToString("@core/x"), "from empty prefix");
    EXPECT_EQ(filesystem.GetPrefix("anything"), "");
    EXPECT_EQ(filesystem.GetDriver("anything"), everything);
}

TEST_F(FilesystemTest, FailedPrefixMatchDoesNotFallBackToRootDrivers)
{
    auto root = memory_with("@data/file", "root has it");
    auto data = std::make_shared<MemoryFileDriver>();
    filesystem.Mount(root);
    filesystem.Mount(data, "@data/");
    captured.Clear();

    EXPECT_FALSE(filesystem.Open("@data/file", kFileRead));
    EXPECT_TRUE(captured.Contains(
        "debug", (format("Failed to open '@data/file' on driver %1 (prefix match: @data/)") << id(data)).str()));
    EXPECT_FALSE(filesystem.Exists("@data/file"));
}

TEST_F(FilesystemTest, UnprefixedPathsGoToRootDriversInOrder)
{
    EXPECT_FALSE(filesystem.Open("nowhere", kFileRead));
    EXPECT_TRUE(captured.Contains("debug", "Failed to open 'nowhere' on any mounted file driver"));

    auto first = memory_with("shared", "first");
    auto second = memory_with("shared", "second");
    second->Open("only-second", kFileWrite)->Write("2", 1);
    filesystem.Mount(first);
    filesystem.Mount(second);
    EXPECT_EQ(filesystem.FileToString("shared"), "first");
    EXPECT_EQ(filesystem.FileToString("only-second"), "2");
    EXPECT_EQ(filesystem.FileToString("nowhere"), "");
    EXPECT_FALSE(filesystem.Exists("nowhere"));
}

TEST_F(FilesystemTest, MountLogsBeforeRefusingDuplicates)
{
    auto first = std::make_shared<MemoryFileDriver>();
    auto second = std::make_shared<MemoryFileDriver>();
    filesystem.Mount(first, "@p/");
    filesystem.Mount(second, "@p/");
    EXPECT_EQ(
        captured.Lines(),
        (std::vector<std::string>{": " + (format("Mount driver %1 on prefix @p/ (relative to '')") << id(first)).str(),
                                  ": " + (format("Mount driver %1 on prefix @p/ (relative to '')") << id(second)).str(),
                                  "error: Prefix @p/ is already mounted on this filesystem"}));
    EXPECT_EQ(filesystem.GetDriver("@p/x"), first);
    ASSERT_EQ(filesystem.mounts().size(), 1u);

    captured.Clear();
    filesystem.Mount(first);
    filesystem.Mount(first);
    EXPECT_EQ(
        captured.Lines(),
        (std::vector<std::string>{
            ": " + (format("Mount root driver %1 (relative to '')") << id(first)).str(),
            ": " + (format("Mount root driver %1 (relative to '')") << id(first)).str(),
            "error: " +
                (format("Driver %1 is already mounted as a root driver on this filesystem") << id(first)).str()}));
    EXPECT_EQ(filesystem.root_drivers().size(), 1u);

    // The same driver on a second prefix is fine.
    filesystem.Mount(first, "@q/");
    EXPECT_EQ(filesystem.GetDriver("@q/x"), first);
}

TEST_F(FilesystemTest, MountLogNamesTheDriversBase)
{
    auto disk = std::make_shared<StdFileDriver>("/srv/assets");
    filesystem.Mount(disk, "@assets/");
    EXPECT_TRUE(captured.Contains(
        "", (format("Mount driver %1 on prefix @assets/ (relative to '/srv/assets/')") << id(disk)).str()));
}

TEST_F(FilesystemTest, UnmountRemovesTheDriverEverywhereButOpenHandlesKeepWorking)
{
    auto driver = memory_with("f", "payload");
    auto other = std::make_shared<MemoryFileDriver>();
    filesystem.Mount(driver, "@a/");
    filesystem.Mount(other, "@b/");
    filesystem.Mount(driver, "@c/");
    filesystem.Mount(driver);
    auto handle = filesystem.Open("@a/f", kFileRead);
    ASSERT_TRUE(handle);

    std::weak_ptr<MemoryFileDriver> watch = driver;
    captured.Clear();
    filesystem.Unmount(driver);
    driver.reset();
    EXPECT_EQ(captured.Lines().size(), 1u);
    EXPECT_TRUE(captured.Contains("", (format("Unmount driver %1") << id(watch.lock())).str()));
    ASSERT_EQ(filesystem.mounts().size(), 1u);
    EXPECT_EQ(filesystem.mounts()[0].prefix, "@b/");
    EXPECT_TRUE(filesystem.root_drivers().empty());

    EXPECT_FALSE(watch.expired());
    std::string text(7, '\0');
    EXPECT_EQ(handle->Read(text.data(), text.size()), 7u);
    EXPECT_EQ(text, "payload");
    handle.reset();
    EXPECT_TRUE(watch.expired());
}

TEST_F(FilesystemTest, UnmountByPrefixUsesThePrefixMatch)
{
    auto a = std::make_shared<MemoryFileDriver>();
    auto b = std::make_shared<MemoryFileDriver>();
    filesystem.Mount(a, "@a/");
    filesystem.Mount(b, "@b/");
    captured.Clear();
    filesystem.Unmount("@zzz/");
    EXPECT_TRUE(captured.Lines().empty());
    filesystem.Unmount("@a/some/file");
    EXPECT_EQ(filesystem.GetDriver("@a/"), nullptr);
    EXPECT_EQ(filesystem.GetDriver("@b/"), b);
    filesystem.Mount(a);
    filesystem.UnmountAll();
    EXPECT_TRUE(filesystem.mounts().empty());
    EXPECT_TRUE(filesystem.root_drivers().empty());
}

TEST_F(FilesystemTest, WholeFileHelpers)
{
    auto memory = std::make_shared<MemoryFileDriver>();
    filesystem.Mount(memory, "@m/");
    const std::string with_zero = "line one\nline two\0with a zero byte"s;
    ASSERT_TRUE(filesystem.DataToFile("@m/text", with_zero.data(), with_zero.size()));
    EXPECT_EQ(filesystem.FileToString("@m/text"), with_zero);
    EXPECT_EQ(filesystem.FileSize("@m/text"), with_zero.size());
    EXPECT_EQ(filesystem.FileSize("@m/none"), 0u);

    std::vector<std::uint8_t> data;
    ASSERT_TRUE(filesystem.FileToData("@m/text", data));
    EXPECT_EQ(std::string(data.begin(), data.end()), with_zero);
    EXPECT_FALSE(filesystem.FileToData("@m/none", data));

    ASSERT_TRUE(filesystem.Copy("@m/text", "@m/copy"));
    EXPECT_EQ(filesystem.FileToString("@m/copy"), with_zero);
    ASSERT_TRUE(filesystem.Move("@m/copy", "@m/moved"));
    EXPECT_FALSE(filesystem.Exists("@m/copy"));
    EXPECT_EQ(filesystem.FileToString("@m/moved"), with_zero);
    EXPECT_FALSE(filesystem.Copy("@m/none", "@m/other"));
    EXPECT_FALSE(filesystem.Exists("@m/other"));
}

TEST_F(FilesystemTest, FileToBufferGrowsOnlyWhenTooSmallInWholeGranules)
{
    auto memory = memory_with("f", std::string(10000, 'q'));
    filesystem.Mount(memory, "@m/");
    DataBuffer buffer;
    buffer.cursor = 100;
    ASSERT_TRUE(filesystem.FileToBuffer("@m/f", buffer));
    EXPECT_EQ(buffer.storage.size(), 16384u);  // (100 + 10000) rounded down to 8192, plus 8192
    EXPECT_EQ(buffer.size, 10000u);
    EXPECT_EQ(buffer.storage[0], 'q');
    EXPECT_EQ(buffer.storage[9999], 'q');

    DataBuffer big;
    big.storage.resize(50000, 'z');
    ASSERT_TRUE(filesystem.FileToBuffer("@m/f", big));
    EXPECT_EQ(big.storage.size(), 50000u);
    EXPECT_EQ(big.storage[10000], 'z');
    EXPECT_FALSE(filesystem.FileToBuffer("@m/none", big));
}

TEST_F(FilesystemTest, PathOperationsReachPrefixedDriversOnly)
{
    testing::TempDir folder;
    folder.Write("sub/file.txt", "x");
    auto disk = std::make_shared<StdFileDriver>(folder.path());
    filesystem.Mount(disk);
    EXPECT_FALSE(filesystem.IsDir("sub"));
    EXPECT_TRUE(filesystem.Dir("sub", "*", kDirFiles).empty());
    EXPECT_FALSE(filesystem.MkDir("made"));
    EXPECT_FALSE(filesystem.Delete("sub/file.txt"));

    filesystem.Mount(disk, "@disk/");
    EXPECT_TRUE(filesystem.IsDir("@disk/sub"));
    const auto entries = filesystem.Dir("@disk/sub", "*", kDirFiles);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "file.txt");
    EXPECT_TRUE(filesystem.MkDir("@disk/made"));
    EXPECT_TRUE(filesystem.IsDir("@disk/made"));
    EXPECT_TRUE(filesystem.Delete("@disk/sub/file.txt"));
    EXPECT_FALSE(filesystem.Exists("sub/file.txt"));
}

TEST_F(FilesystemTest, MapsPathsThroughTheDriverThatHasThem)
{
    testing::TempDir folder;
    folder.Write("present.txt", "x");
    auto disk = std::make_shared<StdFileDriver>(folder.path());
    filesystem.Mount(std::make_shared<MemoryFileDriver>());
    filesystem.Mount(disk);
    filesystem.Mount(disk, "@disk/");

    EXPECT_EQ(filesystem.MapToAbsolute("@disk/a/../present.txt"), folder.File("present.txt"));
    EXPECT_EQ(filesystem.MapToAbsolute("present.txt"), folder.File("present.txt"));
    EXPECT_EQ(filesystem.MapToAbsolute("absent.txt"), "absent.txt");
    EXPECT_EQ(filesystem.MapToRelative(folder.path() + "/./dir/../present.txt"), "present.txt");
    EXPECT_EQ(filesystem.MapToRelative("elsewhere/./x"), "elsewhere/x");
}

}  // namespace
}  // namespace kesta
