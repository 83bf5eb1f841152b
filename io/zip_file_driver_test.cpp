#include "io/zip_file_driver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <latch>
#include <random>
#include <thread>

#include "io/file_handle_segment.h"
#include "io/filesystem.h"
#include "io/memory_file_driver.h"
#include "io/std_file_driver.h"
#include "io/testing/log_capture.h"
#include "io/testing/temp_dir.h"
#include "io/testing/zip_builder.h"

namespace kesta {
namespace {

using testing::LogCapture;
using testing::MakeSampleText;
using testing::MakeZipArchive;
using testing::ZipMember;

std::string read_all(FileHandle& handle)
{
    std::string text(handle.GetSize(), '\0');
    text.resize(handle.Read(text.data(), text.size()));
    return text;
}

std::vector<std::string> names_of(const std::vector<DirEntry>& entries)
{
    std::vector<std::string> names;
    for (const DirEntry& entry : entries)
        names.push_back(entry.name + (entry.is_directory ? "/" : ""));
    return names;
}

// Puts bytes into a memory file and gives a read handle on it, as the core archive is served.
std::shared_ptr<FileHandle> memory_archive(const std::vector<std::uint8_t>& bytes)
{
    auto memory = std::make_shared<MemoryFileDriver>();
    memory->Open("archive.zip", kFileWrite)->Write(bytes.data(), bytes.size());
    return memory->Open("archive.zip", kFileRead);
}

const std::string kStoredText = MakeSampleText(5000, 1);
const std::string kDeflatedText = MakeSampleText(70000, 2);
const std::string kSecretText = MakeSampleText(3000, 3);

std::vector<std::uint8_t> sample_archive()
{
    return MakeZipArchive({
        {"readme.txt", kStoredText, false, ""},
        {"shaders/common.i", kDeflatedText, true, ""},
        {"shaders/deep/nested/fog.isl", "fog", true, ""},
        {"shaders/empty.isl", "", true, ""},
        {"textures/", "", false, ""},
        {"textures/noise.raw", kStoredText, false, ""},
        {"Secret.txt", kSecretText, true, "opensesame"},
    });
}

class ZipFileDriverTest : public ::testing::Test {
protected:
    LogCapture captured;
    std::shared_ptr<ZipFileDriver> driver = std::make_shared<ZipFileDriver>(memory_archive(sample_archive()));
};

TEST_F(ZipFileDriverTest, StoredEntriesAreWindowsOnTheArchive)
{
    ASSERT_TRUE(driver->HasArchive());
    EXPECT_EQ(driver->GetCaps(), 0x0Bu);
    auto handle = driver->Open("readme.txt", kFileRead);
    auto* segment = dynamic_cast<FileHandleSegment*>(handle.get());
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->size, kStoredText.size());
    EXPECT_TRUE(captured.Contains("debug", "Mapping zip segment to 'readme.txt' @" + std::to_string(segment->offset)));

    // The window's bytes are the entry's, straight from the archive.
    std::string raw(kStoredText.size(), '\0');
    segment->source->Seek(static_cast<std::int64_t>(segment->offset), kSeekStart);
    segment->source->Read(raw.data(), raw.size());
    EXPECT_EQ(raw, kStoredText);
    EXPECT_EQ(read_all(*handle), kStoredText);
    EXPECT_TRUE(handle->IsEOF());
}

TEST_F(ZipFileDriverTest, DeflatedEntriesAreInflatedIntoTheCache)
{
    auto handle = driver->Open("shaders/common.i", kFileRead);
    ASSERT_TRUE(handle);
    EXPECT_NE(dynamic_cast<ZipHandle*>(handle.get()), nullptr);
    EXPECT_TRUE(captured.Contains("debug", "Mapping unzipped 'shaders/common.i' to memory..."));
    EXPECT_EQ(handle->GetSize(), kDeflatedText.size());
    EXPECT_EQ(read_all(*handle), kDeflatedText);
    EXPECT_TRUE(handle->IsEOF());
    EXPECT_EQ(handle->Seek(10, kSeekStart), 0);
    EXPECT_EQ(handle->Tell(), 10);
    char byte = 0;
    EXPECT_EQ(handle->Read(&byte, 1), 1u);
    EXPECT_EQ(byte, kDeflatedText[10]);
    EXPECT_EQ(handle->Write("x", 1), 0u);

    auto nested = driver->Open("shaders/./deep/nested/../nested/fog.isl", kFileRead);
    ASSERT_TRUE(nested);
    EXPECT_EQ(read_all(*nested), "fog");
    auto empty = driver->Open("shaders/empty.isl", kFileRead);
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->GetSize(), 0u);
}

TEST_F(ZipFileDriverTest, MissingEntriesWritesAndPathOperationsFail)
{
    EXPECT_FALSE(driver->Open("nothing.txt", kFileRead));
    EXPECT_FALSE(driver->Open("README.TXT", kFileRead));  // names are case-sensitive
    EXPECT_FALSE(driver->Open("readme.txt", kFileWrite));
    EXPECT_FALSE(driver->Delete("readme.txt"));
    EXPECT_FALSE(driver->MkDir("new"));
    EXPECT_FALSE(driver->IsDir("shaders"));
    EXPECT_TRUE(driver->Open("readme.txt", kFileRead));
}

TEST_F(ZipFileDriverTest, CachedEntryLivesExactlyAsLongAsItsLastHandle)
{
    auto first = driver->Open("shaders/common.i", kFileRead);
    auto second = driver->Open("shaders/common.i", kFileRead);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(captured.Count("debug", "Mapping unzipped 'shaders/common.i' to memory..."), 1u);

    auto* first_zip = static_cast<ZipHandle*>(first.get());
    auto* second_zip = static_cast<ZipHandle*>(second.get());
    const std::weak_ptr<MemoryFile> watch = static_cast<IOMemoryHandle&>(*first_zip->source).file;
    EXPECT_EQ(watch.lock(), static_cast<IOMemoryHandle&>(*second_zip->source).file);
    EXPECT_EQ(first_zip->entry, second_zip->entry);
    EXPECT_EQ(first_zip->entry->use_count, 2u);

    // Separate handles have separate cursors over the shared bytes.
    first->Seek(100, kSeekStart);
    EXPECT_EQ(second->Tell(), 0);

    first.reset();
    EXPECT_FALSE(watch.expired());
    EXPECT_EQ(second_zip->entry->use_count, 1u);
    EXPECT_EQ(read_all(*second), kDeflatedText);
    second.reset();
    EXPECT_TRUE(watch.expired());

    // Opened again, it is inflated again.
    auto third = driver->Open("shaders/common.i", kFileRead);
    EXPECT_EQ(captured.Count("debug", "Mapping unzipped 'shaders/common.i' to memory..."), 2u);
    EXPECT_EQ(read_all(*third), kDeflatedText);
}

TEST_F(ZipFileDriverTest, ListsDirectChildrenMatchingTheWildcard)
{
    EXPECT_EQ(names_of(driver->Dir("", "*", kDirFiles | kDirDirectories)),
              (std::vector<std::string>{"readme.txt", "shaders/", "textures/", "Secret.txt"}));
    EXPECT_EQ(names_of(driver->Dir("", "*", kDirFiles)), (std::vector<std::string>{"readme.txt", "Secret.txt"}));
    EXPECT_EQ(names_of(driver->Dir("shaders", "*.i*", kDirFiles | kDirDirectories)),
              (std::vector<std::string>{"common.i", "empty.isl"}));
    EXPECT_EQ(names_of(driver->Dir("shaders/", "*", kDirDirectories)), (std::vector<std::string>{"deep/"}));
    // A folder with no entry of its own is listed from the files inside it.
    EXPECT_EQ(names_of(driver->Dir("shaders/deep", "*", kDirDirectories)), (std::vector<std::string>{"nested/"}));
    EXPECT_EQ(names_of(driver->Dir("textures", "*", kDirFiles)), (std::vector<std::string>{"noise.raw"}));
    EXPECT_TRUE(driver->Dir("shader", "*", kDirFiles | kDirDirectories).empty());
    EXPECT_TRUE(driver->Dir("missing", "*", kDirFiles | kDirDirectories).empty());
}

TEST_F(ZipFileDriverTest, PasswordProtectedEntry)
{
    auto locked = driver->Open("Secret.txt", kFileRead);
    EXPECT_FALSE(locked);
    EXPECT_TRUE(captured.Contains("error", "Failed to open file 'Secret.txt'"));

    auto wrong = std::make_shared<ZipFileDriver>(memory_archive(sample_archive()), "wrong");
    EXPECT_FALSE(wrong->Open("Secret.txt", kFileRead));
    EXPECT_TRUE(captured.Contains("error", "Failed to read file 'Secret.txt'"));

    auto right = std::make_shared<ZipFileDriver>(memory_archive(sample_archive()), "opensesame");
    auto handle = right->Open("Secret.txt", kFileRead);
    ASSERT_TRUE(handle) << ::testing::PrintToString(captured.Lines());
    EXPECT_EQ(read_all(*handle), kSecretText);
    // Unencrypted entries open with a password set, too.
    EXPECT_EQ(read_all(*right->Open("shaders/common.i", kFileRead)), kDeflatedText);
}

TEST_F(ZipFileDriverTest, EncryptedStoredEntryIsDecryptedNotMapped)
{
    auto archive = MakeZipArchive({{"plain.bin", kSecretText, false, "key"}});
    auto keyed = std::make_shared<ZipFileDriver>(memory_archive(archive), "key");
    auto handle = keyed->Open("plain.bin", kFileRead);
    ASSERT_TRUE(handle);
    EXPECT_EQ(dynamic_cast<FileHandleSegment*>(handle.get()), nullptr);
    EXPECT_EQ(read_all(*handle), kSecretText);
}

TEST_F(ZipFileDriverTest, SegmentSeekOutsideTheWindowResetsTheCursor)
{
    auto handle = driver->Open("readme.txt", kFileRead);
    const auto size = static_cast<std::int64_t>(kStoredText.size());
    EXPECT_EQ(handle->Seek(10, kSeekStart), 0);
    EXPECT_EQ(handle->Tell(), 10);
    EXPECT_EQ(handle->Seek(5, kSeekCurrent), 0);
    EXPECT_EQ(handle->Tell(), 15);
    EXPECT_EQ(handle->Seek(5, kSeekEnd), 0);
    EXPECT_EQ(handle->Tell(), size - 5);
    char tail[16];
    EXPECT_EQ(handle->Read(tail, sizeof tail), 5u);
    EXPECT_EQ(std::string(tail, 5), kStoredText.substr(kStoredText.size() - 5));
    EXPECT_EQ(handle->Seek(size, kSeekStart), 0);
    EXPECT_TRUE(handle->IsEOF());
    EXPECT_EQ(handle->Seek(size + 1, kSeekStart), -1);
    EXPECT_EQ(handle->Tell(), 0);
    handle->Seek(10, kSeekStart);
    EXPECT_EQ(handle->Seek(-11, kSeekCurrent), -1);
    EXPECT_EQ(handle->Tell(), 0);
}

TEST_F(ZipFileDriverTest, SegmentReadsLeaveOtherPositionsAlone)
{
    auto archive = memory_archive(sample_archive());
    auto own = std::make_shared<ZipFileDriver>(archive);
    auto a = own->Open("readme.txt", kFileRead);
    auto b = own->Open("textures/noise.raw", kFileRead);
    archive->Seek(7, kSeekStart);
    a->Seek(100, kSeekStart);
    char buffer[50];
    b->Read(buffer, sizeof buffer);
    EXPECT_EQ(a->Tell(), 100);
    EXPECT_EQ(b->Tell(), 50);
    EXPECT_EQ(archive->Tell(), 7);
    // Reading a deflated entry through minizip meanwhile does not disturb them either.
    EXPECT_EQ(read_all(*own->Open("shaders/common.i", kFileRead)), kDeflatedText);
    EXPECT_EQ(a->Tell(), 100);
    EXPECT_EQ(a->Read(buffer, sizeof buffer), sizeof buffer);
    EXPECT_EQ(std::string(buffer, sizeof buffer), kStoredText.substr(100, sizeof buffer));
}

TEST_F(ZipFileDriverTest, SegmentsAndInflationShareTheArchiveAcrossThreads)
{
    testing::TempDir folder;
    const std::string big = MakeSampleText(256 * 1024, 9);
    const auto bytes = MakeZipArchive(
        {{"one.bin", big, false, ""}, {"two.bin", big, false, ""}, {"packed.txt", kDeflatedText, true, ""}});
    folder.Write("archive.zip", std::string(bytes.begin(), bytes.end()));
    // A real file on disk: the C stream has one position that every segment and minizip share.
    auto disk = std::make_shared<StdFileDriver>(folder.path());
    auto zip = std::make_shared<ZipFileDriver>(disk->Open("archive.zip", kFileRead));
    ASSERT_TRUE(zip->HasArchive());

    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    // All threads start reading together, so that their reads really overlap.
    std::latch start(4);
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            auto handle = zip->Open(t % 2 ? "one.bin" : "two.bin", kFileRead);
            std::mt19937 random(static_cast<unsigned>(t));
            std::vector<char> chunk(4096);
            start.arrive_and_wait();
            for (int i = 0; i < 2000; ++i) {
                const std::size_t at = random() % (big.size() - chunk.size());
                handle->Seek(static_cast<std::int64_t>(at), kSeekStart);
                const std::uint64_t count = handle->Read(chunk.data(), chunk.size());
                if (count != chunk.size() || handle->Tell() != static_cast<std::int64_t>(at + count) ||
                    !std::equal(chunk.begin(), chunk.end(), big.begin() + static_cast<std::ptrdiff_t>(at)))
                    ++mismatches;
            }
        });
    }
    // Meanwhile minizip seeks and reads the same stream to inflate an entry, again and again.
    threads.emplace_back([&] {
        start.arrive_and_wait();
        for (int i = 0; i < 10; ++i) {
            auto handle = zip->Open("packed.txt", kFileRead);
            if (!handle || read_all(*handle) != kDeflatedText)
                ++mismatches;
        }
    });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mismatches.load(), 0);
}

TEST_F(ZipFileDriverTest, ConcurrentOpensShareOneInflatedCopy)
{
    std::vector<std::thread> openers;
    std::atomic<int> mismatches{0};
    std::latch start(4);
    for (int t = 0; t < 4; ++t) {
        openers.emplace_back([&] {
            start.arrive_and_wait();
            for (int i = 0; i < 20; ++i) {
                auto handle = driver->Open("shaders/common.i", kFileRead);
                if (!handle || read_all(*handle) != kDeflatedText)
                    ++mismatches;
            }
        });
    }
    for (std::thread& opener : openers)
        opener.join();
    EXPECT_EQ(mismatches.load(), 0);
    // Everything was closed: the next open inflates again, and the cache holds nothing else.
    captured.Clear();
    auto handle = driver->Open("shaders/common.i", kFileRead);
    EXPECT_EQ(captured.Count("debug", "Mapping unzipped 'shaders/common.i' to memory..."), 1u);
    EXPECT_EQ(static_cast<ZipHandle&>(*handle).entry->use_count, 1u);
}

TEST_F(ZipFileDriverTest, MountedOnAPrefixAndUnmountedWithLiveHandles)
{
    Filesystem filesystem;
    filesystem.Mount(driver, "@core/");
    EXPECT_EQ(filesystem.FileToString("@core/shaders/deep/nested/fog.isl"), "fog");
    auto stored = filesystem.Open("@core/readme.txt", kFileRead);
    auto deflated = filesystem.Open("@core/shaders/common.i", kFileRead);
    EXPECT_EQ(names_of(filesystem.Dir("@core/shaders", "*.isl", kDirFiles)), (std::vector<std::string>{"empty.isl"}));
    EXPECT_EQ(driver->FileHash("readme.txt").size(), 40u);

    const std::weak_ptr<ZipFileDriver> watch = driver;
    filesystem.Unmount("@core/");
    driver.reset();
    EXPECT_FALSE(watch.expired());
    EXPECT_FALSE(filesystem.Exists("@core/readme.txt"));
    EXPECT_EQ(read_all(*stored), kStoredText);
    EXPECT_EQ(read_all(*deflated), kDeflatedText);
    stored.reset();
    deflated.reset();
    EXPECT_TRUE(watch.expired());
}

TEST(ZipFileDriverBadInput, NoArchiveRefusesEveryOpen)
{
    LogCapture captured;
    const std::vector<std::vector<std::uint8_t>> inputs = {
        {},
        std::vector<std::uint8_t>(100, 0),
        {'P', 'K', 5, 6, 0, 0, 0, 0, 0, 0},
    };
    for (const auto& bytes : inputs) {
        auto driver = std::make_shared<ZipFileDriver>(memory_archive(bytes));
        EXPECT_FALSE(driver->HasArchive());
        EXPECT_FALSE(driver->Open("readme.txt", kFileRead));
        EXPECT_TRUE(driver->Dir("", "*", kDirFiles | kDirDirectories).empty());
    }
    auto without_handle = std::make_shared<ZipFileDriver>(nullptr);
    EXPECT_FALSE(without_handle->Open("readme.txt", kFileRead));
    EXPECT_EQ(captured.Count("error", "Cannot open file with no archive support"), inputs.size() + 1);
}

TEST(ZipFileDriverBadInput, TruncatedArchivesGiveNothingAndNeverCrash)
{
    LogCapture captured;
    const auto whole = sample_archive();
    for (std::size_t cut = 0; cut < whole.size(); cut += 97) {
        auto driver = std::make_shared<ZipFileDriver>(memory_archive({whole.begin(), whole.begin() + cut}));
        EXPECT_FALSE(driver->HasArchive()) << "cut at " << cut;
        EXPECT_FALSE(driver->Open("shaders/common.i", kFileRead));
    }
}

TEST(ZipFileDriverBadInput, RandomBytesAreNoArchive)
{
    LogCapture captured;
    std::mt19937 random(1234);
    for (int round = 0; round < 50; ++round) {
        std::vector<std::uint8_t> bytes(random() % 4096);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        auto driver = std::make_shared<ZipFileDriver>(memory_archive(bytes));
        EXPECT_FALSE(driver->HasArchive());
        EXPECT_TRUE(driver->Dir("", "*", kDirFiles | kDirDirectories).empty());
    }
}

TEST(ZipFileDriverBadInput, CorruptedDataFailsWithTheReadMessage)
{
    LogCapture captured;
    auto bytes = MakeZipArchive({{"data.txt", kDeflatedText, true, ""}});
    // Damage the middle of the deflate stream; the directory at the end stays intact.
    for (std::size_t i = 200; i < 260; ++i)
        bytes[i] ^= 0x5A;
    auto driver = std::make_shared<ZipFileDriver>(memory_archive(bytes));
    ASSERT_TRUE(driver->HasArchive());
    EXPECT_FALSE(driver->Open("data.txt", kFileRead));
    EXPECT_TRUE(captured.Contains("error", "Failed to read file 'data.txt'"));
    EXPECT_EQ(names_of(driver->Dir("", "*", kDirFiles)), (std::vector<std::string>{"data.txt"}));
}

TEST(ZipFileDriverBadInput, ChecksumMismatchIsRefusedAndNeverServed)
{
    LogCapture captured;
    const std::string text = MakeSampleText(100000);
    auto bytes = MakeZipArchive({{"data.txt", text, true, ""}, {"other.txt", text, true, ""}});
    // The deflate stream stays intact and inflates to the right length; only the CRC-32 recorded for
    // data.txt (local header offset 14, central record offset 16) no longer matches it.
    for (const std::uint8_t kind : {std::uint8_t{3}, std::uint8_t{1}}) {
        const std::uint8_t signature[] = {'P', 'K', kind, static_cast<std::uint8_t>(kind + 1)};
        auto header = std::search(bytes.begin(), bytes.end(), std::begin(signature), std::end(signature));
        ASSERT_NE(header, bytes.end());
        header[kind == 3 ? 14 : 16] ^= 0x01;
    }
    auto driver = std::make_shared<ZipFileDriver>(memory_archive(bytes));
    ASSERT_TRUE(driver->HasArchive());
    EXPECT_FALSE(driver->Open("data.txt", kFileRead));
    EXPECT_EQ(captured.Count("error", "Failed to read file 'data.txt'"), 1u);
    // Nothing of the refused entry is left in the cache for a second open to find.
    EXPECT_FALSE(driver->Open("data.txt", kFileRead));
    EXPECT_EQ(captured.Count("error", "Failed to read file 'data.txt'"), 2u);
    // The intact entry beside it is served whole.
    auto other = driver->Open("other.txt", kFileRead);
    ASSERT_TRUE(other);
    std::string read(text.size() + 1, '\0');
    read.resize(other->Read(read.data(), read.size()));
    EXPECT_EQ(read, text);
}

TEST(ZipFileDriverBadInput, ImplausibleUncompressedSizeIsRefusedBeforeAllocation)
{
    LogCapture captured;
    auto bytes = MakeZipArchive({{"bomb.txt", "tiny", true, ""}});
    // Claim 3 GiB in the central directory record (uncompressed size at offset 24 of it).
    const std::uint8_t signature[] = {'P', 'K', 1, 2};
    auto central = std::search(bytes.begin(), bytes.end(), std::begin(signature), std::end(signature));
    ASSERT_NE(central, bytes.end());
    const std::uint32_t claimed = 0xC0000000u;
    for (int i = 0; i < 4; ++i)
        central[24 + i] = static_cast<std::uint8_t>(claimed >> (8 * i));
    auto driver = std::make_shared<ZipFileDriver>(memory_archive(bytes));
    ASSERT_TRUE(driver->HasArchive());
    EXPECT_FALSE(driver->Open("bomb.txt", kFileRead));
    EXPECT_TRUE(captured.Contains("error", "Failed to read file 'bomb.txt'"));
}

}  // namespace
}  // namespace kesta
