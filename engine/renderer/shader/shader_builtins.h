#pragma once
// The built-in names of the shader language: the vertex inputs a mesh feeds and the semantics
// the engine sets on every draw. Back ends map a semantic number to the variable they bind.

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "engine/renderer/shader/shader_type.h"

namespace kesta {

struct ShaderBuiltin {
    std::string_view name;
    ShaderType type;
    std::uint8_t precision;    // 0 = not applicable, 1 = low, 2 = medium, 3 = high
    std::uint16_t array_size;  // 0 = not an array
};

inline constexpr std::size_t kShaderBuiltinCount = 70;
// The first rows of the table are vertex inputs; the semantics follow them.
inline constexpr std::size_t kShaderVertexInputCount = 17;
inline constexpr std::size_t kShaderSemanticCount = kShaderBuiltinCount - kShaderVertexInputCount;

// Semantic numbers, in table order after the vertex inputs.
enum class ShaderSemantic : std::uint8_t {
    kClock = 0,
    kViewport,
    kTechniqueIsForward,
    kFxScale,
    kInverseInternalResolution,
    kInverseViewportSize,
    kAmbientColor,
    kFogColor,
    kFogState,
    kDepthBuffer,
    kFrameBuffer,
    kGBuffer0,
    kGBuffer1,
    kGBuffer2,
    kGBuffer3,
    kViewVector,
    kViewPosition,
    kViewState,
    kLightProjectionMap,
    kPreviousBoneMatrix,
    kTerrainHeightmap,
    kTerrainSize,
    kTerrainPatchSize,
    kModelMatrix,
    kInverseModelMatrix,
    kNormalMatrix,
    kPreviousModelMatrix,
    kViewMatrix,
    kInverseViewMatrix,
    kModelViewMatrix,
    kNormalViewMatrix,
    kProjectionMatrix,
    kViewProjectionMatrix,
    kModelViewProjectionMatrix,
    kInverseViewProjectionMatrix,
    kInverseViewProjectionMatrixAtOrigin,
    kPreviousViewMatrix,
    kInversePreviousViewMatrix,
    kLightState,
    kLightDiffuseColor,
    kLightSpecularColor,
    kLightShadowColor,
    kLightViewPosition,
    kLightViewDirection,
    kLightShadowMatrix,
    kInverseShadowMapSize,
    kLightShadowMap,
    kLightPSSMSliceDistance,
    kViewToLightMatrix,
    kBoneMatrix,
    kPickingId,
    kTerrainHeightmapSize,
    kTerrainPatchOrigin,
    kCount,
};

static_assert(static_cast<std::size_t>(ShaderSemantic::kCount) == kShaderSemanticCount);

// All 70 rows: vertex inputs first, then the semantics in ShaderSemantic order.
std::span<const ShaderBuiltin, kShaderBuiltinCount> GetShaderBuiltins();

// The row named exactly `name`, or null.
const ShaderBuiltin* FindShaderBuiltin(std::string_view name);

// The row of a semantic number, or null when the number is out of range.
const ShaderBuiltin* GetShaderBuiltinBySemantic(std::uint32_t semantic);

// The semantic number of a built-in name; nothing for vertex inputs and unknown names.
std::optional<ShaderSemantic> FindShaderSemantic(std::string_view name);

}  // namespace kesta
