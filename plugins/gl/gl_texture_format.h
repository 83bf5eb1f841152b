#pragma once
// How each engine texture format is stored and uploaded in OpenGL.

#include <epoxy/gl.h>

#include <cstdint>

#include "engine/renderer/render_values.h"

namespace kesta {

struct GLTextureFormat {
    GLenum internal_format = 0;
    GLenum format = 0;  // of the pixels handed to an upload
    GLenum type = 0;
    std::uint32_t bytes_per_pixel = 0;
    bool depth = false;
};

// 0 RGBA8, 1 RGB8, 2 R8, 3 RGBA float (16-bit storage, 32-bit uploads), 4 depth 24-bit,
// 5 depth 32-bit float, 6 BGRA8, 7 BGR8, 8 RG8. False for any other value.
bool GetGLTextureFormat(TextureFormat format, GLTextureFormat& out);

// The multisample count of an anti-aliasing level: 0 none, 1 to 4 give 2, 4, 8, 16 samples.
int SamplesOfAntiAliasing(std::uint8_t level);

}  // namespace kesta
