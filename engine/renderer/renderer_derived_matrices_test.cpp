// The matrices the renderer derives from the ones it is given: inverses and the normal matrix, on
// rotated, translated and non-uniformly scaled transforms, where transposes and inverses differ.

#include <gtest/gtest.h>

#include "engine/renderer/testing/renderer_test_environment.h"

namespace kesta {
namespace {

constexpr float kTolerance = 1e-4f;

void expect_identity(const Matrix4& m, const char* what)
{
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column)
            EXPECT_NEAR(m(row, column), row == column ? 1.0f : 0.0f, kTolerance)
                << what << " (" << row << ", " << column << ")";
    }
}

Matrix4 skewed_transform(float angle, const Vector3& position, const Vector3& scale)
{
    return Matrix4::FromPositionRotationScale(position, Matrix3::RotationY(angle) * Matrix3::RotationX(0.3f), scale);
}

class RendererDerivedMatrices : public testing::OpenRendererTest {};

TEST_F(RendererDerivedMatrices, NormalMatrixIsTheInverseTransposeOfTheModel)
{
    const Matrix4 model = skewed_transform(0.7f, {3, -1, 2}, {2.0f, 0.5f, 3.0f});
    renderer.SetModelMatrix(model);
    const Matrix4& normal = renderer.GetNormalMatrix();
    // transpose(N) * L = I for the model's linear part L.
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            float sum = 0.0f;
            for (int k = 0; k < 3; ++k)
                sum += normal(k, i) * model(k, j);
            EXPECT_NEAR(sum, i == j ? 1.0f : 0.0f, kTolerance) << i << ", " << j;
        }
        EXPECT_EQ(normal(i, 3), 0.0f) << "normals take no translation";
    }
    // So a surface's transformed normal stays perpendicular to its transformed tangents.
    const Vector3 surface_normal{1, 2, 3};
    for (const Vector3& tangent : {Vector3{2, -1, 0}, Vector3{3, 0, -1}, Vector3{0, 3, -2}}) {
        ASSERT_EQ(Dot(tangent, surface_normal), 0.0f);
        EXPECT_NEAR(Dot(model.TransformVector(tangent), normal.TransformVector(surface_normal)), 0.0f, kTolerance);
    }
}

TEST_F(RendererDerivedMatrices, ViewAndPreviousViewInversesAreKeptApart)
{
    const Matrix4 view = skewed_transform(0.4f, {1, 2, 3}, {1.5f, 1.0f, 0.8f});
    const Matrix4 previous = skewed_transform(-1.1f, {-2, 0.5f, 4}, {0.7f, 2.0f, 1.2f});
    renderer.SetViewMatrix(view);
    renderer.SetPreviousViewMatrix(previous);

    EXPECT_EQ(renderer.GetViewMatrix(), view);
    EXPECT_EQ(renderer.GetPreviousViewMatrix(), previous);
    expect_identity(renderer.GetInverseViewMatrix() * view, "inverse view * view");
    expect_identity(view * renderer.GetInverseViewMatrix(), "view * inverse view");
    expect_identity(renderer.GetPreviousInverseViewMatrix() * previous, "previous inverse * previous");
    expect_identity(previous * renderer.GetPreviousInverseViewMatrix(), "previous * previous inverse");

    // Setting the current view again leaves the previous pair alone.
    renderer.SetViewMatrix(Matrix4::Identity());
    expect_identity(renderer.GetPreviousInverseViewMatrix() * previous, "previous pair after a new view");
}

}  // namespace
}  // namespace kesta
