#pragma once
// Reads .isl shader text into a Shader. The reader is forgiving: what it cannot read is logged
// and skipped, and the Shader keeps everything read before and after.

#include <string>
#include <string_view>

#include "engine/renderer/shader/shader.h"
#include "engine/renderer/shader/shader_file_reader.h"

namespace kesta {

// Fills `shader` from the root scopes of `source`: `in` declarations, the `surface` render
// state, and one variant per `variant` scope, in file order. `reader` serves the #include
// lines of %{ %} bodies; by default they are read through the filesystem. False when the text
// is not a list of scopes, or a variant or a declaration list cannot be read; `shader` then holds
// what was read.
bool ParseShader(Shader& shader, std::string_view source,
                 const ShaderFileReader& reader = &ReadShaderFileThroughFilesystem);

// Reads the file at `path` and adds only its `in` declarations to `table`, to learn what a
// surface takes without compiling it. False when the file cannot be read or does not parse.
bool ParseShaderVariables(const std::string& path, ShaderVariableTable& table,
                          const ShaderFileReader& reader = &ReadShaderFileThroughFilesystem);

}  // namespace kesta
