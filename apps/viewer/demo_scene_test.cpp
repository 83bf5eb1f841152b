// The demo scene's geometry: cubes closed and wound alike, markers where the pose puts them.
#include <gtest/gtest.h>

#include <cmath>

#include "apps/viewer/demo_scene.h"

namespace kesta {
namespace {

TEST(DemoSceneTest, EveryCubeTriangleFacesOutwardSoFaceCullingKeepsTheOutside)
{
    SceneGeometry geometry;
    const Vector3 centre{1.0f, 2.0f, 3.0f};
    AppendCube(geometry, Matrix4::FromPosition(centre), 0.5f, {1, 0, 0, 1});
    ASSERT_EQ(geometry.triangles.size(), 36u);
    EXPECT_TRUE(geometry.lines.empty());
    for (std::size_t i = 0; i < geometry.triangles.size(); i += 3) {
        const Vector3 a = geometry.triangles[i].position;
        const Vector3 b = geometry.triangles[i + 1].position;
        const Vector3 c = geometry.triangles[i + 2].position;
        const Vector3 normal = Cross(b - a, c - a);
        const Vector3 outward = (a + b + c) / 3.0f - centre;
        EXPECT_GT(Dot(normal, outward), 0.0f) << "triangle " << i / 3;
        for (const Vector3& p : {a, b, c}) {
            EXPECT_NEAR(std::fabs(p.x - centre.x), 0.25f, 1e-6f);
            EXPECT_NEAR(std::fabs(p.y - centre.y), 0.25f, 1e-6f);
            EXPECT_NEAR(std::fabs(p.z - centre.z), 0.25f, 1e-6f);
        }
    }
}

TEST(DemoSceneTest, TheTopFaceIsTheBrightestAndShadesKeepTheHueAndAlpha)
{
    SceneGeometry geometry;
    AppendCube(geometry, Matrix4{}, 1.0f, {0.5f, 0.25f, 1.0f, 0.75f});
    float brightest_y = -1.0f;
    float brightest = 0.0f;
    for (const SceneVertex& v : geometry.triangles) {
        EXPECT_FLOAT_EQ(v.color.r * 2.0f, v.color.b);
        EXPECT_FLOAT_EQ(v.color.a, 0.75f);
        if (v.color.b > brightest) {
            brightest = v.color.b;
            brightest_y = v.position.y;
        }
    }
    EXPECT_FLOAT_EQ(brightest, 1.0f);
    EXPECT_FLOAT_EQ(brightest_y, 0.5f);
}

TEST(DemoSceneTest, TheFloorGridLiesOnTheFloorAndTheCubesStandOnIt)
{
    SceneGeometry geometry;
    AppendDemoScene(geometry);
    ASSERT_EQ(geometry.lines.size(), 2u * 2u * 21u);
    for (const SceneVertex& v : geometry.lines) {
        EXPECT_EQ(v.position.y, 0.0f);
        EXPECT_LE(std::fabs(v.position.x), 5.0f);
        EXPECT_LE(std::fabs(v.position.z), 5.0f);
    }
    ASSERT_EQ(geometry.triangles.size() % 36u, 0u);
    EXPECT_GE(geometry.triangles.size() / 36u, 3u);
    for (const SceneVertex& v : geometry.triangles)
        EXPECT_GE(v.position.y, -1e-6f);
}

TEST(DemoSceneTest, AMarkerSitsAtThePoseAndItsAxesFollowTheRotation)
{
    // A quarter turn about y: the marker's x axis points along the world's -z (left-handed).
    Matrix4 pose;
    pose(0, 0) = 0.0f;
    pose(0, 2) = 1.0f;
    pose(2, 0) = -1.0f;
    pose(2, 2) = 0.0f;
    pose.SetTranslation({0.5f, 1.0f, -2.0f});
    SceneGeometry geometry;
    AppendDeviceMarker(geometry, pose, {1, 1, 1, 1});
    ASSERT_EQ(geometry.lines.size(), 6u);
    EXPECT_EQ(geometry.triangles.size(), 36u);
    for (std::size_t i = 0; i < geometry.lines.size(); i += 2)
        EXPECT_EQ(geometry.lines[i].position, (Vector3{0.5f, 1.0f, -2.0f}));
    const Vector3 x_end = geometry.lines[1].position;
    EXPECT_NEAR(x_end.x, 0.5f, 1e-6f);
    EXPECT_NEAR(x_end.z, -2.2f, 1e-6f);
    EXPECT_GT(geometry.lines[1].color.r, geometry.lines[1].color.g);
}

}  // namespace
}  // namespace kesta
