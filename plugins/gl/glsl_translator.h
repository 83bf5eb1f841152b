#pragma once
// Turns the stage texts of a parsed .isl shader into GLSL 3.30 core: declares the file's
// uniforms, the built-ins each stage mentions and the varyings, resolves the placeholders and
// helper functions of the stage-text contract (docs/shader_placeholders.md). Pure text work: no
// GL call, any thread.

#include <string>

namespace kesta {

struct Shader;

// Vertex inputs are bound to fixed attribute locations before linking: the row of the built-in
// table (0 position ... 13 bone weight), then the instance records' matrices and id.
inline constexpr int kInstanceModelMatrixLocation = 14;          // four locations
inline constexpr int kInstancePreviousModelMatrixLocation = 18;  // four locations
inline constexpr int kInstancePickingIdLocation = 22;

// The attribute location of a vertex-input built-in (rows 0 to 16 of the table), or -1.
int GetVertexInputLocation(int builtin_row);

// Translates the first variant of `shader`. False, with the reason in `error`, for a shader
// without a variant or with a placeholder that has no meaning in its stage.
bool TranslateShaderToGlsl(const Shader& shader, std::string& vertex_text, std::string& pixel_text, std::string& error);

}  // namespace kesta
