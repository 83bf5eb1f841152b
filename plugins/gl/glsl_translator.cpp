#include "plugins/gl/glsl_translator.h"

#include <cctype>
#include <set>
#include <string_view>

#include "engine/renderer/shader/shader.h"
#include "engine/renderer/shader/shader_builtins.h"

namespace kesta {

namespace {

constexpr std::string_view kHelpers =
    "#define _mtx_mul(m, v) ((m) * (v))\n"
    "mat3 _build_mat3(vec3 c0, vec3 c1, vec3 c2) { return mat3(c0, c1, c2); }\n"
    "mat3 _mat4_to_mat3(mat4 m) { return mat3(m); }\n";

std::string_view glsl_type(ShaderType type)
{
    switch (type) {
        case ShaderType::kInt:
            return "int";
        case ShaderType::kUint32:
            return "uint";
        case ShaderType::kFloat:
            return "float";
        case ShaderType::kVec2:
            return "vec2";
        case ShaderType::kVec3:
            return "vec3";
        case ShaderType::kVec4:
            return "vec4";
        case ShaderType::kMat3:
            return "mat3";
        case ShaderType::kMat4:
            return "mat4";
        case ShaderType::kTex2D:
            return "sampler2D";
        case ShaderType::kTex3D:
            return "sampler3D";
        case ShaderType::kTexCube:
            return "samplerCube";
        case ShaderType::kTexShadow:
            return "sampler2DShadow";
        // Desktop GL has no external images: they arrive as ordinary 2D textures.
        case ShaderType::kTexExternal:
            return "sampler2D";
        case ShaderType::kNone:
            break;
    }
    return {};
}

bool is_identifier_start(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_'; }
bool is_identifier_char(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// Every identifier of a text.
std::set<std::string, std::less<>> identifiers_of(std::string_view text)
{
    std::set<std::string, std::less<>> words;
    for (std::size_t i = 0; i < text.size();) {
        if (is_identifier_start(text[i]) && (i == 0 || !is_identifier_char(text[i - 1]))) {
            std::size_t end = i;
            while (end < text.size() && is_identifier_char(text[end]))
                ++end;
            words.emplace(text.substr(i, end - i));
            i = end;
        } else {
            ++i;
        }
    }
    return words;
}

std::string declaration(std::string_view qualifier, ShaderType type, std::string_view name, std::uint32_t array_size)
{
    std::string line(qualifier);
    line += ' ';
    line += glsl_type(type);
    line += ' ';
    line += name;
    if (array_size > 0)
        line += '[' + std::to_string(array_size) + ']';
    return line + ";\n";
}

// One stage being written: its placeholders resolved, and what they required noted.
struct StageText {
    std::string text;
    std::set<int> color_outputs;
};

// Replaces %name% placeholders. A '%' that does not start one (the modulo operator) stays.
bool resolve_placeholders(std::string_view in, ShaderStageIndex stage, StageText& out, std::string& error)
{
    for (std::size_t i = 0; i < in.size(); ++i) {
        if (in[i] != '%' || i + 1 >= in.size() || !is_identifier_start(in[i + 1])) {
            out.text += in[i];
            continue;
        }
        std::size_t end = i + 1;
        while (end < in.size() && (is_identifier_char(in[end]) || in[end] == '.'))
            ++end;
        if (end >= in.size() || in[end] != '%') {
            out.text += in[i];
            continue;
        }
        const std::string_view name = in.substr(i + 1, end - i - 1);
        const bool vertex = stage == kVertexStage;
        std::string replacement;
        if (vertex && name == "out.position")
            replacement = "gl_Position";
        else if (vertex && name == "in.vertexid")
            replacement = "gl_VertexID";
        else if (vertex && name == "in.instanceid")
            replacement = "gl_InstanceID";
        else if (!vertex && (name == "out.color" || name == "out.color0"))
            replacement = "_out_color0", out.color_outputs.insert(0);
        else if (!vertex && name.size() == 10 && name.substr(0, 9) == "out.color" && name[9] >= '1' && name[9] <= '3')
            replacement = "_out_color" + std::string(1, name[9]), out.color_outputs.insert(name[9] - '0');
        else if (!vertex && name == "out.depth")
            replacement = "gl_FragDepth";
        else if (!vertex && name == "in.fragcoord")
            replacement = "gl_FragCoord";
        else if (!vertex && name == "in.frontfacing")
            replacement = "gl_FrontFacing";
        else {
            error = "unknown placeholder '%" + std::string(name) + "%' in the " +
                    std::string(GetShaderStageName(stage)) + " stage";
            return false;
        }
        out.text += replacement;
        i = end;
    }
    return true;
}

bool translate_stage(const Shader& shader, const ShaderVariant& variant, ShaderStageIndex stage, std::string& result,
                     std::string& error)
{
    const ShaderStage& texts = variant.stages[stage];
    StageText global, source;
    if (!resolve_placeholders(texts.global, stage, global, error) ||
        !resolve_placeholders(texts.source, stage, source, error))
        return false;

    std::string header = "#version 330 core\n";
    for (const std::string& extension : variant.required_extensions)
        header += "#extension " + extension + " : require\n";

    // Names the stage declares itself are not declared again.
    const auto words = identifiers_of(global.text + "\n" + source.text);
    std::set<std::string, std::less<>> declared;
    std::string declarations;
    for (const ShaderVariableValue& variable : shader.variables->variables) {
        if (glsl_type(variable.type).empty() || !declared.insert(variable.name).second)
            continue;
        declarations += declaration("uniform", variable.type, variable.name, variable.array_size);
    }
    for (const ShaderVarying& varying : variant.varyings) {
        if (glsl_type(varying.type).empty() || !declared.insert(varying.name).second)
            continue;
        declarations +=
            declaration(varying.direction[stage] == kVaryingOut ? "out" : "in", varying.type, varying.name, 0);
    }
    const auto builtins = GetShaderBuiltins();
    for (std::size_t row = 0; row < builtins.size(); ++row) {
        const ShaderBuiltin& builtin = builtins[row];
        if (!words.count(builtin.name) || declared.count(builtin.name))
            continue;
        const bool vertex_input = row < kShaderVertexInputCount;
        // A vertex input named in the pixel stage stays undeclared: the compiler reports it.
        if (vertex_input && stage != kVertexStage)
            continue;
        const int location = GetVertexInputLocation(static_cast<int>(row));
        const std::string qualifier =
            vertex_input ? "layout(location = " + std::to_string(location) + ") in" : std::string("uniform");
        declarations += declaration(qualifier, builtin.type, builtin.name, builtin.array_size);
    }
    if (stage == kPixelStage) {
        global.color_outputs.merge(source.color_outputs);
        // The first colour output always exists, so that a pixel stage that writes nothing still links.
        global.color_outputs.insert(0);
        for (int output : global.color_outputs)
            declarations += "layout(location = " + std::to_string(output) + ") out vec4 _out_color" +
                            std::to_string(output) + ";\n";
    }

    result = header;
    result += declarations;
    result += kHelpers;
    result += global.text;
    result += "\nvoid main()\n{\n";
    result += source.text;
    result += "\n}\n";
    return true;
}

}  // namespace

int GetVertexInputLocation(int builtin_row)
{
    if (builtin_row < 0 || builtin_row >= static_cast<int>(kShaderVertexInputCount))
        return -1;
    switch (builtin_row) {
        case 14:
            return kInstanceModelMatrixLocation;
        case 15:
            return kInstancePreviousModelMatrixLocation;
        case 16:
            return kInstancePickingIdLocation;
        default:
            return builtin_row;
    }
}

bool TranslateShaderToGlsl(const Shader& shader, std::string& vertex_text, std::string& pixel_text, std::string& error)
{
    if (shader.variants.empty()) {
        error = "the shader has no variant";
        return false;
    }
    const ShaderVariant& variant = *shader.variants.front();
    return translate_stage(shader, variant, kVertexStage, vertex_text, error) &&
           translate_stage(shader, variant, kPixelStage, pixel_text, error);
}

}  // namespace kesta
