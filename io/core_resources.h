#pragma once
// The engine's standard resources (shaders, fonts, ...) travel inside the program as one ZIP
// archive and are mounted on "@core/", so that a program works with no files on disk. A host can
// replace the whole set by mounting its own driver on "@core/" first.

#include <cstddef>
#include <cstdint>
#include <span>

namespace kesta {

// The archive's bytes as linked into the program.
std::span<const std::uint8_t> CoreArchiveBytes();

// Mounts the archive on "@core/" unless that prefix is already taken.
void MountCoreResources();

}  // namespace kesta
