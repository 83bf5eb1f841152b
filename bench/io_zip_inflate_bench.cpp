// Opening a deflated archive entry (inflate into the driver's cache) against inflating the same
// deflate stream with zlib straight into a buffer.

#include <benchmark/benchmark.h>
#include <minizip/zip.h>
#include <zlib.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "io/memory_file_driver.h"
#include "io/zip_file_driver.h"

namespace {

constexpr std::size_t kEntrySize = 16u << 20;
constexpr int kLevel = 6;

// Text of engine words and numbers: compresses about as well as shader sources do.
std::vector<std::uint8_t> sample_text()
{
    static const char* const kWords[] = {"vertex ", "shader ", "texture ", "light ",  "scene ",  "node ",
                                         "mesh ",   "frame ",  "camera ",  "float4 ", "return ", "\n"};
    std::mt19937 random(7);
    std::string text;
    text.reserve(kEntrySize + 16);
    while (text.size() < kEntrySize) {
        text += kWords[random() % 12];
        if (random() % 5 == 0)
            text += std::to_string(random() % 1000000);
    }
    text.resize(kEntrySize);
    return {text.begin(), text.end()};
}

std::vector<std::uint8_t> deflate_raw(const std::vector<std::uint8_t>& data)
{
    z_stream stream{};
    deflateInit2(&stream, kLevel, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    std::vector<std::uint8_t> out(deflateBound(&stream, data.size()));
    stream.next_in = const_cast<Bytef*>(data.data());
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

// The archive lives in a memory file, as the engine's core archive does.
std::shared_ptr<kesta::FileHandle> memory_archive(const std::vector<std::uint8_t>& data)
{
    const std::string path = "/tmp/norvane_inflate_bench.zip";
    zipFile zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
    zip_fileinfo info{};
    zipOpenNewFileInZip64(zip, "data.txt", &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED, kLevel, 0);
    zipWriteInFileInZip(zip, data.data(), static_cast<unsigned>(data.size()));
    zipCloseFileInZip(zip);
    zipClose(zip, nullptr);

    std::vector<std::uint8_t> bytes;
    if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
        std::uint8_t buffer[65536];
        while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file))
            bytes.insert(bytes.end(), buffer, buffer + count);
        std::fclose(file);
    }
    std::remove(path.c_str());
    auto memory = std::make_shared<kesta::MemoryFileDriver>();
    memory->Open("archive.zip", kesta::kFileWrite)->Write(bytes.data(), bytes.size());
    return memory->Open("archive.zip", kesta::kFileRead);
}

void BM_ZlibInflate(benchmark::State& state)
{
    const std::vector<std::uint8_t> compressed = deflate_raw(sample_text());
    for (auto _ : state) {
        std::unique_ptr<std::uint8_t[]> out(new std::uint8_t[kEntrySize]);
        z_stream stream{};
        inflateInit2(&stream, -MAX_WBITS);
        stream.next_in = const_cast<Bytef*>(compressed.data());
        stream.avail_in = static_cast<uInt>(compressed.size());
        stream.next_out = out.get();
        stream.avail_out = static_cast<uInt>(kEntrySize);
        if (inflate(&stream, Z_FINISH) != Z_STREAM_END || stream.total_out != kEntrySize)
            state.SkipWithError("inflate failed");
        inflateEnd(&stream);
        benchmark::DoNotOptimize(out.get());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kEntrySize));
}

void BM_ZipOpenDeflated(benchmark::State& state)
{
    auto zip = std::make_shared<kesta::ZipFileDriver>(memory_archive(sample_text()));
    for (auto _ : state) {
        auto handle = zip->Open("data.txt", kesta::kFileRead);
        if (!handle || handle->GetSize() != kEntrySize)
            state.SkipWithError("open failed");
        benchmark::DoNotOptimize(handle.get());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kEntrySize));
}

}  // namespace

BENCHMARK(BM_ZlibInflate)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ZipOpenDeflated)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
