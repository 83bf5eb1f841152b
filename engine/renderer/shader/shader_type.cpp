#include "engine/renderer/shader/shader_type.h"

#include <array>

namespace kesta {

namespace {

constexpr std::array<std::string_view, kShaderTypeCount> kShaderTypeNames = {
    "none", "int",  "uint32_t", "float", "vec2",    "vec3",      "vec4",
    "mat3", "mat4", "tex2D",    "tex3D", "texCube", "texShadow", "texExternal",
};

}  // namespace

std::string_view GetShaderTypeName(ShaderType type)
{
    const auto index = static_cast<std::size_t>(type);
    return index < kShaderTypeNames.size() ? kShaderTypeNames[index] : std::string_view{};
}

std::optional<ShaderType> FindShaderType(std::string_view name)
{
    for (std::size_t i = 0; i < kShaderTypeNames.size(); ++i) {
        if (kShaderTypeNames[i] == name)
            return static_cast<ShaderType>(i);
    }
    return std::nullopt;
}

}  // namespace kesta
