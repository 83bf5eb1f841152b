// Reading a large stored archive entry through its segment against reading the same bytes from a
// plain file: the segment's seek-read-seek on the shared archive handle should cost little. The
// argument is the size of each read: 1 MiB for a streaming reader, the whole entry for the
// filesystem's whole-file helpers, which read a file in one call.

#include <benchmark/benchmark.h>
#include <minizip/zip.h>
#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "io/file_handle_segment.h"
#include "io/std_file_driver.h"
#include "io/zip_file_driver.h"

namespace {

constexpr std::size_t kPayloadSize = 64u << 20;
constexpr std::size_t kWritePiece = 64u << 10;

// A temporary folder with "plain.bin" and "archive.zip", whose stored member "payload.bin" holds
// the same bytes.
class Fixture {
public:
    Fixture()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "norvane_bench_XXXXXX").string();
        folder_ = ::mkdtemp(pattern.data()) ? pattern : std::string();
        std::vector<std::uint8_t> payload(kPayloadSize);
        std::mt19937_64 random(42);
        for (std::size_t i = 0; i < payload.size(); i += 8) {
            const std::uint64_t value = random();
            for (int b = 0; b < 8; ++b)
                payload[i + b] = static_cast<std::uint8_t>(value >> (8 * b));
        }
        std::FILE* plain = std::fopen((folder_ + "/plain.bin").c_str(), "wb");
        // Written in the pieces minizip writes the archive in, so that both files sit alike in
        // the page cache.
        for (std::size_t at = 0; at < payload.size(); at += kWritePiece)
            std::fwrite(payload.data() + at, 1, kWritePiece, plain);
        std::fclose(plain);

        zipFile zip = zipOpen64((folder_ + "/archive.zip").c_str(), APPEND_STATUS_CREATE);
        zip_fileinfo info{};
        zipOpenNewFileInZip64(zip, "payload.bin", &info, nullptr, 0, nullptr, 0, nullptr, 0, 0, 0);
        zipWriteInFileInZip(zip, payload.data(), static_cast<unsigned>(payload.size()));
        zipCloseFileInZip(zip);
        zipClose(zip, nullptr);
        driver_ = std::make_shared<kesta::StdFileDriver>(folder_);
    }
    ~Fixture() { std::filesystem::remove_all(folder_); }

    const std::shared_ptr<kesta::StdFileDriver>& driver() const { return driver_; }

private:
    std::string folder_;
    std::shared_ptr<kesta::StdFileDriver> driver_;
};

Fixture& fixture()
{
    static Fixture instance;
    return instance;
}

void read_whole(benchmark::State& state, kesta::FileHandle& handle, std::vector<std::uint8_t>& chunk,
                std::int64_t start = 0)
{
    handle.Seek(start, kesta::kSeekStart);
    std::uint64_t total = 0;
    while (total < kPayloadSize) {
        const std::uint64_t count =
            handle.Read(chunk.data(), std::min<std::uint64_t>(chunk.size(), kPayloadSize - total));
        if (count == 0)
            break;
        total += count;
    }
    if (total != kPayloadSize)
        state.SkipWithError("short read");
    state.counters["bytes_read"] = static_cast<double>(total);
    benchmark::DoNotOptimize(chunk.data());
}

void BM_PlainFileRead(benchmark::State& state)
{
    auto handle = fixture().driver()->Open("plain.bin", kesta::kFileRead);
    std::vector<std::uint8_t> chunk(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        read_whole(state, *handle, chunk);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kPayloadSize));
}

void BM_StoredSegmentRead(benchmark::State& state)
{
    auto zip = std::make_shared<kesta::ZipFileDriver>(fixture().driver()->Open("archive.zip", kesta::kFileRead));
    auto handle = zip->Open("payload.bin", kesta::kFileRead);
    if (!handle) {
        state.SkipWithError("no segment");
        return;
    }
    std::vector<std::uint8_t> chunk(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        read_whole(state, *handle, chunk);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kPayloadSize));
}

// The entry's own bytes in the archive file, read directly: the same page-cache pages the segment
// reads, without the segment.
void BM_ArchiveRangeRead(benchmark::State& state)
{
    auto zip = std::make_shared<kesta::ZipFileDriver>(fixture().driver()->Open("archive.zip", kesta::kFileRead));
    auto segment = std::dynamic_pointer_cast<kesta::FileHandleSegment>(zip->Open("payload.bin", kesta::kFileRead));
    auto handle = fixture().driver()->Open("archive.zip", kesta::kFileRead);
    if (!segment || !handle) {
        state.SkipWithError("no segment");
        return;
    }
    std::vector<std::uint8_t> chunk(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        read_whole(state, *handle, chunk, static_cast<std::int64_t>(segment->offset));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kPayloadSize));
}

}  // namespace

BENCHMARK(BM_PlainFileRead)->Arg(1 << 20)->Arg(kPayloadSize)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ArchiveRangeRead)->Arg(1 << 20)->Arg(kPayloadSize)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StoredSegmentRead)->Arg(1 << 20)->Arg(kPayloadSize)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
