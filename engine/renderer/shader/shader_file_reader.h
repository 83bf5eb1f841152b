#pragma once
// How the shader reader opens include files and surface files. By default it reads through the
// process-wide filesystem; tests may give a reader of their own. An empty function means that no
// file can be read, which every caller handles like a missing file.

#include <functional>
#include <string>

namespace kesta {

// Fills `text` with the whole file and answers true, or answers false when it cannot be read.
using ShaderFileReader = std::function<bool(const std::string& path, std::string& text)>;

// Reads the whole file through g_filesystem; false when there is none or the file cannot be read.
bool ReadShaderFileThroughFilesystem(const std::string& path, std::string& text);

// Calls `reader` when it is set; false otherwise.
inline bool ReadShaderFile(const ShaderFileReader& reader, const std::string& path, std::string& text)
{
    text.clear();
    return reader && reader(path, text);
}

}  // namespace kesta
