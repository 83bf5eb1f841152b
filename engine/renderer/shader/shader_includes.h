#pragma once
// The two include directives of the shader language.

#include <string>
#include <string_view>

#include "engine/renderer/shader/shader_file_reader.h"

namespace kesta {

// Inside `%{ %}` bodies: every line whose first word is `#include` followed by "path" is
// replaced by that file's text, taken as it is (an included file's own directives stay). Other
// lines are copied, each ending with '\n'. A file that cannot be read contributes nothing.
std::string ExpandHashIncludes(std::string_view body, const ShaderFileReader& reader);

// Bounds the expansion of one text; only a file that includes itself comes near it.
inline constexpr int kMaxIncludeExpansions = 256;

// In stage texts: replaces each `%include("path")` by the file's text and goes on from the
// start, so included files may include further files. A file that cannot be read gives an empty
// replacement. Blanks may stand between `%include` and `(`. A directive without `(`, `)` or a
// quoted path ends the expansion and is left in place with everything after it. After
// kMaxIncludeExpansions replacements the expansion stops with an error.
std::string ExpandIncludes(std::string_view text, const ShaderFileReader& reader = &ReadShaderFileThroughFilesystem);

}  // namespace kesta
