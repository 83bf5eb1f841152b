#include "engine/renderer/shader/shader_file_reader.h"

#include <cstdint>
#include <vector>

#include "io/filesystem.h"

namespace kesta {

bool ReadShaderFileThroughFilesystem(const std::string& path, std::string& text)
{
    // FileToData rather than FileToString: it tells an empty file from one that cannot be read.
    std::vector<std::uint8_t> data;
    if (!g_filesystem || !g_filesystem->FileToData(path, data))
        return false;
    text.assign(data.begin(), data.end());
    return true;
}

}  // namespace kesta
