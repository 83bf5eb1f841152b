#pragma once
// One compilable program of a shader: the texts of its two stages and what passes between them.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/renderer/shader/shader_type.h"

namespace kesta {

enum ShaderStageIndex : std::size_t { kVertexStage = 0, kPixelStage = 1, kShaderStageCount = 2 };

// "Vertex" or "Pixel", as stages are named in messages.
constexpr std::string_view GetShaderStageName(ShaderStageIndex stage)
{
    return stage == kVertexStage ? "Vertex" : "Pixel";
}

struct ShaderStage {
    std::string global;  // declarations and helpers outside the entry point
    std::string source;  // the entry point's body
};

enum ShaderVaryingDirection : std::uint8_t { kVaryingIn = 0, kVaryingOut = 1 };

struct ShaderVarying {
    std::string name;
    ShaderType type = ShaderType::kNone;
    // Per stage, indexed by ShaderStageIndex. Written by the vertex stage and read by the pixel
    // stage unless the declarations say otherwise.
    std::array<ShaderVaryingDirection, kShaderStageCount> direction = {kVaryingOut, kVaryingIn};
};

struct ShaderVariant {
    std::array<ShaderStage, kShaderStageCount> stages;
    std::vector<ShaderVarying> varyings;
    std::vector<std::string> required_extensions;
};

}  // namespace kesta
