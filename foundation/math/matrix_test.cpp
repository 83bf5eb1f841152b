#include <gtest/gtest.h>

#include <random>

#include "foundation/math/euler.h"
#include "foundation/math/matrix4.h"
#include "foundation/math/matrix44.h"
#include "foundation/math/projection.h"

namespace kesta {
namespace {

constexpr float kTolerance = 1e-4f;

template <typename M>
void expect_near(const M& a, const M& b, float tolerance = kTolerance)
{
    for (std::size_t i = 0; i < std::size(a.m); ++i)
        EXPECT_NEAR(a.m[i], b.m[i], tolerance) << "element " << i;
}

void expect_near(const Vector3& a, const Vector3& b, float tolerance = kTolerance)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

class RandomTransforms : public ::testing::Test {
protected:
    float uniform(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(rng_); }
    Vector3 vector(float lo, float hi) { return {uniform(lo, hi), uniform(lo, hi), uniform(lo, hi)}; }
    Matrix3 rotation() { return MatrixFromEuler(vector(-3.0f, 3.0f), RotationOrder::XYZ); }
    Matrix4 transform() { return Matrix4::FromPositionRotationScale(vector(-50, 50), rotation(), vector(0.2f, 4.0f)); }

private:
    std::mt19937 rng_{12345};
};

TEST(Matrix4Layout, TranslationLivesInTheFourthColumn)
{
    const Matrix4 t = Matrix4::FromPosition({1, 2, 3});
    EXPECT_EQ(t.m[3], 1.0f);
    EXPECT_EQ(t.m[7], 2.0f);
    EXPECT_EQ(t.m[11], 3.0f);
    expect_near(t.TransformPoint({10, 20, 30}), {11, 22, 33});
    expect_near(t.TransformVector({10, 20, 30}), {10, 20, 30});
}

TEST(Matrix4Layout, ScaleAloneFillsTheDiagonal)
{
    const Matrix4 s = Matrix4::FromScale({2, 3, 4});
    EXPECT_EQ(s, (Matrix4{{2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0}}));
}

TEST(Matrix4Layout, RotationTimesScaleKeepsTheRotatedAxesAsColumns)
{
    const Matrix3 r = Matrix3::RotationZ(kPi / 2);
    const Matrix4 t = Matrix4::FromPositionRotationScale({5, 6, 7}, r, {2, 3, 4});
    // R x S: the columns are the rotation's axes scaled by their own component.
    expect_near(t.Axis(0), r.Column(0) * 2.0f);
    expect_near(t.Axis(1), r.Column(1) * 3.0f);
    expect_near(t.Axis(2), r.Column(2) * 4.0f);
    expect_near(t.Translation(), {5, 6, 7});
    // A quarter turn about Z takes +X to +Y.
    expect_near(t.TransformVector({1, 0, 0}), {0, 2, 0});
}

TEST_F(RandomTransforms, InverseTimesMatrixIsIdentity)
{
    for (int i = 0; i < 100; ++i) {
        const Matrix4 m = transform();
        expect_near(m.Inverse() * m, Matrix4::Identity());
        expect_near(m * m.Inverse(), Matrix4::Identity());
        const Matrix3 l = m.Linear();
        expect_near(l.Inverse() * l, Matrix3::Identity());
    }
}

TEST_F(RandomTransforms, CompositionAppliesTheRightFactorFirst)
{
    for (int i = 0; i < 100; ++i) {
        const Matrix4 a = transform(), b = transform();
        const Vector3 p = vector(-10, 10);
        expect_near((a * b).TransformPoint(p), a.TransformPoint(b.TransformPoint(p)), 2e-3f);
    }
}

TEST_F(RandomTransforms, FullMatrixInverseAgreesWithTheAffineOne)
{
    for (int i = 0; i < 50; ++i) {
        const Matrix4 m = transform();
        expect_near(Matrix44::FromMatrix4(m).Inverse().ToMatrix4(), m.Inverse());
        expect_near(Matrix44::FromMatrix4(m) * Matrix44::FromMatrix4(m).Inverse(), Matrix44::Identity());
    }
}

TEST(Matrix44Inverse, ProjectionRoundTrips)
{
    const Matrix44 p = PerspectiveFromTangents(-1.2f, 0.9f, -1.1f, 1.0f, 0.1f, 100.0f);
    expect_near(p.Inverse() * p, Matrix44::Identity());
}

TEST(SingularMatrices, InverseFallsBackToIdentity)
{
    EXPECT_EQ(Matrix4::FromScale({1, 0, 1}).Inverse(), Matrix4::Identity());
    Matrix44 zero;
    for (float& v : zero.m)
        v = 0;
    EXPECT_EQ(zero.Inverse(), Matrix44::Identity());
}

Vector3 project(const Matrix44& p, const Vector3& v)
{
    const Vector4 clip = p * Vector4{v.x, v.y, v.z, 1.0f};
    return {clip.x / clip.w, clip.y / clip.w, clip.z / clip.w};
}

TEST(Projection, PerspectiveMapsNearAndFarToTheClipRange)
{
    const Matrix44 p = PerspectiveFromZoom(3.2f, 16.0f / 9.0f, 0.1f, 50000.0f);
    EXPECT_NEAR(project(p, {0, 0, 0.1f}).z, -1.0f, 1e-4f);
    EXPECT_NEAR(project(p, {0, 0, 50000.0f}).z, 1.0f, 1e-4f);
    // Left-handed: the visible space lies along +z; w is the depth.
    EXPECT_GT((p * Vector4{0, 0, 10, 1}).w, 0.0f);
}

TEST(Projection, FieldOfViewEdgesMapToTheViewportEdges)
{
    const float fov = DegreesToRadians(90.0f);
    const Matrix44 p = PerspectiveFromFieldOfView(fov, 2.0f, 1.0f, 10.0f);
    // At depth 5 a 90 degree frustum is 5 high each way, and twice as wide.
    expect_near(project(p, {10, 5, 5}), {1, 1, project(p, {0, 0, 5}).z});
    expect_near(project(p, {-10, -5, 5}), {-1, -1, project(p, {0, 0, 5}).z});
}

TEST(Projection, OffCentreFrustumFromTangents)
{
    const Matrix44 p = PerspectiveFromTangents(-0.5f, 1.5f, -1.0f, 0.25f, 1.0f, 10.0f);
    expect_near(project(p, {1.5f, 0.25f, 1.0f}), {1, 1, -1});
    expect_near(project(p, {-5.0f, -10.0f, 10.0f}), {-1, -1, 1});
}

TEST(Projection, OrthographicMapsTheBoxToTheCube)
{
    const Matrix44 p = Orthographic(-4, 2, -1, 3, 0, 8);
    expect_near(project(p, {-4, -1, 0}), {-1, -1, -1});
    expect_near(project(p, {2, 3, 8}), {1, 1, 1});
    const Matrix44 s = OrthographicFromSize(2.0f, 2.0f, 0.0f, 1.0f);
    expect_near(project(s, {2, 1, 1}), {1, 1, 1});
}

}  // namespace
}  // namespace kesta
