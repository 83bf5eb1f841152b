// Buffers and textures of the OpenGL renderer.

#include <algorithm>
#include <cstring>
#include <vector>

#include "engine/picture/picture.h"
#include "foundation/format.h"
#include "foundation/log/log.h"
#include "plugins/gl/gl_renderer.h"
#include "plugins/gl/gl_texture_format.h"

namespace kesta {

namespace {

GLenum gl_wrap(TextureUV uv)
{
    switch (uv) {
        case TextureUV::kRepeat:
            return GL_REPEAT;
        case TextureUV::kMirror:
            return GL_MIRRORED_REPEAT;
        case TextureUV::kClamp:
            break;
    }
    return GL_CLAMP_TO_EDGE;
}

GLenum gl_min_filter(TextureFilter filter, bool mipmapped)
{
    if (filter == TextureFilter::kNearest)
        return mipmapped ? GL_NEAREST_MIPMAP_NEAREST : GL_NEAREST;
    if (!mipmapped)
        return GL_LINEAR;
    return filter == TextureFilter::kLinear ? GL_LINEAR_MIPMAP_NEAREST : GL_LINEAR_MIPMAP_LINEAR;
}

std::uint32_t level_bytes(const GLTextureFormat& format, int width, int height)
{
    return format.bytes_per_pixel * static_cast<std::uint32_t>(width) * static_cast<std::uint32_t>(height);
}

}  // namespace

// --- buffers ---

GLenum GLRenderer::BindForWrite(const GLBuffer& buffer)
{
    if (buffer.target == GL_ARRAY_BUFFER) {
        BindArrayBuffer(buffer.gl_name);
        return GL_ARRAY_BUFFER;
    }
    // Index buffers are written through the copy target: binding one as the element buffer would
    // change the bound vertex array, and a vertex array change costs the driver a revalidation.
    glBindBuffer(GL_COPY_WRITE_BUFFER, buffer.gl_name);
    return GL_COPY_WRITE_BUFFER;
}

std::shared_ptr<GpuBuffer> GLRenderer::NewBuffer() { return std::make_shared<GLBuffer>(releaser_); }

std::uint32_t GLRenderer::GetBufferSize(const GpuBuffer& buffer) { return static_cast<const GLBuffer&>(buffer).size; }

void GLRenderer::CreateBuffer(GpuBuffer& buffer, const void* data, std::uint32_t size, BufferKind kind,
                              BufferUsage usage)
{
    AssertRenderThread();
    auto& gl_buffer = static_cast<GLBuffer&>(buffer);
    if (!gl_buffer.gl_name)
        glGenBuffers(1, &gl_buffer.gl_name);
    gl_buffer.target = kind == kIndexBuffer ? GL_ELEMENT_ARRAY_BUFFER : GL_ARRAY_BUFFER;
    gl_buffer.usage = usage == kDynamicBuffer ? GL_DYNAMIC_DRAW : GL_STATIC_DRAW;
    gl_buffer.size = size;
    gl_buffer.mapped = nullptr;
    gl_buffer.staged = false;
    gl_buffer.staging.clear();
    gl_buffer.sent.clear();
    // Growing keeps the same name: vertex arrays made for it stay valid.
    glBufferData(BindForWrite(gl_buffer), size, data, gl_buffer.usage);
}

void GLRenderer::UpdateBuffer(GpuBuffer& buffer, const void* data, std::uint32_t offset, std::uint32_t size)
{
    AssertRenderThread();
    auto& gl_buffer = static_cast<GLBuffer&>(buffer);
    if (!gl_buffer.gl_name || !data || offset >= gl_buffer.size)
        return;
    // A write past the end is cut to what fits.
    size = std::min(size, gl_buffer.size - offset);
    if (gl_buffer.staged) {
        // The staging copy is the content: GL receives it with the next draw.
        std::memcpy(gl_buffer.staging.data() + offset, data, size);
        return;
    }
    glBufferSubData(BindForWrite(gl_buffer), offset, size, data);
}

void* GLRenderer::MapBuffer(GpuBuffer& buffer)
{
    AssertRenderThread();
    auto& gl_buffer = static_cast<GLBuffer&>(buffer);
    if (!gl_buffer.gl_name || gl_buffer.size == 0)
        return nullptr;
    if (gl_buffer.mapped)
        return gl_buffer.mapped;
    if (gl_buffer.usage == GL_DYNAMIC_DRAW) {
        // Dynamic buffers are written in CPU memory and copied on unmapping: mapping GL storage that
        // draws read moments ago makes a software driver copy or wait on every map.
        gl_buffer.staging.resize(gl_buffer.size);
        gl_buffer.mapped = gl_buffer.staging.data();
        return gl_buffer.mapped;
    }
    gl_buffer.mapped = glMapBufferRange(BindForWrite(gl_buffer), 0, gl_buffer.size, GL_MAP_WRITE_BIT);
    return gl_buffer.mapped;
}

void GLRenderer::UnmapBuffer(GpuBuffer& buffer)
{
    AssertRenderThread();
    auto& gl_buffer = static_cast<GLBuffer&>(buffer);
    if (!gl_buffer.mapped)
        return;
    if (gl_buffer.mapped == gl_buffer.staging.data()) {
        // Sent to GL by the draws that read it, each the part it reads: a small draw from a large
        // dynamic buffer copies a few bytes, not the buffer.
        gl_buffer.staged = true;
    } else {
        glUnmapBuffer(BindForWrite(gl_buffer));
    }
    gl_buffer.mapped = nullptr;
}

void GLRenderer::UploadStaged(GLBuffer& buffer, std::uint32_t size)
{
    if (!buffer.staged)
        return;
    size = size == 0 ? buffer.size : std::min(size, buffer.size);
    // Draws often repeat their indices: what GL already holds is not sent again.
    if (buffer.sent.size() >= size && std::memcmp(buffer.sent.data(), buffer.staging.data(), size) == 0)
        return;
    glBufferSubData(BindForWrite(buffer), 0, size, buffer.staging.data());
    if (buffer.sent.size() < size)
        buffer.sent.resize(size);
    std::memcpy(buffer.sent.data(), buffer.staging.data(), size);
}

void GLRenderer::FreeBuffer(GpuBuffer& buffer)
{
    AssertRenderThread();
    auto& gl_buffer = static_cast<GLBuffer&>(buffer);
    if (!gl_buffer.gl_name)
        return;
    if (releaser_)
        releaser_->DeleteBuffer(gl_buffer.gl_name);
    gl_buffer.gl_name = 0;
    gl_buffer.size = 0;
    gl_buffer.mapped = nullptr;
    gl_buffer.staged = false;
    gl_buffer.staging = {};
    gl_buffer.sent = {};
}

// --- textures ---

std::shared_ptr<Texture> GLRenderer::NewTexture(const std::string& name)
{
    return std::make_shared<GLTexture>(name, releaser_);
}

std::shared_ptr<Texture> GLRenderer::NewShadowMap(int width, int height, const std::string& name)
{
    auto texture = std::make_shared<GLTexture>(name, releaser_);
    texture->shadow = true;
    CreateTexture(*texture, nullptr, 0, width, height, kTextureFormatDepth, 0, kTextureUsageSampled, false, 1);
    texture->SetReady();
    return texture;
}

void GLRenderer::CreateTexture(Texture& texture, const void* data, std::uint32_t size, int width, int height,
                               TextureFormat texture_format, std::uint8_t anti_aliasing, TextureUsage usage,
                               bool mipmapped, int)
{
    AssertRenderThread();
    auto& gl_texture = static_cast<GLTexture&>(texture);
    GLTextureFormat gl_format;
    if (!GetGLTextureFormat(texture_format, gl_format) || width <= 0 || height <= 0) {
        error(format("Cannot create texture '%1' of format %2 and size %3 x %4")
              << texture.GetName() << static_cast<int>(texture_format) << width << height);
        texture.SetFailed();
        return;
    }
    // A short upload would make GL read past the caller's data: create without it.
    if (data && size < level_bytes(gl_format, width, height)) {
        warn(format("Texture '%1': %2 bytes given, %3 needed; created empty")
             << texture.GetName() << size << level_bytes(gl_format, width, height));
        data = nullptr;
    }
    const int samples = SamplesOfAntiAliasing(anti_aliasing);
    if (!gl_texture.gl_name)
        glGenTextures(1, &gl_texture.gl_name);
    gl_texture.target = samples ? GL_TEXTURE_2D_MULTISAMPLE : GL_TEXTURE_2D;
    // Nothing regenerates the mip levels of a texture that is drawn into: a colour target samples
    // its first level only, which keeps it complete (sampling an incomplete texture gives black).
    gl_texture.mipmapped = mipmapped && !samples && usage != kTextureUsageColorTarget;
    gl_texture.config_applied = false;
    texture.width = width;
    texture.height = height;
    texture.format = texture_format;
    texture.anti_aliasing = anti_aliasing;
    glBindTexture(gl_texture.target, gl_texture.gl_name);
    if (samples) {
        GLint max_samples = 1;
        glGetIntegerv(gl_format.depth ? GL_MAX_DEPTH_TEXTURE_SAMPLES : GL_MAX_COLOR_TEXTURE_SAMPLES, &max_samples);
        glTexImage2DMultisample(GL_TEXTURE_2D_MULTISAMPLE, std::min(samples, max_samples), gl_format.internal_format,
                                width, height, GL_TRUE);
    } else {
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(gl_format.internal_format), width, height, 0,
                     gl_format.format, gl_format.type, data);
        if (gl_texture.mipmapped && data)
            glGenerateMipmap(GL_TEXTURE_2D);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, gl_texture.mipmapped ? 1000 : 0);
        if (gl_texture.shadow) {
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_REF_TO_TEXTURE);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL);
        }
        ApplyTextureConfig(gl_texture);
    }
    glBindTexture(gl_texture.target, 0);
}

void GLRenderer::ApplyTextureConfig(GLTexture& texture)
{
    if (texture.config_applied || texture.target != GL_TEXTURE_2D)
        return;
    const TextureUnitConfig& config = texture.config;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, static_cast<GLint>(gl_wrap(config.GetWrapU())));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, static_cast<GLint>(gl_wrap(config.GetWrapV())));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                    static_cast<GLint>(gl_min_filter(config.GetMinFilter(), texture.mipmapped)));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER,
                    config.GetMagFilter() == TextureFilter::kNearest ? GL_NEAREST : GL_LINEAR);
    texture.config_applied = true;
}

void GLRenderer::FreeTexture(Texture& texture)
{
    AssertRenderThread();
    auto& gl_texture = static_cast<GLTexture&>(texture);
    if (!gl_texture.gl_name)
        return;
    glDeleteTextures(1, &gl_texture.gl_name);
    gl_texture.gl_name = 0;
}

bool GLRenderer::LoadNativeTexture(Texture& texture, const std::string& path)
{
    warn(format("The OpenGL renderer reads no GPU container files: '%1' (%2)") << path << texture.GetName());
    return false;
}

void GLRenderer::UpdateTexture(Texture& texture, const void* data, std::uint32_t size)
{
    AssertRenderThread();
    auto& gl_texture = static_cast<GLTexture&>(texture);
    GLTextureFormat gl_format;
    if (!gl_texture.gl_name || gl_texture.target != GL_TEXTURE_2D || !data ||
        !GetGLTextureFormat(texture.format, gl_format) || size < level_bytes(gl_format, texture.width, texture.height))
        return;
    glBindTexture(GL_TEXTURE_2D, gl_texture.gl_name);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, texture.width, texture.height, gl_format.format, gl_format.type, data);
    if (gl_texture.mipmapped)
        glGenerateMipmap(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, 0);
}

bool GLRenderer::CaptureTexture(Texture& texture, Picture& picture)
{
    AssertRenderThread();
    auto& gl_texture = static_cast<GLTexture&>(texture);
    GLTextureFormat gl_format;
    // Multisampled textures are read after a resolve (BlitRenderTarget); depth is not a picture.
    if (!gl_texture.gl_name || gl_texture.target != GL_TEXTURE_2D || !GetGLTextureFormat(texture.format, gl_format) ||
        gl_format.depth)
        return false;
    const bool is_float = gl_format.type == GL_FLOAT;
    picture.width = texture.width;
    picture.height = texture.height;
    picture.format = is_float ? kPictureRGBAFloat : kPictureRGBA8;
    picture.data.resize(static_cast<std::size_t>(texture.width) * texture.height * 4 * (is_float ? 4 : 1));
    glBindTexture(GL_TEXTURE_2D, gl_texture.gl_name);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, is_float ? GL_FLOAT : GL_UNSIGNED_BYTE, picture.data.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return true;
}

void GLRenderer::RefreshTextureBinding(Texture& texture)
{
    AssertRenderThread();
    auto& gl_texture = static_cast<GLTexture&>(texture);
    if (!bound_shader_)
        return;
    // Rebind the texture on every unit of the bound program that samples it.
    for (const auto& [location, uniform] : bound_shader_->uniforms) {
        if (uniform.texture_unit < 0)
            continue;
        GLint bound = 0;
        glActiveTexture(GL_TEXTURE0 + uniform.texture_unit);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        if (static_cast<GLuint>(bound) == gl_texture.gl_name)
            glBindTexture(gl_texture.target, gl_texture.gl_name);
    }
}

}  // namespace kesta
