#include "engine/renderer/shader/shader_scope.h"

#include "engine/renderer/shader/shader_includes.h"
#include "foundation/format.h"
#include "foundation/log/log.h"

namespace kesta {

namespace {

constexpr bool IsWordStop(char c, bool allow_dash)
{
    if (c == '-')
        return !allow_dash;
    // '$' is the one character of '!' to '>' that may stand in a word.
    return IsShaderBlank(c) || (c >= '!' && c <= '>' && c != '$') || c == '[' || c == ']';
}

bool ScanLevel(std::string_view text, std::vector<ShaderScope>& scopes, const ShaderFileReader& reader, int depth)
{
    std::size_t position = 0;
    while (true) {
        position = SkipBlanksAndComments(text, position);
        if (position == text.size())
            return true;
        const std::size_t word_end = FindShaderWordEnd(text, position, false);
        if (word_end == position)
            return false;
        ShaderScope scope;
        scope.name = std::string(text.substr(position, word_end - position));
        position = SkipBlanksAndComments(text, word_end);

        if (position < text.size() && text[position] == '[') {
            const std::size_t close = FindMatchingBracket(text, position, '[', ']');
            if (close == std::string_view::npos) {
                error((format("Missing ']' in scope %1 parameters block declaration.\n") << scope.name).str());
                return false;
            }
            scope.parameters = ParseShaderKeyValues(text.substr(position + 1, close - position - 1), ',', ':');
            position = SkipBlanksAndComments(text, close + 1);
        }

        if (position < text.size() && text[position] == '{') {
            const std::size_t close = FindMatchingBracket(text, position, '{', '}');
            if (close == std::string_view::npos) {
                error((format("Expected '}' or '%}' while looking for the end of scope '%1'") << scope.name).str());
                return false;
            }
            const std::string_view body = text.substr(position + 1, close - position - 1);
            scope.kind = ShaderScopeKind::kBraces;
            // A body that is not scopes (declarations, key-value pairs) is kept as text.
            if (depth >= kMaxShaderScopeDepth || !ScanLevel(body, scope.children, reader, depth + 1)) {
                scope.children.clear();
                scope.text = std::string(TrimShaderText(body));
            }
            position = close + 1;
        } else if (text.compare(position, 2, "%{") == 0) {
            const std::size_t close = text.find("%}", position + 2);
            if (close == std::string_view::npos) {
                error((format("Expected '}' or '%}' while looking for the end of scope '%1'") << scope.name).str());
                return false;
            }
            scope.kind = ShaderScopeKind::kText;
            scope.text = ExpandHashIncludes(text.substr(position + 2, close - position - 2), reader);
            position = close + 2;
        } else {
            return false;
        }
        scopes.push_back(std::move(scope));
    }
}

}  // namespace

std::size_t FindShaderWordEnd(std::string_view text, std::size_t position, bool allow_dash)
{
    while (position < text.size() && !IsWordStop(text[position], allow_dash))
        ++position;
    return position;
}

bool ScanShaderScopes(std::string_view text, std::vector<ShaderScope>& scopes, const ShaderFileReader& reader)
{
    return ScanLevel(text, scopes, reader, 0);
}

}  // namespace kesta
