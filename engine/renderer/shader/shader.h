#pragma once
// A parsed .isl shader: its declared variables, its variants and the render state a surface
// asks for.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/renderer/shader/shader_variable_table.h"
#include "engine/renderer/shader/shader_variant.h"

namespace kesta {

// Bits of Shader::flags.
enum RenderState : std::uint16_t {
    kRenderStateBlendAlpha = 0x001,
    kRenderStateBlendAdditive = 0x002,
    kRenderStateNoDepthWrite = 0x004,
    kRenderStateNoDepthTest = 0x008,
    kRenderStateAlphaTest = 0x010,
    kRenderStateDoubleSided = 0x020,
    kRenderStateCastShadow = 0x040,
    kRenderStateReceiveShadow = 0x080,
    kRenderStateNoLight = 0x100,
    kRenderStateDepthFuncAlways = 0x200,
};

// Bits of Shader::surface_attributes.
enum SurfaceAttribute : std::uint8_t {
    kSurfaceSkinned = 1,
    kSurfaceTerrain = 2,
    kSurfaceContinuousNormals = 4,  // set by the surface shader generator
};

struct Shader {
    std::string name;
    std::shared_ptr<ShaderVariableTable> variables = std::make_shared<ShaderVariableTable>();
    std::vector<std::unique_ptr<ShaderVariant>> variants;
    // Surfaces cast and receive shadows unless they say otherwise.
    std::uint16_t flags = kRenderStateCastShadow | kRenderStateReceiveShadow;
    std::uint8_t surface_attributes = 0;
    std::uint8_t alpha_threshold = 128;  // 0 to 255
};

}  // namespace kesta
