#pragma once
// The shared handles a Renderer hands out. Their GPU side belongs to the back end that made them.

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "engine/renderer/gpu_resource.h"
#include "engine/renderer/render_values.h"

namespace kesta {

struct TextureUnitConfig;

class Texture : public GpuResource {
public:
    using GpuResource::GpuResource;

    virtual int GetWidth() const { return width; }
    virtual int GetHeight() const { return height; }
    virtual void SetTextureUnitConfig(const TextureUnitConfig& config) = 0;
    // The texture's object in the back end's API (for OpenGL, the texture name).
    virtual std::uint64_t GetNativeHandle() const = 0;

    int width = 0;
    int height = 0;
    TextureFormat format = kTextureFormatColor8;
    std::uint8_t anti_aliasing = 0;
};

class GpuBuffer {
public:
    virtual ~GpuBuffer() = default;
};

class GpuShader : public GpuResource {
public:
    using GpuResource::GpuResource;

    // Whether the linked program uses the given built-in semantic.
    virtual bool HasSemantic(int semantic) const = 0;
};

// Plain engine data: which textures a target draws into.
class RenderTarget {
public:
    static constexpr int kMaxColorTextures = 8;

    virtual ~RenderTarget() = default;

    int color_count = 0;
    std::array<std::shared_ptr<Texture>, kMaxColorTextures> color_textures{};
    std::shared_ptr<Texture> depth_texture;
};

// A back end's token for a variable of the bound shader, by name or semantic. Cheap to copy;
// the default value names no variable.
struct ShaderVariable {
    std::int64_t handle = -1;

    constexpr bool IsValid() const { return handle >= 0; }
    friend constexpr bool operator==(const ShaderVariable&, const ShaderVariable&) = default;
};

}  // namespace kesta
