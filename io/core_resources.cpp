#include "io/core_resources.h"

#include "foundation/log/log.h"
#include "io/filesystem.h"
#include "io/memory_file_driver.h"
#include "io/zip_file_driver.h"

// The archive file is assembled into read-only data at this point of the object file; its path
// comes from the build.
#ifndef NORVANE_CORE_ARCHIVE_PATH
#error "NORVANE_CORE_ARCHIVE_PATH must name the packed core archive"
#endif

asm(".section .rodata.norvane_core_archive,\"a\",@progbits\n"
    ".balign 16\n"
    ".local norvane_core_archive_begin\n"
    "norvane_core_archive_begin:\n"
    ".incbin \"" NORVANE_CORE_ARCHIVE_PATH
    "\"\n"
    ".local norvane_core_archive_end\n"
    "norvane_core_archive_end:\n"
    ".previous\n");

extern "C" const std::uint8_t norvane_core_archive_begin[];
extern "C" const std::uint8_t norvane_core_archive_end[];

namespace kesta {

namespace {
constexpr const char* kCorePrefix = "@core/";
constexpr const char* kArchiveName = "core.zip";
}  // namespace

std::span<const std::uint8_t> CoreArchiveBytes()
{
    return {norvane_core_archive_begin,
            static_cast<std::size_t>(norvane_core_archive_end - norvane_core_archive_begin)};
}

void MountCoreResources()
{
    if (!g_filesystem)
        return;
    if (g_filesystem->GetDriver(kCorePrefix)) {
        debug("Not mounting internal core resources since '@core/' is already mounted");
        return;
    }
    // The bytes are copied once into a memory file; the ZIP driver reads the archive from there
    // and its handle keeps the memory driver alive.
    auto memory = std::make_shared<MemoryFileDriver>();
    if (auto file = memory->Open(kArchiveName, kFileWrite)) {
        const std::span<const std::uint8_t> bytes = CoreArchiveBytes();
        memory->Write(*file, bytes.data(), bytes.size());
        memory->Close(*file);
    }
    auto zip = std::make_shared<ZipFileDriver>(memory->Open(kArchiveName, kFileRead));
    g_filesystem->Mount(zip, kCorePrefix);
}

}  // namespace kesta
