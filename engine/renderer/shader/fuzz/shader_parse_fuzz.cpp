// Arbitrary .isl text must never crash or hang the shader reader: it yields a partial Shader and
// log lines. Include files come from a small fixed set, one of which includes itself.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/renderer/shader/shader_includes.h"
#include "engine/renderer/shader/shader_parser.h"
#include "foundation/log/log.h"

namespace {

void DiscardLogLine(const std::string&, const std::string&, const std::string&, std::uint32_t, bool) {}

bool ReadFixedFile(const std::string& path, std::string& text)
{
    static constexpr std::pair<std::string_view, std::string_view> kFiles[] = {
        {"common.i", "vec4 tint(vec4 c) { return c * u_color; }\n"},
        {"nested.i", "%include(\"common.i\")\n#include \"common.i\"\n"},
        {"self.i", "x %include(\"self.i\") %include(\"self.i\")\n"},
        {"hash_self.i", "#include \"hash_self.i\"\n"},
        {"surface.isl", "in { float roughness = 0.5 [hint: roughness]; tex2D t [wrap: repeat]; }"},
    };
    for (const auto& [name, contents] : kFiles) {
        if (name == path) {
            text = contents;
            return true;
        }
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static kesta::LogSystem quiet_log;
    quiet_log.SetOutputFunction(&DiscardLogLine);
    kesta::g_log_system = &quiet_log;

    const std::string_view source(reinterpret_cast<const char*>(data), size);
    kesta::Shader shader;
    kesta::ParseShader(shader, source, &ReadFixedFile);
    // The renderer expands %include in every stage text of a parsed shader.
    for (const auto& variant : shader.variants) {
        for (const kesta::ShaderStage& stage : variant->stages) {
            kesta::ExpandIncludes(stage.global, &ReadFixedFile);
            kesta::ExpandIncludes(stage.source, &ReadFixedFile);
        }
    }
    kesta::ShaderVariableTable table;
    kesta::ParseShaderVariables("surface.isl", table, &ReadFixedFile);
    return 0;
}
