#include "io/memory_file_driver.h"

#include <gtest/gtest.h>

#include <string>

namespace kesta {
namespace {

std::string read_all(FileHandle& handle)
{
    std::string text(handle.GetSize(), '\0');
    text.resize(handle.Read(text.data(), text.size()));
    return text;
}

class MemoryFileDriverTest : public ::testing::Test {
protected:
    std::shared_ptr<MemoryFileDriver> driver = std::make_shared<MemoryFileDriver>();

    void WriteFile(std::string_view name, std::string_view content)
    {
        auto handle = driver->Open(name, kFileWrite);
        ASSERT_TRUE(handle);
        ASSERT_EQ(handle->Write(content.data(), content.size()), content.size());
    }
};

TEST_F(MemoryFileDriverTest, ReadingNeedsAnExistingFileWritingCreatesIt)
{
    EXPECT_FALSE(driver->Open("missing", kFileRead));
    WriteFile("a", "hello");
    auto handle = driver->Open("a", kFileRead);
    ASSERT_TRUE(handle);
    EXPECT_EQ(read_all(*handle), "hello");
    // Names compare exactly.
    EXPECT_FALSE(driver->Open("A", kFileRead));
    EXPECT_FALSE(driver->Open("a ", kFileRead));
    EXPECT_EQ(driver->GetCaps(), 0x0Fu);
}

TEST_F(MemoryFileDriverTest, GrowsInStepsBeyondWhatIsNeeded)
{
    auto handle = std::static_pointer_cast<IOMemoryHandle>(driver->Open("grow", kFileWrite));
    ASSERT_TRUE(handle);
    handle->Write("abc", 3);
    EXPECT_EQ(handle->file->data.size(), 3u + MemoryFileDriver::kGrowthStep);
    EXPECT_EQ(handle->file->size, 3);

    // Writes that fit in the slack do not reallocate.
    const std::string filler(MemoryFileDriver::kGrowthStep, 'x');
    handle->Write(filler.data(), filler.size());
    EXPECT_EQ(handle->file->data.size(), 3u + MemoryFileDriver::kGrowthStep);
    handle->Write("z", 1);
    EXPECT_EQ(handle->file->data.size(), 3u + MemoryFileDriver::kGrowthStep + 1 + MemoryFileDriver::kGrowthStep);
    EXPECT_EQ(handle->GetSize(), 3u + MemoryFileDriver::kGrowthStep + 1);
}

TEST_F(MemoryFileDriverTest, ReopeningForWritingKeepsTheContent)
{
    WriteFile("doc", "0123456789");
    {
        auto handle = driver->Open("doc", kFileWrite);
        EXPECT_EQ(handle->Tell(), 0);
        EXPECT_EQ(handle->GetSize(), 10u);
        handle->Write("AB", 2);
    }
    auto reader = driver->Open("doc", kFileRead);
    EXPECT_EQ(read_all(*reader), "AB23456789");
}

TEST_F(MemoryFileDriverTest, ModesRestrictReadAndWrite)
{
    WriteFile("f", "data");
    auto reader = driver->Open("f", kFileRead);
    EXPECT_EQ(reader->Write("xx", 2), 0u);
    EXPECT_EQ(reader->Tell(), 0);
    auto writer = driver->Open("f", kFileWrite);
    char buffer[4];
    EXPECT_EQ(writer->Read(buffer, sizeof buffer), 0u);
    EXPECT_EQ(read_all(*reader), "data");
}

TEST_F(MemoryFileDriverTest, SeekClampsIntoTheFileAndCountsFromTheEndBackward)
{
    WriteFile("f", "0123456789");
    auto handle = driver->Open("f", kFileRead);
    EXPECT_EQ(handle->Seek(4, kSeekStart), 0);
    EXPECT_EQ(handle->Tell(), 4);
    EXPECT_EQ(handle->Seek(3, kSeekCurrent), 0);
    EXPECT_EQ(handle->Tell(), 7);
    EXPECT_EQ(handle->Seek(2, kSeekEnd), 0);
    EXPECT_EQ(handle->Tell(), 8);
    EXPECT_EQ(handle->Seek(100, kSeekStart), 0);
    EXPECT_EQ(handle->Tell(), 10);
    EXPECT_TRUE(handle->IsEOF());
    EXPECT_EQ(handle->Seek(-100, kSeekCurrent), 0);
    EXPECT_EQ(handle->Tell(), 0);
    EXPECT_FALSE(handle->IsEOF());
    handle->Seek(6, kSeekStart);
    char buffer[16];
    EXPECT_EQ(handle->Read(buffer, sizeof buffer), 4u);
    EXPECT_EQ(std::string(buffer, 4), "6789");
    handle->Rewind();
    EXPECT_EQ(handle->Tell(), 0);
}

TEST_F(MemoryFileDriverTest, DeletedFileLivesOnInOpenHandles)
{
    WriteFile("f", "still here");
    auto handle = driver->Open("f", kFileRead);
    EXPECT_TRUE(driver->Delete("f"));
    EXPECT_FALSE(driver->Open("f", kFileRead));
    EXPECT_FALSE(driver->Delete("f"));
    EXPECT_EQ(read_all(*handle), "still here");
}

TEST_F(MemoryFileDriverTest, AddedFileTakesOverItsBytesAndReplacesTheOldOne)
{
    WriteFile("f", "old content");
    auto old_reader = driver->Open("f", kFileRead);
    std::vector<std::uint8_t> bytes = {'n', 'e', 'w'};
    const std::uint8_t* storage = bytes.data();
    driver->AddFile("f", std::move(bytes));

    auto reader = std::static_pointer_cast<IOMemoryHandle>(driver->Open("f", kFileRead));
    EXPECT_EQ(reader->file->data.data(), storage);
    EXPECT_EQ(read_all(*reader), "new");
    EXPECT_EQ(read_all(*old_reader), "old content");
    EXPECT_TRUE(driver->Delete("f"));
    EXPECT_FALSE(driver->Open("f", kFileRead));
}

TEST_F(MemoryFileDriverTest, FileHashIsTheSha1OfTheContent)
{
    WriteFile("abc", "abc");
    EXPECT_EQ(driver->FileHash("abc"), "a9993e364706816aba3e25717850c26c9cd0d89d");
    WriteFile("empty", "");
    EXPECT_EQ(driver->FileHash("empty"), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
    EXPECT_EQ(driver->FileHash("missing"), "");
}

}  // namespace
}  // namespace kesta
