#pragma once
// Small text helpers shared by the pieces of the .isl reader.

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kesta {

constexpr bool IsShaderBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

std::string_view TrimShaderText(std::string_view text);

// The position of the first character at or after `position` that is neither white space nor
// part of a comment (`//` to the end of the line, `/* */`); text.size() when none is left.
std::size_t SkipBlanksAndComments(std::string_view text, std::size_t position);

// The position of the `close` that matches the `open` at `open_position`, counting nesting, or
// npos when there is none.
std::size_t FindMatchingBracket(std::string_view text, std::size_t open_position, char open, char close);

using ShaderKeyValues = std::vector<std::pair<std::string, std::string>>;

// Splits "a: 1, b: 2" style text: pairs by `pair_separator`, key and value by
// `key_value_separator`, both trimmed. A piece that is not exactly one non-empty key and one
// non-empty value is skipped.
ShaderKeyValues ParseShaderKeyValues(std::string_view text, char pair_separator, char key_value_separator);

}  // namespace kesta
