#include "engine/renderer/shader/shader_declarations.h"

#include <stdexcept>

#include "engine/renderer/shader/shader_text.h"
#include "foundation/format.h"
#include "foundation/log/log.h"

namespace kesta {

namespace {

constexpr bool IsIdentifierChar(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

std::size_t FindIdentifierEnd(std::string_view text, std::size_t position)
{
    while (position < text.size() && IsIdentifierChar(text[position]))
        ++position;
    return position;
}

bool IsAllDigits(std::string_view text)
{
    if (text.empty())
        return false;
    for (char c : text) {
        if (c < '0' || c > '9')
            return false;
    }
    return true;
}

// The end of a default value: the first '[' outside parentheses, or the end of the piece.
std::size_t FindValueEnd(std::string_view piece, std::size_t position)
{
    int depth = 0;
    for (; position < piece.size(); ++position) {
        const char c = piece[position];
        if (c == '(')
            ++depth;
        else if (c == ')')
            --depth;
        else if (c == '[' && depth <= 0)
            break;
    }
    return position;
}

TextureUV ParseWrap(std::string_view text)
{
    if (text == "repeat")
        return TextureUV::kRepeat;
    if (text == "mirror")
        return TextureUV::kMirror;
    return TextureUV::kClamp;
}

TextureFilter ParseFilter(std::string_view text)
{
    if (text == "nearest")
        return TextureFilter::kNearest;
    if (text == "trilinear")
        return TextureFilter::kTrilinear;
    if (text == "anisotropic")
        return TextureFilter::kAnisotropic;
    return TextureFilter::kLinear;
}

void ApplyParameters(std::string_view block, ShaderVariableValue& variable)
{
    const bool is_texture = IsTextureShaderType(variable.type);
    for (const auto& [key, value] : ParseShaderKeyValues(block, ',', ':')) {
        if (key == "hint") {
            variable.hint = value;
            continue;
        }
        if (!is_texture)
            continue;
        const bool is_wrap = key == "wrap" || key == "wrap-u" || key == "wrap-v";
        const bool is_filter = key == "filter" || key == "min-filter" || key == "max-filter";
        if (!is_wrap && !is_filter)
            continue;
        // Sampling settings make a value even when the declaration names no texture.
        TextureUnitConfig& unit = variable.value ? variable.value->texture_unit : variable.value.emplace().texture_unit;
        if (key == "wrap" || key == "wrap-u")
            unit.SetWrapU(ParseWrap(value));
        if (key == "wrap" || key == "wrap-v")
            unit.SetWrapV(ParseWrap(value));
        if (key == "filter" || key == "min-filter")
            unit.SetMinFilter(ParseFilter(value));
        if (key == "filter" || key == "max-filter")
            unit.SetMagFilter(ParseFilter(value));
    }
}

bool ParseArraySize(std::string_view digits, std::uint32_t& size)
{
    try {
        size = static_cast<std::uint32_t>(std::stoi(std::string(digits)));
        return true;
    } catch (const std::out_of_range&) {
        warn("stoi argument out of range");
    } catch (const std::invalid_argument&) {
        warn("invalid stoi argument");
    }
    return false;
}

// One piece between ';'. Answers false when a bracket has no match.
bool ParsePiece(std::string_view piece, std::vector<ShaderDeclaration>& declarations)
{
    std::size_t position = SkipBlanksAndComments(piece, 0);
    const std::size_t type_end = FindIdentifierEnd(piece, position);
    const std::string_view type_name = piece.substr(position, type_end - position);
    position = SkipBlanksAndComments(piece, type_end);
    const std::size_t name_end = FindIdentifierEnd(piece, position);
    const std::string_view name = piece.substr(position, name_end - position);
    if (type_name.empty() || name.empty())
        return true;

    ShaderDeclaration declaration;
    declaration.type_name = std::string(type_name);
    ShaderVariableValue& variable = declaration.variable;
    variable.name = std::string(name);
    if (const std::optional<ShaderType> type = FindShaderType(type_name)) {
        declaration.has_known_type = true;
        variable.type = *type;
    }

    position = name_end;
    if (position < piece.size() && piece[position] == '[') {
        const std::size_t close = FindMatchingBracket(piece, position, '[', ']');
        if (close == std::string_view::npos) {
            error((format("Missing ']' in variable %1 declaration") << name).str());
            return false;
        }
        // "[4]" is an array size; any other bracket is the parameter block, read below.
        const std::string_view inside = piece.substr(position + 1, close - position - 1);
        if (IsAllDigits(inside)) {
            ParseArraySize(inside, variable.array_size);
            position = close + 1;
        }
    }

    position = SkipBlanksAndComments(piece, position);
    if (position < piece.size() && piece[position] == '=') {
        const std::size_t value_end = FindValueEnd(piece, position + 1);
        const std::string_view value_text = TrimShaderText(piece.substr(position + 1, value_end - position - 1));
        ShaderValue value;
        if (declaration.has_known_type && ParseShaderValue(value_text, value, variable.type, false))
            variable.value = std::move(value);
        position = value_end;
    }

    position = SkipBlanksAndComments(piece, position);
    if (position < piece.size() && piece[position] == '[') {
        const std::size_t close = FindMatchingBracket(piece, position, '[', ']');
        if (close == std::string_view::npos) {
            error((format("Missing ']' in variable %1 parameters block declaration") << name).str());
            return false;
        }
        ApplyParameters(piece.substr(position + 1, close - position - 1), variable);
    }

    declarations.push_back(std::move(declaration));
    return true;
}

}  // namespace

bool ParseShaderDeclarations(std::string_view text, std::vector<ShaderDeclaration>& declarations)
{
    bool ok = true;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find(';', start);
        if (end == std::string_view::npos)
            end = text.size();
        ok = ParsePiece(text.substr(start, end - start), declarations) && ok;
        start = end + 1;
    }
    return ok;
}

}  // namespace kesta
