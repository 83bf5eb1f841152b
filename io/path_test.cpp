#include "io/path.h"

#include <gtest/gtest.h>

namespace kesta {
namespace {

TEST(NormalizePath, RemovesDotSegmentsAndCollapsesParents)
{
    EXPECT_EQ(NormalizePath("a/./b"), "a/b");
    EXPECT_EQ(NormalizePath("./a"), "a");
    EXPECT_EQ(NormalizePath("a/b/../c"), "a/c");
    EXPECT_EQ(NormalizePath("a/b/../../c"), "c");
    EXPECT_EQ(NormalizePath("x/../a"), "a");
    EXPECT_EQ(NormalizePath("a//b///c"), "a/b/c");
    EXPECT_EQ(NormalizePath("a\\b\\..\\c"), "a/c");
}

TEST(NormalizePath, KeepsLeadingParentsOfRelativePaths)
{
    EXPECT_EQ(NormalizePath("../a"), "../a");
    EXPECT_EQ(NormalizePath("x/../../a"), "../a");
    EXPECT_EQ(NormalizePath("../../a/b/.."), "../../a");
    EXPECT_EQ(NormalizePath(".."), "..");
    EXPECT_EQ(NormalizePath("a/.."), "");
}

TEST(NormalizePath, KeepsTheRootOfAbsolutePaths)
{
    EXPECT_EQ(NormalizePath("/a/b/../c"), "/a/c");
    EXPECT_EQ(NormalizePath("/../a"), "/a");
    EXPECT_EQ(NormalizePath("/"), "/");
}

TEST(NormalizePath, DropsTrailingSeparatorsAndHandlesEmptyInput)
{
    EXPECT_EQ(NormalizePath("a/b/"), "a/b");
    EXPECT_EQ(NormalizePath("a/b/."), "a/b");
    EXPECT_EQ(NormalizePath(""), "");
    EXPECT_EQ(NormalizePath("."), "");
    EXPECT_EQ(NormalizePath("@core/shaders/./x.isl"), "@core/shaders/x.isl");
}

}  // namespace
}  // namespace kesta
