#include "engine/renderer/shader/shader_includes.h"

#include <gtest/gtest.h>

#include "engine/renderer/shader/shader_test_support.h"

namespace kesta {
namespace {

const InMemoryShaderFiles& Files()
{
    static const InMemoryShaderFiles files({
        {"a.i", "A"},
        {"lines.i", "one\ntwo\n"},
        {"outer.i", "<%include(\"a.i\")>"},
        {"hash.i", "#include \"a.i\""},
        {"self.i", "x%include(\"self.i\")"},
        {"empty.i", ""},
    });
    return files;
}

struct IncludeCase {
    std::string_view text;
    std::string_view expanded;
};

TEST(ShaderIncludes, HashIncludeReplacesWholeLines)
{
    const IncludeCase cases[] = {
        {"", ""},
        {"a\nb", "a\nb\n"},
        {"a\r\nb\r\n", "a\nb\n"},
        {"#include \"a.i\"", "A\n"},
        {"  #include   \"lines.i\"  \nx", "one\ntwo\nx\n"},
        {"#include\"a.i\"", "A\n"},
        // Included text is not processed further.
        {"#include \"hash.i\"", "#include \"a.i\"\n"},
        {"#include \"empty.i\"\nx", "x\n"},
        // Unreadable files contribute nothing.
        {"#include \"missing.i\"\nx", "x\n"},
        // Not include lines: no quotes, one quote, another word, not the first word.
        {"#include a.i", "#include a.i\n"},
        {"#include \"a.i", "#include \"a.i\n"},
        {"#includes \"a.i\"", "#includes \"a.i\"\n"},
        {"x #include \"a.i\"", "x #include \"a.i\"\n"},
        {"#include \"a.i\" trailing", "A\n"},
    };
    for (const IncludeCase& c : cases)
        EXPECT_EQ(ExpandHashIncludes(c.text, Files().Reader()), c.expanded) << c.text;
}

TEST(ShaderIncludes, PercentIncludeExpandsRecursively)
{
    const IncludeCase cases[] = {
        {"", ""},
        {"no directives", "no directives"},
        {"[%include(\"a.i\")]", "[A]"},
        {"[%include( \"a.i\" )] [%include (\"a.i\")]", "[A] [A]"},
        {"%include(\"outer.i\")", "<A>"},
        {"a %include(\"missing.i\") b", "a  b"},
        {"%include(\"empty.i\")x", "x"},
        // #include is not this step's business.
        {"%include(\"hash.i\")", "#include \"a.i\""},
        // Something other than a quoted path, or a missing bracket, ends the expansion there.
        {"%include(\"a.i\") %include \"a.i\" %include(\"a.i\")", "A %include \"a.i\" %include(\"a.i\")"},
        {"%include(\"a.i\") %include \"a.i\"", "A %include \"a.i\""},
        {"%include(a.i) %include(\"a.i\")", "%include(a.i) %include(\"a.i\")"},
        {"%include(\"a.i\"", "%include(\"a.i\""},
        {"%include(\"\")", ""},
    };
    for (const IncludeCase& c : cases)
        EXPECT_EQ(ExpandIncludes(c.text, Files().Reader()), c.expanded) << c.text;
}

TEST(ShaderIncludes, WithoutAReaderEveryIncludeIsEmpty)
{
    EXPECT_EQ(ExpandIncludes("a%include(\"a.i\")b"), "ab");
    EXPECT_EQ(ExpandHashIncludes("#include \"a.i\"\nb", {}), "b\n");
}

TEST(ShaderIncludes, SelfInclusionStopsWithAnError)
{
    ShaderLogCapture log;
    const std::string expanded = ExpandIncludes("%include(\"self.i\")", Files().Reader());
    EXPECT_EQ(expanded, std::string(kMaxIncludeExpansions, 'x') + "%include(\"self.i\")");
    EXPECT_EQ(log.lines(),
              (std::vector<CapturedLogLine>{
                  {"error", "Stopped expanding %include after 256 files: an included file includes itself"}}));
}

}  // namespace
}  // namespace kesta
