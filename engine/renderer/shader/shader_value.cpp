#include "engine/renderer/shader/shader_value.h"

#include <stdexcept>
#include <vector>

#include "engine/renderer/shader/shader_text.h"
#include "foundation/format.h"
#include "foundation/log/log.h"

namespace kesta {

namespace {

// std::stof and std::stoi with their exceptions turned into warnings.
bool ParseFloat(std::string_view text, float& result)
{
    try {
        result = std::stof(std::string(text));
        return true;
    } catch (const std::invalid_argument&) {
        warn("invalid stof argument");
    } catch (const std::out_of_range&) {
        warn("stof argument out of range");
    }
    return false;
}

bool ParseInt(std::string_view text, std::int32_t& result)
{
    try {
        result = std::stoi(std::string(text));
        return true;
    } catch (const std::invalid_argument&) {
        warn("invalid stoi argument");
    } catch (const std::out_of_range&) {
        warn("stoi argument out of range");
    }
    return false;
}

// "vec3(1, 2, 3)" or "1, 2, 3": exactly `count` numbers, written row by row into `floats`
// with `columns` numbers per row.
bool ParseFloatList(std::string_view text, std::string_view constructor, std::size_t count, std::size_t columns,
                    ShaderValue& value)
{
    if (text.starts_with(constructor) && text.size() > constructor.size() && text[constructor.size()] == '(') {
        if (text.back() != ')')
            return false;
        text = text.substr(constructor.size() + 1, text.size() - constructor.size() - 2);
    }
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = text.find(',', start);
        parts.push_back(text.substr(start, comma == std::string_view::npos ? std::string_view::npos : comma - start));
        if (comma == std::string_view::npos)
            break;
        start = comma + 1;
    }
    if (parts.size() != count)
        return false;
    for (std::size_t i = 0; i < count; ++i) {
        if (!ParseFloat(parts[i], value.floats[i / columns][i % columns]))
            return false;
    }
    return true;
}

}  // namespace

bool ParseShaderValue(std::string_view text, ShaderValue& value, ShaderType type, bool keep_quotes)
{
    text = TrimShaderText(text);
    if (text.empty())
        return false;
    switch (type) {
        case ShaderType::kInt:
        case ShaderType::kUint32:
            return ParseInt(text, value.ints[0][0]);
        case ShaderType::kFloat:
            return ParseFloat(text, value.floats[0][0]);
        case ShaderType::kVec2:
            return ParseFloatList(text, "vec2", 2, 4, value);
        case ShaderType::kVec3:
            return ParseFloatList(text, "vec3", 3, 4, value);
        case ShaderType::kVec4:
            return ParseFloatList(text, "vec4", 4, 4, value);
        case ShaderType::kMat3:
            return ParseFloatList(text, "mat3", 9, 3, value);
        case ShaderType::kMat4:
            return ParseFloatList(text, "mat4", 16, 4, value);
        case ShaderType::kTex2D:
        case ShaderType::kTex3D:
        case ShaderType::kTexCube:
        case ShaderType::kTexShadow:
            if (!keep_quotes && text.size() >= 2 && text.front() == '"' && text.back() == '"')
                text = text.substr(1, text.size() - 2);
            value.texture_path = std::string(text);
            return true;
        case ShaderType::kNone:
        case ShaderType::kTexExternal:
            break;
    }
    warn((format("Parsing shader value of type %1 is not implemented") << GetShaderTypeName(type)).str());
    return false;
}

}  // namespace kesta
