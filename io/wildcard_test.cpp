#include "io/wildcard.h"

#include <gtest/gtest.h>

#include <string>

namespace kesta {
namespace {

TEST(WildcardMatch, LiteralsMustMatchTheWholeTextWithCase)
{
    EXPECT_TRUE(WildcardMatch("plugin.so", "plugin.so"));
    EXPECT_FALSE(WildcardMatch("plugin.so", "Plugin.so"));
    EXPECT_FALSE(WildcardMatch("plugin", "plugin.so"));
    EXPECT_FALSE(WildcardMatch("plugin.so", "plugin"));
    EXPECT_TRUE(WildcardMatch("", ""));
    EXPECT_FALSE(WildcardMatch("", "a"));
}

TEST(WildcardMatch, StarMatchesAnyRunIncludingNone)
{
    EXPECT_TRUE(WildcardMatch("*", ""));
    EXPECT_TRUE(WildcardMatch("*", "anything/at/all"));
    EXPECT_TRUE(WildcardMatch("*.isl", "shaders/ds_fog.isl"));
    EXPECT_FALSE(WildcardMatch("*.isl", "common.i"));
    EXPECT_TRUE(WildcardMatch("lib*vr*.so", "libnorvane_vr_plugin.so"));
    EXPECT_TRUE(WildcardMatch("a*b*c", "abc"));
    EXPECT_FALSE(WildcardMatch("a*b*c", "acb"));
    EXPECT_TRUE(WildcardMatch("**a**", "xax"));
    // Needs back-tracking: the first "ab" is not the one that ends the text.
    EXPECT_TRUE(WildcardMatch("*ab", "aabab"));
}

TEST(WildcardMatch, QuestionMarkMatchesExactlyOneCharacter)
{
    EXPECT_TRUE(WildcardMatch("bloom_?i.isl", "bloom_hi.isl"));
    EXPECT_FALSE(WildcardMatch("bloom_?i.isl", "bloom_i.isl"));
    EXPECT_TRUE(WildcardMatch("*?", "x"));
    EXPECT_FALSE(WildcardMatch("*?", ""));
}

TEST(WildcardMatch, PathologicalPatternsFinishQuickly)
{
    const std::string text(2000, 'a');
    EXPECT_FALSE(WildcardMatch("*a*a*a*a*a*a*a*a*b", text));
    EXPECT_TRUE(WildcardMatch("*a*a*a*a*a*a*a*a*", text));
}

}  // namespace
}  // namespace kesta
