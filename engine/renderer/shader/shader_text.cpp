#include "engine/renderer/shader/shader_text.h"

namespace kesta {

std::string_view TrimShaderText(std::string_view text)
{
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && IsShaderBlank(text[begin]))
        ++begin;
    while (end > begin && IsShaderBlank(text[end - 1]))
        --end;
    return text.substr(begin, end - begin);
}

std::size_t SkipBlanksAndComments(std::string_view text, std::size_t position)
{
    while (position < text.size()) {
        if (IsShaderBlank(text[position])) {
            ++position;
        } else if (text.compare(position, 2, "//") == 0) {
            // A CRLF ends the line at its '\n' like a plain LF does.
            const std::size_t end = text.find('\n', position);
            position = end == std::string_view::npos ? text.size() : end + 1;
        } else if (text.compare(position, 2, "/*") == 0) {
            const std::size_t end = text.find("*/", position + 2);
            position = end == std::string_view::npos ? text.size() : end + 2;
        } else {
            break;
        }
    }
    return position;
}

std::size_t FindMatchingBracket(std::string_view text, std::size_t open_position, char open, char close)
{
    std::size_t depth = 0;
    for (std::size_t i = open_position; i < text.size(); ++i) {
        if (text[i] == open) {
            ++depth;
        } else if (text[i] == close) {
            if (--depth == 0)
                return i;
        }
    }
    return std::string_view::npos;
}

ShaderKeyValues ParseShaderKeyValues(std::string_view text, char pair_separator, char key_value_separator)
{
    ShaderKeyValues pairs;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(pair_separator, start);
        if (end == std::string_view::npos)
            end = text.size();
        const std::string_view piece = text.substr(start, end - start);
        const std::size_t colon = piece.find(key_value_separator);
        if (colon != std::string_view::npos && piece.find(key_value_separator, colon + 1) == std::string_view::npos) {
            const std::string_view key = TrimShaderText(piece.substr(0, colon));
            const std::string_view value = TrimShaderText(piece.substr(colon + 1));
            if (!key.empty() && !value.empty())
                pairs.emplace_back(key, value);
        }
        start = end + 1;
    }
    return pairs;
}

}  // namespace kesta
