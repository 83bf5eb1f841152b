// Handedness conversion of poses and projections, checked numerically.

#include "plugins/vr/vr_pose_conversion.h"

#include <gtest/gtest.h>

#include <cmath>

#include "foundation/math/euler.h"

namespace kesta {
namespace {

vr::HmdMatrix34_t Numbered34()
{
    vr::HmdMatrix34_t m{};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            m.m[row][column] = static_cast<float>(1 + row * 4 + column);
    return m;
}

// A right-handed pose as the runtime reports it: yaw about +y, then the position.
vr::HmdMatrix34_t RightHandedPose(float yaw_degrees, const Vector3& position)
{
    const float c = std::cos(DegreesToRadians(yaw_degrees)), s = std::sin(DegreesToRadians(yaw_degrees));
    return vr::HmdMatrix34_t{{{c, 0, s, position.x}, {0, 1, 0, position.y}, {-s, 0, c, position.z}}};
}

void ExpectNear(const Vector3& actual, const Vector3& expected)
{
    EXPECT_NEAR(actual.x, expected.x, 1e-5f);
    EXPECT_NEAR(actual.y, expected.y, 1e-5f);
    EXPECT_NEAR(actual.z, expected.z, 1e-5f);
}

TEST(ConvertPose, IsZFlipTimesPoseTimesZFlip)
{
    const vr::HmdMatrix34_t m = Numbered34();
    Matrix4 plain;
    for (int i = 0; i < 12; ++i)
        plain.m[i] = m.m[i / 4][i % 4];
    const Matrix4 zflip = Matrix4::FromScale({1, 1, -1});
    EXPECT_EQ(ConvertPose(m), zflip * plain * zflip);

    // Exactly these five entries change sign.
    const Matrix4 converted = ConvertPose(m);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column) {
            const bool flips = (row < 2 && column == 2) || (row == 2 && column != 2);
            EXPECT_EQ(converted(row, column), (flips ? -1.0f : 1.0f) * m.m[row][column]) << row << "," << column;
        }
}

TEST(ConvertPose, MirrorsPointsInZAndKeepsTheHandednessOfMotion)
{
    // A head at (1, 1.7, -2) in OpenVR's right-handed space, turned 30 degrees to the left.
    const vr::HmdMatrix34_t pose = RightHandedPose(30.0f, {1.0f, 1.7f, -2.0f});
    const Matrix4 engine = ConvertPose(pose);

    // The position is mirrored in z.
    ExpectNear(engine.Translation(), {1.0f, 1.7f, 2.0f});
    // OpenVR looks along -z, the engine along +z: the mirrored forward axis of the runtime is the
    // engine's forward axis, turned the same way seen from above.
    const float s = std::sin(DegreesToRadians(30.0f)), c = std::cos(DegreesToRadians(30.0f));
    const Vector3 runtime_forward{-s, 0, -c};
    ExpectNear(engine.TransformVector({0, 0, 1}), {runtime_forward.x, runtime_forward.y, -runtime_forward.z});
    // A rotation stays a rotation: determinant +1, not a reflection.
    const Matrix4 l = engine;
    const float det = l(0, 0) * (l(1, 1) * l(2, 2) - l(1, 2) * l(2, 1)) -
                      l(0, 1) * (l(1, 0) * l(2, 2) - l(1, 2) * l(2, 0)) +
                      l(0, 2) * (l(1, 0) * l(2, 1) - l(1, 1) * l(2, 0));
    EXPECT_NEAR(det, 1.0f, 1e-5f);
    // Converting twice gives the runtime's numbers back.
    const Matrix4 twice = ConvertPose(vr::HmdMatrix34_t{
        {{l.m[0], l.m[1], l.m[2], l.m[3]}, {l.m[4], l.m[5], l.m[6], l.m[7]}, {l.m[8], l.m[9], l.m[10], l.m[11]}}});
    for (int i = 0; i < 12; ++i)
        EXPECT_FLOAT_EQ(twice.m[i], pose.m[i / 4][i % 4]);
}

TEST(ConvertProjection, NegatesColumnTwoOnly)
{
    vr::HmdMatrix44_t m{};
    for (int i = 0; i < 16; ++i)
        m.m[i / 4][i % 4] = static_cast<float>(i + 1);
    const Matrix44 converted = ConvertProjection(m);
    Matrix44 plain;
    for (int i = 0; i < 16; ++i)
        plain.m[i] = m.m[i / 4][i % 4];
    Matrix44 zflip;
    zflip(2, 2) = -1;
    EXPECT_EQ(converted, plain * zflip);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(converted.m[i], (i % 4 == 2 ? -1.0f : 1.0f) * m.m[i / 4][i % 4]) << i;
}

// The runtime's right-handed projection with depth 0 at the near plane and 1 at the far plane.
vr::HmdMatrix44_t RuntimeProjection(float znear, float zfar)
{
    vr::HmdMatrix44_t m{};
    m.m[0][0] = 1.0f;
    m.m[1][1] = 1.0f;
    m.m[2][2] = -zfar / (zfar - znear);
    m.m[2][3] = -zfar * znear / (zfar - znear);
    m.m[3][2] = -1.0f;
    return m;
}

TEST(DepthRangeOf, RecoversNearAndFarOfAConvertedProjection)
{
    for (const auto& [znear, zfar] : {std::pair{0.1f, 100.0f}, std::pair{0.05f, 1000.0f}, std::pair{1.0f, 2.0f}}) {
        const Matrix44 projection = ConvertProjection(RuntimeProjection(znear, zfar));
        // The converted projection maps engine depth +z in front of the eye.
        const Vector4 near_point = projection * Vector4{0, 0, znear, 1};
        EXPECT_NEAR(near_point.z / near_point.w, 0.0f, 1e-5f);
        const DepthRange range = DepthRangeOf(projection);
        EXPECT_NEAR(range.znear, znear, znear * 1e-4f);
        EXPECT_NEAR(range.zfar, zfar, zfar * 5e-3f);
    }
}

}  // namespace
}  // namespace kesta
