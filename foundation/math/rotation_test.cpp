#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "foundation/math/euler.h"
#include "foundation/math/quaternion.h"

namespace kesta {
namespace {

constexpr float kTolerance = 1e-4f;

void expect_near(const Matrix3& a, const Matrix3& b, float tolerance = kTolerance)
{
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(a.m[i], b.m[i], tolerance) << "element " << i;
}

void expect_near(const Vector3& a, const Vector3& b, float tolerance = kTolerance)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

const RotationOrder kThreeAxisOrders[] = {RotationOrder::Default, RotationOrder::XYZ, RotationOrder::YXZ,
                                          RotationOrder::XZY,     RotationOrder::ZXY, RotationOrder::YZX,
                                          RotationOrder::ZYX};

// The axis index each letter of an order's name stands for, in application order.
std::vector<int> axes_of(RotationOrder order)
{
    switch (order) {
        case RotationOrder::YXZ:
            return {1, 0, 2};
        case RotationOrder::XZY:
            return {0, 2, 1};
        case RotationOrder::ZXY:
            return {2, 0, 1};
        case RotationOrder::YZX:
            return {1, 2, 0};
        case RotationOrder::ZYX:
            return {2, 1, 0};
        case RotationOrder::XY:
            return {0, 1};
        default:
            return {0, 1, 2};
    }
}

class EulerOrders : public ::testing::TestWithParam<RotationOrder> {
protected:
    std::mt19937 rng{777};
    float uniform(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(rng); }
};

TEST_P(EulerOrders, AnglesRoundTripAwayFromGimbalLock)
{
    const RotationOrder order = GetParam();
    const std::vector<int> axes = axes_of(order);
    for (int i = 0; i < 200; ++i) {
        Vector3 angles{uniform(-3.1f, 3.1f), uniform(-3.1f, 3.1f), uniform(-3.1f, 3.1f)};
        angles[axes[1]] = uniform(-1.4f, 1.4f);  // the middle angle's range is [-pi/2, pi/2]
        if (order == RotationOrder::XY)
            angles.z = 0.0f;
        const Vector3 back = EulerFromMatrix(MatrixFromEuler(angles, order), order);
        expect_near(back, angles, 2e-3f);
    }
}

TEST_P(EulerOrders, MatrixRoundTripsEvenAtGimbalLock)
{
    const RotationOrder order = GetParam();
    const std::vector<int> axes = axes_of(order);
    for (float middle : {kPi / 2, -kPi / 2}) {
        Vector3 angles{0.7f, -0.4f, 1.1f};
        angles[axes[1]] = middle;
        const Matrix3 m = MatrixFromEuler(angles, order);
        expect_near(MatrixFromEuler(EulerFromMatrix(m, order), order), m, 1e-3f);
    }
}

TEST_P(EulerOrders, FirstLetterIsAppliedFirst)
{
    const RotationOrder order = GetParam();
    const std::vector<int> axes = axes_of(order);
    const Vector3 angles{0.3f, -0.8f, 1.3f};
    Matrix3 expected;
    for (int axis : axes) {
        const Matrix3 step = axis == 0 ? Matrix3::RotationX(angles.x)
                                       : (axis == 1 ? Matrix3::RotationY(angles.y) : Matrix3::RotationZ(angles.z));
        expected = step * expected;
    }
    expect_near(MatrixFromEuler(angles, order), expected);
}

TEST_P(EulerOrders, QuaternionPathAgreesWithMatrixPath)
{
    const RotationOrder order = GetParam();
    const Vector3 angles{0.5f, 0.25f, order == RotationOrder::XY ? 0.0f : -1.0f};
    expect_near(QuaternionFromEuler(angles, order).ToMatrix(), MatrixFromEuler(angles, order));
    expect_near(EulerFromQuaternion(QuaternionFromEuler(angles, order), order), angles, 1e-3f);
}

INSTANTIATE_TEST_SUITE_P(AllOrders, EulerOrders,
                         ::testing::Values(RotationOrder::Default, RotationOrder::XY, RotationOrder::XYZ,
                                           RotationOrder::YXZ, RotationOrder::XZY, RotationOrder::ZXY,
                                           RotationOrder::YZX, RotationOrder::ZYX));

TEST(EulerXY, IgnoresTheZAngle)
{
    expect_near(MatrixFromEuler({0.4f, 0.9f, 2.0f}, RotationOrder::XY),
                MatrixFromEuler({0.4f, 0.9f, 0.0f}, RotationOrder::XYZ));
    EXPECT_EQ(EulerFromMatrix(Matrix3::RotationZ(1.0f), RotationOrder::XY).z, 0.0f);
}

TEST(EulerOrdersDiffer, SameAnglesDifferentOrdersGiveDifferentRotations)
{
    const Vector3 angles{0.5f, 0.6f, 0.7f};
    for (RotationOrder a : kThreeAxisOrders)
        for (RotationOrder b : kThreeAxisOrders) {
            if (axes_of(a) == axes_of(b))
                continue;
            const Matrix3 ma = MatrixFromEuler(angles, a), mb = MatrixFromEuler(angles, b);
            float difference = 0;
            for (int i = 0; i < 9; ++i)
                difference += std::abs(ma.m[i] - mb.m[i]);
            EXPECT_GT(difference, 0.01f);
        }
}

TEST(Quaternions, ProductMatchesMatrixProduct)
{
    const Quaternion a = Quaternion::FromAxisAngle({1, 2, 3}, 0.8f);
    const Quaternion b = Quaternion::FromAxisAngle({-2, 0.5f, 1}, -1.7f);
    expect_near((a * b).ToMatrix(), a.ToMatrix() * b.ToMatrix());
    const Vector3 v{0.3f, -4.0f, 2.0f};
    expect_near((a * b).Rotate(v), a.Rotate(b.Rotate(v)));
    expect_near(a.Rotate(v), a.ToMatrix() * v);
}

TEST(Quaternions, MatrixRoundTripForEveryBranch)
{
    // Rotations whose largest diagonal term is the trace, then x, y and z.
    const Quaternion cases[] = {Quaternion::FromAxisAngle({0, 0, 1}, 0.3f), Quaternion::FromAxisAngle({1, 0, 0}, 3.0f),
                                Quaternion::FromAxisAngle({0, 1, 0}, 3.0f), Quaternion::FromAxisAngle({0, 0, 1}, 3.0f),
                                Quaternion::FromAxisAngle({1, 1, 1}, kPi)};
    for (const Quaternion& q : cases) {
        const Quaternion back = Quaternion::FromMatrix(q.ToMatrix());
        // q and -q are the same rotation.
        EXPECT_NEAR(std::abs(Dot(back, q)), 1.0f, 1e-4f);
    }
}

TEST(Quaternions, ConjugateUndoesTheRotation)
{
    const Quaternion q = Quaternion::FromAxisAngle({0.2f, 1, -0.4f}, 2.2f);
    expect_near((q.Conjugate() * q).ToMatrix(), Matrix3::Identity());
}

TEST(Quaternions, SlerpEndsAndMiddle)
{
    const Quaternion a = Quaternion::Identity();
    const Quaternion b = Quaternion::FromAxisAngle({0, 1, 0}, 2.0f);
    EXPECT_NEAR(std::abs(Dot(Slerp(a, b, 0.0f), a)), 1.0f, 1e-5f);
    EXPECT_NEAR(std::abs(Dot(Slerp(a, b, 1.0f), b)), 1.0f, 1e-5f);
    const Quaternion half = Slerp(a, b, 0.5f);
    EXPECT_NEAR(std::abs(Dot(half, Quaternion::FromAxisAngle({0, 1, 0}, 1.0f))), 1.0f, 1e-5f);
    // The shorter arc: -b is the same rotation and gives the same midpoint.
    const Quaternion minus_b{-b.x, -b.y, -b.z, -b.w};
    EXPECT_NEAR(std::abs(Dot(Slerp(a, minus_b, 0.5f), half)), 1.0f, 1e-5f);
}

}  // namespace
}  // namespace kesta
