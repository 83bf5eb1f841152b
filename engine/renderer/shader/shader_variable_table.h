#pragma once
// The variables a shader declares in its `in` section: what a material may set.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/renderer/shader/shader_type.h"
#include "engine/renderer/shader/shader_value.h"

namespace kesta {

struct ShaderVariableValue {
    std::string name;
    std::string hint;
    ShaderType type = ShaderType::kNone;
    std::uint32_t array_size = 0;      // 0 = not an array
    std::optional<ShaderValue> value;  // the default written in the declaration, if any
};

class ShaderVariableTable {
public:
    std::vector<ShaderVariableValue> variables;

    // The first variable named `name`, or null.
    const ShaderVariableValue* Find(std::string_view name) const
    {
        for (const ShaderVariableValue& variable : variables) {
            if (variable.name == name)
                return &variable;
        }
        return nullptr;
    }
};

}  // namespace kesta
