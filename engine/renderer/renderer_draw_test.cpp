// The renderer's shared drawing state: the quad and the matrices.

#include <gtest/gtest.h>

#include <cstring>

#include "engine/renderer/testing/renderer_test_environment.h"

namespace kesta {
namespace {

class RendererDrawing : public testing::OpenRendererTest {
protected:
    Vector3 to_clip(const Vector3& p)
    {
        const Matrix44 mvp = renderer.GetProjectionMatrix() * Matrix44::FromMatrix4(renderer.GetViewMatrix()) *
                             Matrix44::FromMatrix4(renderer.GetModelMatrix());
        const Vector4 c = mvp * Vector4{p.x, p.y, p.z, 1.0f};
        return {c.x / c.w, c.y / c.w, c.z / c.w};
    }
};

TEST_F(RendererDrawing, QuadWritesFourVerticesAndDrawsSixIndices)
{
    renderer.DrawQuad(Rect{10, 20, 30, 40}, Rect{0, 0, 1, 1});
    EXPECT_EQ(renderer.Calls(), (std::vector<std::string>{"UpdateBuffer(0, 80)", "SetIndexSource(buffer)",
                                                          "SetVertexSource(buffer, 20)", "DrawBuffers(0, 6, 1, 0)"}));
    const auto& vertices = static_cast<RecordingBuffer&>(*renderer.vertex_source).bytes;
    ASSERT_EQ(vertices.size(), 80u);
    float corner[5];
    std::memcpy(corner, vertices.data() + 40, sizeof corner);  // third vertex: end x, end y
    EXPECT_EQ(corner[0], 30.0f);
    EXPECT_EQ(corner[1], 40.0f);
    EXPECT_EQ(corner[3], 1.0f);
    EXPECT_EQ(corner[4], 1.0f);
    const auto& indices = static_cast<RecordingBuffer&>(*renderer.index_source).bytes;
    std::uint16_t order[6];
    ASSERT_EQ(indices.size(), sizeof order);
    std::memcpy(order, indices.data(), sizeof order);
    EXPECT_EQ((std::vector<std::uint16_t>(order, order + 6)), (std::vector<std::uint16_t>{0, 1, 2, 0, 2, 3}));
}

TEST_F(RendererDrawing, TwoDimensionalMatricesMapTheViewportToClipSpace)
{
    renderer.SetViewport(Rect{0, 0, 200, 100});
    renderer.SetModelMatrix(Matrix4::FromPosition({5, 5, 5}));
    renderer.Set2DMatrices(false);
    Vector3 top_left = to_clip({0, 0, 0}), bottom_right = to_clip({200, 100, 0});
    EXPECT_NEAR(top_left.x, -1.0f, 1e-5f);
    EXPECT_NEAR(top_left.y, 1.0f, 1e-5f);
    EXPECT_NEAR(bottom_right.x, 1.0f, 1e-5f);
    EXPECT_NEAR(bottom_right.y, -1.0f, 1e-5f);

    renderer.Set2DMatrices(true);
    top_left = to_clip({0, 0, 0});
    EXPECT_NEAR(top_left.y, -1.0f, 1e-5f);
}

TEST_F(RendererDrawing, IdentityMatricesLeaveClipCoordinatesAlone)
{
    renderer.SetViewMatrix(Matrix4::FromPosition({1, 2, 3}));
    renderer.SetIdentityMatrices();
    EXPECT_EQ(renderer.GetViewMatrix(), Matrix4::Identity());
    EXPECT_EQ(renderer.GetInverseViewMatrix(), Matrix4::Identity());
    EXPECT_EQ(renderer.GetProjectionMatrix(), Matrix44::Identity());
}

TEST_F(RendererDrawing, DerivedMatricesFollowTheirSource)
{
    const Matrix4 view = Matrix4::FromPositionRotationScale({1, 2, 3}, Matrix3::RotationY(0.5f), {1, 1, 1});
    renderer.SetViewMatrix(view);
    const Matrix4 round_trip = renderer.GetInverseViewMatrix() * view;
    for (int i = 0; i < 12; ++i)
        EXPECT_NEAR(round_trip.m[i], Matrix4::Identity().m[i], 1e-5f);

    // A non-uniform scale: normals use the inverse transpose, which keeps them perpendicular.
    renderer.SetModelMatrix(Matrix4::FromScale({2, 1, 1}));
    const Vector3 tangent = renderer.GetModelMatrix().TransformVector({1, -1, 0});
    const Vector3 normal = renderer.GetNormalMatrix().TransformVector({1, 1, 0});
    EXPECT_NEAR(Dot(tangent, normal), 0.0f, 1e-5f);
}

}  // namespace
}  // namespace kesta
