#pragma once
// The value types of the shader language and their spellings as type names in .isl text.

#include <cstdint>
#include <optional>
#include <string_view>

namespace kesta {

enum class ShaderType : std::uint8_t {
    kNone = 0,
    kInt = 1,
    kUint32 = 2,
    kFloat = 3,
    kVec2 = 4,
    kVec3 = 5,
    kVec4 = 6,
    kMat3 = 7,
    kMat4 = 8,
    kTex2D = 9,
    kTex3D = 10,
    kTexCube = 11,
    kTexShadow = 12,
    kTexExternal = 13,
};

inline constexpr int kShaderTypeCount = 14;

// "vec4" for kVec4; an out-of-range value spells as the empty text.
std::string_view GetShaderTypeName(ShaderType type);

// The type spelled exactly as `name` (case matters), or nothing.
std::optional<ShaderType> FindShaderType(std::string_view name);

// The four sampled texture types; texExternal is not one of them.
constexpr bool IsTextureShaderType(ShaderType type)
{
    return type >= ShaderType::kTex2D && type <= ShaderType::kTexShadow;
}

}  // namespace kesta
