#include "foundation/math/minmax.h"

#include <gtest/gtest.h>

namespace kesta {
namespace {

const MinMax kBox{{-1, -2, -3}, {1, 2, 3}};

TEST(MinMaxOutcode, EachSideHasItsBit)
{
    EXPECT_EQ(kBox.OutcodeOf({2, 0, 0}), 1u);
    EXPECT_EQ(kBox.OutcodeOf({-2, 0, 0}), 2u);
    EXPECT_EQ(kBox.OutcodeOf({0, 3, 0}), 4u);
    EXPECT_EQ(kBox.OutcodeOf({0, -3, 0}), 8u);
    EXPECT_EQ(kBox.OutcodeOf({0, 0, -4}), 16u);
    EXPECT_EQ(kBox.OutcodeOf({0, 0, 4}), 32u);
    EXPECT_EQ(kBox.OutcodeOf({2, 3, 4}), 1u | 4u | 32u);
}

TEST(MinMaxRay, OriginInsideOrOnTheSurfaceHitsWithZeroNormal)
{
    for (const Vector3& origin : {Vector3{0, 0, 0}, Vector3{1, 0, 0}, Vector3{1, 2, 0}, Vector3{1, 2, 3}}) {
        Vector3 normal{9, 9, 9};
        EXPECT_TRUE(kBox.IntersectRay(origin, {0, 0, 1}, &normal));
        EXPECT_EQ(normal, Vector3{}) << origin.x << " " << origin.y << " " << origin.z;
    }
}

TEST(MinMaxRay, EachFaceGivesItsSignedAxisNormal)
{
    struct Case {
        Vector3 origin, direction, normal, point;
    };
    const Case cases[] = {
        {{5, 0, 0}, {-1, 0, 0}, {1, 0, 0}, {1, 0, 0}},        {{-5, 0, 0}, {1, 0, 0}, {-1, 0, 0}, {-1, 0, 0}},
        {{0, 5, 0}, {0, -1, 0}, {0, 1, 0}, {0, 2, 0}},        {{0, -5, 0}, {0, 1, 0}, {0, -1, 0}, {0, -2, 0}},
        {{0, 0, 5}, {0, 0, -1}, {0, 0, 1}, {0, 0, 3}},        {{0, 0, -5}, {0, 0, 1}, {0, 0, -1}, {0, 0, -3}},
        {{3, 1, 0}, {-1, 0.25f, 0}, {1, 0, 0}, {1, 1.5f, 0}},
    };
    for (const Case& c : cases) {
        Vector3 normal, point;
        ASSERT_TRUE(kBox.IntersectRay(c.origin, c.direction, &normal, &point));
        EXPECT_EQ(normal, c.normal);
        EXPECT_NEAR(point.x, c.point.x, 1e-5f);
        EXPECT_NEAR(point.y, c.point.y, 1e-5f);
        EXPECT_NEAR(point.z, c.point.z, 1e-5f);
    }
}

TEST(MinMaxRay, PointingAwayOrParallelOutsideMisses)
{
    EXPECT_FALSE(kBox.IntersectRay({5, 0, 0}, {1, 0, 0}));
    EXPECT_FALSE(kBox.IntersectRay({5, 0, 0}, {0, 1, 0}));
    // Heading towards X but away in Z: the z outcode already rules it out.
    EXPECT_FALSE(kBox.IntersectRay({5, 0, 5}, {-1, 0, 0.1f}));
}

TEST(MinMaxRay, PassingBesideTheBoxMisses)
{
    EXPECT_FALSE(kBox.IntersectRay({5, 0, 0}, {-1, 1, 0}));
    EXPECT_FALSE(kBox.IntersectRay({5, 5, 0}, {-1, 0.1f, 0}));
}

TEST(MinMaxRay, CornerRegionEntersThroughTheFaceItReaches)
{
    // Outside in X and Y: the X plane is met outside the box, the Y plane inside it.
    Vector3 normal;
    ASSERT_TRUE(kBox.IntersectRay({1.5f, 4, 0}, {-1, -2, 0}, &normal));
    EXPECT_EQ(normal, (Vector3{0, 1, 0}));
    // Grazing an edge counts as a hit on the first face tested.
    ASSERT_TRUE(kBox.IntersectRay({2, 3, 0}, {-1, -1, 0}, &normal));
    EXPECT_EQ(normal, (Vector3{1, 0, 0}));
}

}  // namespace
}  // namespace kesta
