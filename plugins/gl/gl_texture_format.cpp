#include "plugins/gl/gl_texture_format.h"

namespace kesta {

bool GetGLTextureFormat(TextureFormat format, GLTextureFormat& out)
{
    static constexpr GLTextureFormat kFormats[] = {
        {GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, 4, false},
        {GL_RGB8, GL_RGB, GL_UNSIGNED_BYTE, 3, false},
        {GL_R8, GL_RED, GL_UNSIGNED_BYTE, 1, false},
        {GL_RGBA16F, GL_RGBA, GL_FLOAT, 16, false},
        {GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, 4, true},
        {GL_DEPTH_COMPONENT32F, GL_DEPTH_COMPONENT, GL_FLOAT, 4, true},
        {GL_RGBA8, GL_BGRA, GL_UNSIGNED_BYTE, 4, false},
        {GL_RGB8, GL_BGR, GL_UNSIGNED_BYTE, 3, false},
        {GL_RG8, GL_RG, GL_UNSIGNED_BYTE, 2, false},
    };
    if (format >= sizeof kFormats / sizeof kFormats[0])
        return false;
    out = kFormats[format];
    return true;
}

int SamplesOfAntiAliasing(std::uint8_t level) { return level == 0 ? 0 : 1 << (level > 4 ? 4 : level); }

}  // namespace kesta
