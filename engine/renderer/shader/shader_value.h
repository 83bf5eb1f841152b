#pragma once
// Values of shader variables as written in .isl declarations and material files.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/renderer/shader/shader_type.h"
#include "engine/renderer/shader/texture_unit_config.h"

namespace kesta {

struct ShaderValue {
    // Scalars use [0][0], vectors row 0, matrices one row per vector (a mat3 leaves column 3
    // and row 3 at zero). int and uint32_t go to `ints`, everything else to `floats`.
    std::array<std::array<float, 4>, 4> floats{};
    std::array<std::array<std::int32_t, 4>, 4> ints{};
    // Texture types: the texture's path.
    std::string texture_path;
    TextureUnitConfig texture_unit;
};

// Parses `text` as a value of `type` into `value`. An empty text gives no value (false, no
// message). Texture types take a path whose surrounding double quotes are removed unless
// `keep_quotes` is set. Failures log a warning and return false; `value` may then be partly set.
bool ParseShaderValue(std::string_view text, ShaderValue& value, ShaderType type, bool keep_quotes);

}  // namespace kesta
