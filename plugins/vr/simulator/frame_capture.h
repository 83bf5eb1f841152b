#pragma once

#include <cstdint>
#include <string>

#include "plugins/vr/simulator/sim_runtime.h"

namespace kesta::vrsim {

// What the compositor learns about a submitted OpenGL texture, on the calling thread, whose GL context
// must be current.
enum class TextureCheck { kOk, kNoContext, kNotATexture };

struct TextureInfo {
    uint32_t width = 0;
    uint32_t height = 0;
};

TextureCheck InspectTexture(uint32_t texture_name, TextureInfo& info);

// Reads level 0 of a 2D texture back as RGBA8, rows bottom to top. GL state that the read touches (the
// 2D binding, the pixel-pack buffer and pack alignment) is restored afterwards.
Picture ReadTexture(uint32_t texture_name, const TextureInfo& info);

// Writes the picture top row first, as image files are; false when the file cannot be written.
bool WritePng(const std::string& path, const Picture& picture);

}  // namespace kesta::vrsim
