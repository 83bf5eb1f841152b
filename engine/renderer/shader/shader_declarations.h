#pragma once
// Declaration lists, the body of `in` and `out` sections:
//   type name[array size] = value [hint: color, wrap: repeat]; ...

#include <string>
#include <string_view>
#include <vector>

#include "engine/renderer/shader/shader_variable_table.h"

namespace kesta {

struct ShaderDeclaration {
    std::string type_name;        // as written
    bool has_known_type = false;  // false: variable.type is kNone and no value was read
    ShaderVariableValue variable;
};

// Appends the declarations of `text`, pieces separated by ';'. A piece whose ']' is missing
// logs an error and gives no declaration; the other pieces are still read, and the answer is
// then false. Empty pieces and pieces without a type and a name are skipped.
bool ParseShaderDeclarations(std::string_view text, std::vector<ShaderDeclaration>& declarations);

}  // namespace kesta
