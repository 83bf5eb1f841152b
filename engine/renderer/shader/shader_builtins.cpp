#include "engine/renderer/shader/shader_builtins.h"

#include <array>

namespace kesta {

namespace {

using T = ShaderType;

constexpr std::array<ShaderBuiltin, kShaderBuiltinCount> kBuiltins = {{
    // Vertex inputs.
    {"vPosition", T::kVec3, 2, 0},
    {"vNormal", T::kVec3, 1, 0},
    {"vUV0", T::kVec2, 2, 0},
    {"vUV1", T::kVec2, 2, 0},
    {"vUV2", T::kVec2, 2, 0},
    {"vUV3", T::kVec2, 2, 0},
    {"vColor0", T::kVec4, 1, 0},
    {"vColor1", T::kVec4, 1, 0},
    {"vColor2", T::kVec4, 1, 0},
    {"vColor3", T::kVec4, 1, 0},
    {"vTangent", T::kVec3, 1, 0},
    {"vBitangent", T::kVec3, 1, 0},
    {"vBoneIndex", T::kVec4, 1, 0},
    {"vBoneWeight", T::kVec4, 1, 0},
    {"vInstanceModelMatrix", T::kMat4, 3, 0},
    {"vInstancePreviousModelMatrix", T::kMat4, 3, 0},
    {"vInstancePickingId", T::kVec4, 3, 0},
    // Semantics: frame, camera and screen.
    {"vClock", T::kFloat, 2, 0},
    {"vViewport", T::kVec4, 2, 0},
    {"vTechniqueIsForward", T::kInt, 1, 0},
    {"vFxScale", T::kInt, 2, 0},
    {"vInverseInternalResolution", T::kVec4, 2, 0},
    {"vInverseViewportSize", T::kVec4, 2, 0},
    {"vAmbientColor", T::kVec3, 1, 0},
    {"vFogColor", T::kVec3, 1, 0},
    {"vFogState", T::kVec3, 2, 0},
    {"vDepthBuffer", T::kTex2D, 0, 0},
    {"vFrameBuffer", T::kTex2D, 0, 0},
    {"vGBuffer0", T::kTex2D, 0, 0},
    {"vGBuffer1", T::kTex2D, 0, 0},
    {"vGBuffer2", T::kTex2D, 0, 0},
    {"vGBuffer3", T::kTex2D, 0, 0},
    {"vViewVector", T::kVec3, 2, 0},
    {"vViewPosition", T::kVec4, 2, 0},
    {"vViewState", T::kVec4, 2, 0},
    {"vLightProjectionMap", T::kTex2D, 0, 0},
    {"vPreviousBoneMatrix", T::kMat4, 2, 48},
    {"vTerrainHeightmap", T::kTex2D, 0, 0},
    {"vTerrainSize", T::kVec3, 0, 0},
    {"vTerrainPatchSize", T::kVec3, 0, 0},
    // Semantics: transformations, lights, skinning, picking, terrain.
    {"vModelMatrix", T::kMat4, 3, 0},
    {"vInverseModelMatrix", T::kMat4, 3, 0},
    {"vNormalMatrix", T::kMat3, 3, 0},
    {"vPreviousModelMatrix", T::kMat4, 3, 0},
    {"vViewMatrix", T::kMat4, 3, 0},
    {"vInverseViewMatrix", T::kMat4, 3, 0},
    {"vModelViewMatrix", T::kMat4, 3, 0},
    {"vNormalViewMatrix", T::kMat3, 3, 0},
    {"vProjectionMatrix", T::kMat4, 3, 0},
    {"vViewProjectionMatrix", T::kMat4, 3, 0},
    {"vModelViewProjectionMatrix", T::kMat4, 3, 0},
    {"vInverseViewProjectionMatrix", T::kMat4, 3, 0},
    {"vInverseViewProjectionMatrixAtOrigin", T::kMat4, 3, 0},
    {"vPreviousViewMatrix", T::kMat4, 3, 0},
    {"vInversePreviousViewMatrix", T::kMat4, 3, 0},
    {"vLightState", T::kVec4, 2, 0},
    {"vLightDiffuseColor", T::kVec3, 1, 0},
    {"vLightSpecularColor", T::kVec3, 1, 0},
    {"vLightShadowColor", T::kVec3, 1, 0},
    {"vLightViewPosition", T::kVec3, 2, 0},
    {"vLightViewDirection", T::kVec3, 1, 0},
    {"vLightShadowMatrix", T::kMat4, 2, 6},
    {"vInverseShadowMapSize", T::kFloat, 1, 0},
    {"vLightShadowMap", T::kTexShadow, 0, 0},
    {"vLightPSSMSliceDistance", T::kVec4, 2, 0},
    {"vViewToLightMatrix", T::kMat4, 2, 0},
    {"vBoneMatrix", T::kMat4, 2, 48},
    {"vPickingId", T::kVec4, 3, 0},
    {"vTerrainHeightmapSize", T::kVec2, 0, 0},
    {"vTerrainPatchOrigin", T::kVec3, 0, 0},
}};

std::size_t FindBuiltinIndex(std::string_view name)
{
    for (std::size_t i = 0; i < kBuiltins.size(); ++i) {
        if (kBuiltins[i].name == name)
            return i;
    }
    return kBuiltins.size();
}

}  // namespace

std::span<const ShaderBuiltin, kShaderBuiltinCount> GetShaderBuiltins() { return kBuiltins; }

const ShaderBuiltin* FindShaderBuiltin(std::string_view name)
{
    const std::size_t index = FindBuiltinIndex(name);
    return index < kBuiltins.size() ? &kBuiltins[index] : nullptr;
}

const ShaderBuiltin* GetShaderBuiltinBySemantic(std::uint32_t semantic)
{
    return semantic < kShaderSemanticCount ? &kBuiltins[kShaderVertexInputCount + semantic] : nullptr;
}

std::optional<ShaderSemantic> FindShaderSemantic(std::string_view name)
{
    const std::size_t index = FindBuiltinIndex(name);
    if (index < kShaderVertexInputCount || index >= kBuiltins.size())
        return std::nullopt;
    return static_cast<ShaderSemantic>(index - kShaderVertexInputCount);
}

}  // namespace kesta
