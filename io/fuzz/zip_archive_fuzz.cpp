// Opens arbitrary bytes as a ZIP archive held in a memory file, lists every folder, and opens and
// reads every entry: nothing may crash, hang, leak or read out of bounds.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "io/memory_file_driver.h"
#include "io/zip_file_driver.h"

namespace {

constexpr int kMaxDepth = 8;

void read_entry(kesta::ZipFileDriver& zip, const std::string& path)
{
    const std::shared_ptr<kesta::FileHandle> handle = zip.Open(path, kesta::kFileRead);
    if (!handle)
        return;
    // A second handle on the same entry shares the cached copy.
    const std::shared_ptr<kesta::FileHandle> again = zip.Open(path, kesta::kFileRead);
    std::vector<std::uint8_t> chunk(4096);
    const std::uint64_t size = handle->GetSize();
    std::uint64_t total = 0;
    while (total < size) {
        const std::uint64_t count = handle->Read(chunk.data(), chunk.size());
        if (count == 0)
            break;
        total += count;
    }
    handle->IsEOF();
    handle->Seek(static_cast<std::int64_t>(size / 2), kesta::kSeekStart);
    handle->Read(chunk.data(), 16);
    handle->Seek(1, kesta::kSeekEnd);
    handle->Tell();
    if (again)
        again->Read(chunk.data(), chunk.size());
}

void walk(kesta::ZipFileDriver& zip, const std::string& folder, int depth)
{
    const std::string prefix = folder.empty() ? folder : folder + "/";
    for (const kesta::DirEntry& entry : zip.Dir(folder, "*", kesta::kDirFiles | kesta::kDirDirectories)) {
        if (!entry.is_directory)
            read_entry(zip, prefix + entry.name);
        else if (depth < kMaxDepth)
            walk(zip, prefix + entry.name, depth + 1);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    auto memory = std::make_shared<kesta::MemoryFileDriver>();
    memory->Open("archive.zip", kesta::kFileWrite)->Write(data, size);
    // Odd-sized inputs also try the password the encrypted seed was made with.
    const std::string password = size % 2 ? "norvane" : "";
    auto zip = std::make_shared<kesta::ZipFileDriver>(memory->Open("archive.zip", kesta::kFileRead), password);
    walk(*zip, "", 0);
    // Names the listing may not produce: the root, a folder, a missing file.
    read_entry(*zip, "");
    read_entry(*zip, "a");
    return 0;
}
