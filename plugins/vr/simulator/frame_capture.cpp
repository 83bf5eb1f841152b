#include "plugins/vr/simulator/frame_capture.h"

#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>
#include <stb_image_write.h>

#include <cstring>

namespace kesta::vrsim {

namespace {

// Binds a texture for the duration of a query and puts the application's binding back.
class ScopedTextureBinding {
public:
    explicit ScopedTextureBinding(GLuint texture)
    {
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &previous_);
        glBindTexture(GL_TEXTURE_2D, texture);
    }
    ~ScopedTextureBinding() { glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(previous_)); }
    ScopedTextureBinding(const ScopedTextureBinding&) = delete;
    ScopedTextureBinding& operator=(const ScopedTextureBinding&) = delete;

private:
    GLint previous_ = 0;
};

}  // namespace

TextureCheck InspectTexture(uint32_t texture_name, TextureInfo& info)
{
    // Without a current context every GL call is a no-op that answers zero.
    if (glGetString(GL_VERSION) == nullptr)
        return TextureCheck::kNoContext;
    if (texture_name == 0 || glIsTexture(texture_name) == GL_FALSE)
        return TextureCheck::kNotATexture;
    ScopedTextureBinding binding(texture_name);
    GLint width = 0, height = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
    if (width <= 0 || height <= 0)
        return TextureCheck::kNotATexture;
    info.width = static_cast<uint32_t>(width);
    info.height = static_cast<uint32_t>(height);
    return TextureCheck::kOk;
}

Picture ReadTexture(uint32_t texture_name, const TextureInfo& info)
{
    Picture picture;
    picture.width = info.width;
    picture.height = info.height;
    picture.rgba.resize(size_t{info.width} * info.height * 4);

    GLint pack_buffer = 0, pack_alignment = 4;
    glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &pack_buffer);
    glGetIntegerv(GL_PACK_ALIGNMENT, &pack_alignment);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    {
        ScopedTextureBinding binding(texture_name);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.rgba.data());
    }
    glPixelStorei(GL_PACK_ALIGNMENT, pack_alignment);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(pack_buffer));
    return picture;
}

bool WritePng(const std::string& path, const Picture& picture)
{
    if (picture.rgba.empty())
        return false;
    const size_t stride = size_t{picture.width} * 4;
    std::vector<uint8_t> top_down(picture.rgba.size());
    for (size_t row = 0; row < picture.height; ++row)
        std::memcpy(&top_down[row * stride], &picture.rgba[(picture.height - 1 - row) * stride], stride);
    return stbi_write_png(path.c_str(), static_cast<int>(picture.width), static_cast<int>(picture.height), 4,
                          top_down.data(), static_cast<int>(stride)) != 0;
}

}  // namespace kesta::vrsim
