// The camera and the eye textures as the render system and the VR output use them.

#include <gtest/gtest.h>

#include "plugins/gl/testing/gl_renderer_fixture.h"

namespace kesta::testing {
namespace {

int Red(const Picture& picture, int x, int y)
{
    return picture.data[(static_cast<std::size_t>(y) * picture.width + x) * 4];
}

using GLRendererCamera = GLRendererTest;

TEST_F(GLRendererCamera, TheViewMatrixIsTheCamerasWorldMatrix)
{
    renderer->Clear(Color{0, 0, 0, 1}, 1.0f, kClearAll);
    renderer->SetFaceCulling(false);
    renderer->SetDepthTest(false);
    // The camera stands half a clip unit to the right: what lies at the origin shows left of centre.
    renderer->SetProjectionMatrix(Matrix44{});
    renderer->SetViewMatrix(Matrix4::FromPosition({0.5f, 0, 0}));
    renderer->SetModelMatrix(Matrix4::Identity());
    ASSERT_TRUE(renderer->SetShader(CoreShader("single_color.isl")));
    DrawColored({{-0.2f, -0.2f, 0, 255, 0, 0, 255},
                 {-0.2f, 0.2f, 0, 255, 0, 0, 255},
                 {0.2f, 0.2f, 0, 255, 0, 0, 255},
                 {0.2f, -0.2f, 0, 255, 0, 0, 255}},
                {0, 1, 2, 0, 2, 3});
    const Picture picture = Present();
    EXPECT_GT(Red(picture, 16, 32), 200);  // clip x -0.5
    EXPECT_LT(Red(picture, 32, 32), 50);
    EXPECT_LT(Red(picture, 48, 32), 50);
}

TEST_F(GLRendererCamera, AMipmappedColourTargetMadeByCreateTextureIsSampledAsDrawn)
{
    // Made as the VR output makes its eye textures: directly, mipmapped, never marked ready by a
    // loader, drawn into only at its first level.
    std::shared_ptr<Texture> eye = renderer->NewTexture("eye");
    renderer->CreateTexture(*eye, nullptr, 0, 32, 32, kTextureFormatColor8, 0, kTextureUsageColorTarget, true, 1);
    auto target = renderer->NewRenderTarget();
    renderer->CreateRenderTarget(*target);
    renderer->SetRenderTargetColorTexture(*target, eye);
    renderer->SetRenderTarget(target);
    renderer->Clear(Color{1, 0, 0, 1}, 1.0f, kClearAll);
    renderer->ResetRenderTarget();

    renderer->Clear(Color{0, 0, 0, 1}, 1.0f, kClearAll);
    Use2DMatrices();
    ASSERT_TRUE(renderer->SetShader(CoreShader("single_texture_2d.isl")));
    renderer->SetShaderTexture(renderer->GetShaderVariable("u_tex"), eye);
    // Minified by two, as a mirror shows an eye: a level beyond the first would be read if it were
    // in use.
    renderer->DrawQuad(Rect{0, 0, 16, 16}, Rect{0, 0, 1, 1});
    const Picture picture = Present();
    EXPECT_GT(Red(picture, 8, 8), 200);
    renderer->FreeRenderTarget(*target);
    renderer->FreeTexture(*eye);
}

}  // namespace
}  // namespace kesta::testing
