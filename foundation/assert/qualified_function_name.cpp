#include "foundation/assert/qualified_function_name.h"

namespace kesta {

namespace {

constexpr std::string_view kOperator = "operator";

bool opens(char c) { return c == '(' || c == '<' || c == '[' || c == '{'; }
bool closes(char c) { return c == ')' || c == '>' || c == ']' || c == '}'; }

// The position of the bracket that opens the group which ends at `close`, scanning backwards.
std::size_t matching_open(std::string_view text, std::size_t close)
{
    int depth = 0;
    for (std::size_t i = close + 1; i-- > 0;) {
        if (closes(text[i]))
            ++depth;
        else if (opens(text[i]) && --depth == 0)
            return i;
    }
    return std::string_view::npos;
}

// Drops a trailing " [with T = int]" (GCC) or " [T = int]" (clang).
std::string_view drop_template_note(std::string_view text)
{
    if (!text.ends_with(']'))
        return text;
    const std::size_t open = matching_open(text, text.size() - 1);
    if (open == std::string_view::npos || open == 0 || text[open - 1] != ' ')
        return text;
    return text.substr(0, open - 1);
}

// Drops the parameter list and what follows it (const, &, noexcept...). The list is the last
// parenthesised group; a name that ends in no group (a GCC lambda "<lambda()>") is kept whole.
std::string_view drop_parameters(std::string_view text)
{
    const std::size_t close = text.find_last_of(')');
    if (close == std::string_view::npos)
        return text;
    for (char c : text.substr(close + 1)) {
        // Only qualifiers may follow the parameter list; anything else means it was not one.
        if (c == '<' || c == '>' || c == ':')
            return text;
    }
    const std::size_t open = matching_open(text, close);
    return open == std::string_view::npos ? text : text.substr(0, open);
}

// Drops the return type: it ends at the last space outside brackets, before any "operator" keyword
// (so "operator bool" and "operator<" are not split or miscounted).
std::string_view drop_return_type(std::string_view text)
{
    std::size_t end = text.size();
    if (const std::size_t op = text.rfind(kOperator); op != std::string_view::npos)
        end = op;
    int depth = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < end; ++i) {
        if (opens(text[i]))
            ++depth;
        else if (closes(text[i]) && depth > 0)
            --depth;
        else if (text[i] == ' ' && depth == 0)
            start = i + 1;
    }
    // clang writes a returned pointer or reference against the name: "const X &kesta::f".
    while (start < text.size() && (text[start] == '&' || text[start] == '*'))
        ++start;
    return text.substr(start);
}

}  // namespace

std::string QualifiedFunctionName(std::string_view pretty)
{
    std::string_view name = drop_template_note(pretty);
    name = drop_parameters(name);
    name = drop_return_type(name);
    while (name.ends_with(' '))
        name.remove_suffix(1);
    return name.empty() ? std::string(pretty) : std::string(name);
}

}  // namespace kesta
