#include "engine/renderer/shader/shader_includes.h"

#include "engine/renderer/shader/shader_text.h"
#include "foundation/format.h"
#include "foundation/log/log.h"

namespace kesta {

namespace {

constexpr std::string_view kHashInclude = "#include";
constexpr std::string_view kPercentInclude = "%include";

// The quoted path of an `#include "path"` line, or nothing when the line is something else.
bool FindHashIncludePath(std::string_view line, std::string_view& path)
{
    line = TrimShaderText(line);
    if (!line.starts_with(kHashInclude))
        return false;
    const std::string_view rest = line.substr(kHashInclude.size());
    // "#includes" or "#include_x" is another word.
    if (!rest.empty() && !IsShaderBlank(rest.front()) && rest.front() != '"')
        return false;
    const std::size_t open = rest.find('"');
    if (open == std::string_view::npos)
        return false;
    const std::size_t close = rest.find('"', open + 1);
    if (close == std::string_view::npos)
        return false;
    path = rest.substr(open + 1, close - open - 1);
    return true;
}

}  // namespace

std::string ExpandHashIncludes(std::string_view body, const ShaderFileReader& reader)
{
    std::string result;
    result.reserve(body.size());
    std::string file_text;
    std::size_t start = 0;
    while (start < body.size()) {
        std::size_t end = body.find('\n', start);
        if (end == std::string_view::npos)
            end = body.size();
        std::string_view line = body.substr(start, end - start);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        std::string_view path;
        if (FindHashIncludePath(line, path)) {
            if (ReadShaderFile(reader, std::string(path), file_text)) {
                result += file_text;
                // Keep the next line on a line of its own.
                if (!file_text.empty() && file_text.back() != '\n')
                    result += '\n';
            }
        } else {
            result += line;
            result += '\n';
        }
        start = end + 1;
    }
    return result;
}

std::string ExpandIncludes(std::string_view text, const ShaderFileReader& reader)
{
    std::string result(text);
    std::string file_text;
    for (int expansions = 0;; ++expansions) {
        const std::size_t directive = result.find(kPercentInclude);
        if (directive == std::string::npos)
            break;
        // The bracket must follow the directive; one further on belongs to other text.
        std::size_t open = directive + kPercentInclude.size();
        while (open < result.size() && IsShaderBlank(result[open]))
            ++open;
        if (open == result.size() || result[open] != '(')
            break;
        const std::size_t close = result.find(')', open + 1);
        if (close == std::string::npos)
            break;
        const std::string_view argument = TrimShaderText(std::string_view(result).substr(open + 1, close - open - 1));
        if (argument.size() < 2 || argument.front() != '"' || argument.back() != '"')
            break;
        if (expansions == kMaxIncludeExpansions) {
            error((format("Stopped expanding %include after %1 files: an included file includes itself") << expansions)
                      .str());
            break;
        }
        const std::string path(argument.substr(1, argument.size() - 2));
        if (!ReadShaderFile(reader, path, file_text))
            file_text.clear();
        result.replace(directive, close + 1 - directive, file_text);
    }
    return result;
}

}  // namespace kesta
