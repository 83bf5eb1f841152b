#include "engine/frustum.h"

#include <gtest/gtest.h>

#include "foundation/math/projection.h"

namespace kesta {
namespace {

// A camera at the origin looking along +z, 90 degrees each way, depth 1 to 100.
Frustum AtOrigin() { return Frustum::FromView(Matrix4::Identity(), PerspectiveFromZoom(1, 1, 1, 100)); }

TEST(Frustum, PointsInsideAndOutsideEachPlane)
{
    const Frustum frustum = AtOrigin();
    EXPECT_TRUE(frustum.Contains({0, 0, 10}));
    EXPECT_TRUE(frustum.Contains({9.9f, -9.9f, 10}));
    EXPECT_FALSE(frustum.Contains({10.1f, 0, 10}));   // right
    EXPECT_FALSE(frustum.Contains({-10.1f, 0, 10}));  // left
    EXPECT_FALSE(frustum.Contains({0, 10.1f, 10}));   // top
    EXPECT_FALSE(frustum.Contains({0, -10.1f, 10}));  // bottom
    EXPECT_FALSE(frustum.Contains({0, 0, 0.5f}));     // before the near plane
    EXPECT_FALSE(frustum.Contains({0, 0, -10}));      // behind the camera
    EXPECT_FALSE(frustum.Contains({0, 0, 101}));      // beyond the far plane
    EXPECT_NEAR(frustum.DistanceTo(Frustum::kNear, {0, 0, 3}), 2.0f, 1e-4f);
    EXPECT_NEAR(frustum.DistanceTo(Frustum::kFar, {0, 0, 60}), 40.0f, 1e-3f);
}

TEST(Frustum, BoxesInsideOutsideAndCrossing)
{
    const Frustum frustum = AtOrigin();
    EXPECT_EQ(frustum.Classify({{-1, -1, 9}, {1, 1, 11}}), Frustum::kInside);
    EXPECT_EQ(frustum.Classify({{-1, -1, 0}, {1, 1, 2}}), Frustum::kCrossing);
    EXPECT_EQ(frustum.Classify({{50, -1, 9}, {60, 1, 11}}), Frustum::kOutside);
    EXPECT_EQ(frustum.Classify({{-1, -1, 200}, {1, 1, 300}}), Frustum::kOutside);
    // A box around the whole view crosses it.
    EXPECT_EQ(frustum.Classify({{-1000, -1000, -1000}, {1000, 1000, 1000}}), Frustum::kCrossing);
}

TEST(Frustum, FollowsTheCamera)
{
    // The camera moved to x = 100 and turned to look along -x (a half turn about y).
    Matrix4 camera = Matrix4::FromPosition({100, 0, 0});
    camera(0, 0) = 0, camera(0, 2) = -1, camera(2, 0) = 1, camera(2, 2) = 0;
    const Frustum frustum = Frustum::FromView(camera, PerspectiveFromZoom(1, 1, 1, 100));
    EXPECT_TRUE(frustum.Contains({90, 0, 0}));
    EXPECT_FALSE(frustum.Contains({110, 0, 0}));
    EXPECT_FALSE(frustum.Contains({100, 0, 50}));  // beside the camera
}

}  // namespace
}  // namespace kesta
