#include "engine/renderer/shader/shader_scope.h"

#include <gtest/gtest.h>

#include "engine/renderer/shader/shader_test_support.h"

namespace kesta {
namespace {

// A scope tree in one line: name[key=value]{children} for nested scopes, name{=text} for a
// { } body kept as text and name%{=text} for a %{ %} body.
std::string Describe(const std::vector<ShaderScope>& scopes)
{
    std::string out;
    for (const ShaderScope& scope : scopes) {
        if (!out.empty())
            out += ' ';
        out += scope.name;
        if (!scope.parameters.empty()) {
            out += '[';
            for (std::size_t i = 0; i < scope.parameters.size(); ++i)
                out += (i ? "," : "") + scope.parameters[i].first + "=" + scope.parameters[i].second;
            out += ']';
        }
        if (scope.kind == ShaderScopeKind::kText)
            out += "%{=" + scope.text + "}";
        else if (!scope.text.empty())
            out += "{=" + scope.text + "}";
        else
            out += "{" + Describe(scope.children) + "}";
    }
    return out;
}

struct ScanCase {
    std::string_view text;
    bool ok;
    std::string_view tree;
    std::vector<CapturedLogLine> log;
};

TEST(ShaderScope, ScansNestedAndTextScopes)
{
    const ScanCase cases[] = {
        {"", true, "", {}},
        {"  // only a comment\r\n /* and another */ ", true, "", {}},
        {"in { }", true, "in{}", {}},
        {"a { b { } c { d { } } }", true, "a{b{} c{d{}}}", {}},
        // A brace does not end a word: "a{" is a name with no body after it.
        {"a{b{}}", false, "", {}},
        // Declarations and key-value pairs do not read as scopes and stay as trimmed text.
        {"in { vec2 v_uv; }", true, "in{=vec2 v_uv;}", {}},
        {"surface { blend: alpha }", true, "surface{=blend: alpha}", {}},
        {"in { vec4 a = vec4(1,1,1,1) [hint:color]; }", true, "in{=vec4 a = vec4(1,1,1,1) [hint:color];}", {}},
        // One failing child turns the whole body into text.
        {"v { a { } b c { } }", true, "v{=a { } b c { }}", {}},
        {"source %{ x = 1;\r\n y = 2; %}", true, "source%{= x = 1;\n y = 2; \n}", {}},
        {"s %{ { %} t { }", true, "s%{= { \n} t{}", {}},
        // Comments between the name, the parameters and the body; CRLF ends a // comment.
        {"a // note\r\n [k: v] /* x */ { }", true, "a[k=v]{}", {}},
        {"a [k: v, broken, x: 1] { }", true, "a[k=v,x=1]{}", {}},
        {"a [k: [nested]] { }", true, "a[k=[nested]]{}", {}},
        {"a%{x%}b%{y%}", true, "a%{=x\n} b%{=y\n}", {}},
        // Words stop at digits and punctuation; what follows must then be a body.
        {"vec4 { }", false, "", {}},
        {"a { } b c { }", false, "a{}", {}},
        {"{ }", false, "", {}},
        {"a ( ) { }", false, "", {}},
        {"a { } ;", false, "a{}", {}},
        {"a { } b", false, "a{}", {}},
        {"a [k: v { }", false, "", {{"error", "Missing ']' in scope a parameters block declaration.\n"}}},
        {"a { b { }", false, "", {{"error", "Expected '}' or '%}' while looking for the end of scope 'a'"}}},
        {"x { } src %{ void main() { }",
         false,
         "x{}",
         {{"error", "Expected '}' or '%}' while looking for the end of scope 'src'"}}},
        // An error inside a body is logged, and the body is then kept as text.
        {"a { b %{ } }",
         true,
         "a{=b %{ }}",
         {{"error", "Expected '}' or '%}' while looking for the end of scope 'b'"}}},
    };
    for (const ScanCase& c : cases) {
        ShaderLogCapture log;
        std::vector<ShaderScope> scopes;
        EXPECT_EQ(ScanShaderScopes(c.text, scopes, {}), c.ok) << c.text;
        EXPECT_EQ(Describe(scopes), c.tree) << c.text;
        EXPECT_EQ(log.lines(), c.log) << c.text;
    }
}

TEST(ShaderScope, WordsStopAtPunctuationDigitsAndBlanks)
{
    struct WordCase {
        std::string_view text;
        bool allow_dash;
        std::string_view word;
    };
    const WordCase cases[] = {
        {"variant {", false, "variant"},
        {"vec4", false, "vec"},
        {"z-write: 0", false, "z"},
        {"z-write: 0", true, "z-write"},
        {"$name_x@y{", false, "$name_x@y{"},
        {"a[b", false, "a"},
        {"a]b", false, "a"},
        {"a>b", false, "a"},
        {"a?b", false, "a?b"},
        {"a\tb", false, "a"},
        {"\"a", false, ""},
    };
    for (const WordCase& c : cases)
        EXPECT_EQ(c.text.substr(0, FindShaderWordEnd(c.text, 0, c.allow_dash)), c.word) << c.text;
}

TEST(ShaderScope, HashIncludesAreExpandedInTextBodiesOnly)
{
    const InMemoryShaderFiles files({{"lib.i", "float f();"}, {"nested.i", "#include \"lib.i\"\n"}});
    std::vector<ShaderScope> scopes;
    ASSERT_TRUE(
        ScanShaderScopes("a %{\n#include \"lib.i\"\nmain\n%} b { #include \"lib.i\" } c %{#include \"nested.i\"%}",
                         scopes, files.Reader()));
    ASSERT_EQ(scopes.size(), 3u);
    EXPECT_EQ(scopes[0].text, "\nfloat f();\nmain\n");
    EXPECT_EQ(scopes[1].text, "#include \"lib.i\"");
    // An included file is taken as it is: its own #include lines stay.
    EXPECT_EQ(scopes[2].text, "#include \"lib.i\"\n");
}

TEST(ShaderScope, DeepNestingIsKeptAsTextWithoutExhaustingTheStack)
{
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "a {";
    text += std::string(100000, '}');
    std::vector<ShaderScope> scopes;
    ASSERT_TRUE(ScanShaderScopes(text, scopes, {}));
    const ShaderScope* scope = &scopes.at(0);
    int depth = 0;
    while (!scope->children.empty()) {
        scope = &scope->children.front();
        ++depth;
    }
    EXPECT_EQ(depth, kMaxShaderScopeDepth);
    EXPECT_TRUE(scope->text.starts_with("a {a {"));
}

}  // namespace
}  // namespace kesta
