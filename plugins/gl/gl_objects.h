#pragma once
// The OpenGL side of the Renderer's shared handles.

#include <epoxy/gl.h>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/renderer/gpu_objects.h"
#include "engine/renderer/shader/shader_builtins.h"
#include "engine/renderer/shader/texture_unit_config.h"

namespace kesta {

// Deletes GL objects on the render worker for as long as the context they belong to lives. Handles
// keep a weak reference: when the last one drops on any thread, the deletion is queued to the
// render worker, and a closed context deletes nothing (its objects went with it).
class GLObjectReleaser {
public:
    void DeleteTexture(GLuint name) { glDeleteTextures(1, &name); }
    void DeleteBuffer(GLuint name);
    // Vertex arrays that read a buffer must go with it; the renderer registers that step here.
    std::function<void(GLuint)> on_buffer_deleted;
};

class GLTexture final : public Texture {
public:
    GLTexture(std::string name, std::weak_ptr<GLObjectReleaser> releaser)
        : Texture(std::move(name)), releaser_(std::move(releaser))
    {
    }
    ~GLTexture() override;

    void SetTextureUnitConfig(const TextureUnitConfig& config) override;
    std::uint64_t GetNativeHandle() const override { return gl_name; }

    GLuint gl_name = 0;
    GLenum target = GL_TEXTURE_2D;
    bool mipmapped = false;
    bool shadow = false;
    // The sampling wanted, and what was last applied to the GL object.
    TextureUnitConfig config;
    bool config_applied = false;

private:
    std::weak_ptr<GLObjectReleaser> releaser_;
};

class GLBuffer final : public GpuBuffer {
public:
    explicit GLBuffer(std::weak_ptr<GLObjectReleaser> releaser) : releaser_(std::move(releaser)) {}
    ~GLBuffer() override;

    GLuint gl_name = 0;
    GLenum target = GL_ARRAY_BUFFER;
    GLenum usage = GL_STATIC_DRAW;
    std::uint32_t size = 0;
    void* mapped = nullptr;
    // Where a mapped dynamic buffer is written. While `staged` is set this copy is the buffer's
    // content and each draw sends GL the part of it that it reads.
    std::vector<std::uint8_t> staging;
    bool staged = false;
    // The first bytes of GL's copy of a staged buffer, as last sent: an unchanged range is not sent.
    std::vector<std::uint8_t> sent;

private:
    std::weak_ptr<GLObjectReleaser> releaser_;
};

// A linked program and what the renderer needs to feed it.
class GLShader final : public GpuShader {
public:
    using GpuShader::GpuShader;
    bool HasSemantic(int semantic) const override
    {
        return semantic >= 0 && semantic < static_cast<int>(kShaderSemanticCount) && semantic_locations[semantic] >= 0;
    }

    struct Uniform {
        GLenum type = 0;
        GLint size = 0;  // array length
        int texture_unit = -1;
    };

    GLuint program = 0;
    std::array<GLint, kShaderSemanticCount> semantic_locations{};
    std::unordered_map<GLint, Uniform> uniforms;  // by location
    std::map<std::string, GLint, std::less<>> locations;
    // The built-in values this program last received, so a draw uploads only what changed.
    std::uint64_t builtins_generation = 0;
    std::array<float, 40> matrices_uploaded{};
    bool matrices_valid = false;
};

class GLRenderTarget final : public RenderTarget {
public:
    GLuint framebuffer = 0;
    // The texture names attached now: attachments may change after creation.
    std::array<GLuint, kMaxColorTextures> attached_colors{};
    GLuint attached_depth = 0;
    int attached_count = -1;
};

}  // namespace kesta
