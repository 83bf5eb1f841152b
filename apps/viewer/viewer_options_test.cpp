// The viewer's command line: defaults, both spellings of values, and a clear refusal of the rest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "apps/viewer/viewer_options.h"

namespace kesta {
namespace {

using ::testing::HasSubstr;

TEST(ViewerOptionsTest, DefaultsAndEveryOptionInBothSpellings)
{
    ViewerOptions options;
    std::string error;
    ASSERT_TRUE(ParseViewerOptions({}, options, error));
    EXPECT_EQ(options.frames, 180u);
    EXPECT_EQ(options.monitoring, 0);
    EXPECT_TRUE(options.out.empty());
    EXPECT_FALSE(options.unpaced);
    EXPECT_FALSE(options.help);

    ASSERT_TRUE(ParseViewerOptions({"--frames", "7", "--out=/tmp/x", "--monitoring=3", "--unpaced"}, options, error));
    EXPECT_EQ(options.frames, 7u);
    EXPECT_EQ(options.out, "/tmp/x");
    EXPECT_EQ(options.monitoring, 3);
    EXPECT_TRUE(options.unpaced);

    ASSERT_TRUE(
        ParseViewerOptions({"--frames=1000000", "--out", "dir", "--monitoring", "0", "--help"}, options, error));
    EXPECT_EQ(options.frames, kMaxViewerFrames);
    EXPECT_EQ(options.out, "dir");
    EXPECT_TRUE(options.help);
}

struct BadArguments {
    std::vector<std::string> arguments;
    const char* message;
};

void PrintTo(const BadArguments& bad, std::ostream* out)
{
    for (const std::string& argument : bad.arguments)
        *out << '[' << argument << ']';
}

class ViewerOptionsRefusalTest : public ::testing::TestWithParam<BadArguments> {};

TEST_P(ViewerOptionsRefusalTest, RefusesWithAMessageAndKeepsTheOptions)
{
    ViewerOptions options;
    options.frames = 5;
    std::string error;
    EXPECT_FALSE(ParseViewerOptions(GetParam().arguments, options, error));
    EXPECT_THAT(error, HasSubstr(GetParam().message));
    EXPECT_EQ(options.frames, 5u);
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, ViewerOptionsRefusalTest,
    ::testing::Values(
        BadArguments{{"--frames", "0"}, "--frames needs a whole number from 1 to 1000000, not '0'"},
        BadArguments{{"--frames", "1000001"}, "not '1000001'"}, BadArguments{{"--frames", "-3"}, "not '-3'"},
        BadArguments{{"--frames", "12x"}, "not '12x'"}, BadArguments{{"--frames="}, "not ''"},
        BadArguments{{"--frames", "99999999999999999999999"}, "whole number"},
        BadArguments{{"--frames"}, "--frames needs a value"},
        BadArguments{{"--monitoring", "4"}, "--monitoring needs 0 (both eyes)"},
        BadArguments{{"--monitoring", " 1"}, "not ' 1'"}, BadArguments{{"--out", ""}, "--out needs a folder"},
        BadArguments{{"--unpaced=yes"}, "--unpaced takes no value"},
        BadArguments{{"--fast"}, "unknown option '--fast'"}, BadArguments{{"frames"}, "unknown option 'frames'"},
        BadArguments{{"--frames", "3", "-x"}, "unknown option '-x'"}));

TEST(ViewerOptionsTest, UsageNamesEveryOptionAndTheExitStatus)
{
    const std::string usage = ViewerUsage("norvane_viewer");
    for (const char* word :
         {"Usage: norvane_viewer", "--frames N", "--out DIR", "--monitoring", "--unpaced", "--help", "2 bad options"})
        EXPECT_THAT(usage, HasSubstr(word));
}

}  // namespace
}  // namespace kesta
