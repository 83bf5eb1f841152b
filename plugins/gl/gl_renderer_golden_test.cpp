// What the OpenGL renderer draws, checked against reference pictures.

#include <gtest/gtest.h>

#include <cstdlib>

#include "plugins/gl/testing/gl_renderer_fixture.h"
#include "plugins/gl/testing/golden_image.h"

namespace kesta::testing {
namespace {

#define EXPECT_GOLDEN(picture, name) \
    EXPECT_TRUE(MatchesGolden(picture, NORVANE_GL_GOLDEN_DIR, NORVANE_GL_TEST_OUTPUT_DIR, name))

constexpr Color kDarkGrey{0.1f, 0.1f, 0.1f, 1.0f};

// The RGBA bytes of the picture's pixel at column x, row y (row 0 at the top).
std::array<int, 4> pixel(const Picture& picture, int x, int y)
{
    const std::size_t at = (static_cast<std::size_t>(y) * picture.width + x) * 4;
    return {picture.data[at], picture.data[at + 1], picture.data[at + 2], picture.data[at + 3]};
}

void expect_pixel_near(const Picture& picture, int x, int y, std::array<int, 4> expected, int tolerance = 3)
{
    const auto actual = pixel(picture, x, y);
    for (int c = 0; c < 4; ++c)
        EXPECT_NEAR(actual[c], expected[c], tolerance) << "pixel " << x << "," << y << " channel " << c;
}

using GLRendererGolden = GLRendererTest;

TEST_F(GLRendererGolden, ClearFillsTheOutput)
{
    renderer->Clear(Color{0.2f, 0.4f, 0.8f, 1.0f}, 1.0f, kClearAll);
    const Picture picture = Present();
    ASSERT_EQ(picture.width, kOutputSize);
    expect_pixel_near(picture, 0, 0, {51, 102, 204, 255});
    expect_pixel_near(picture, 63, 63, {51, 102, 204, 255});
    EXPECT_GOLDEN(picture, "clear");
}

TEST_F(GLRendererGolden, TexturedQuadThroughTheDefaultShaderIsUpright)
{
    // Row 0 of the texture (red, green) is its top: it must show at the top of the picture.
    const std::uint8_t texels[] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};
    auto texture = MakeTexture(2, 2, kTextureFormatColor8, texels, sizeof texels);
    TextureUnitConfig nearest;
    nearest.SetMinFilter(TextureFilter::kNearest);
    nearest.SetMagFilter(TextureFilter::kNearest);
    texture->SetTextureUnitConfig(nearest);

    renderer->Clear(kDarkGrey, 1.0f, kClearAll);
    Use2DMatrices();
    ASSERT_TRUE(renderer->SetShader(renderer->GetDefaultShader()));
    EXPECT_EQ(renderer->GetDefaultShader()->GetName(), "@core/shaders/single_texture_2d.isl");
    renderer->SetShaderTexture(renderer->GetShaderVariable("u_tex"), texture);
    renderer->DrawQuad(Rect{8, 8, 56, 56}, Rect{0, 0, 1, 1});
    const Picture picture = Present();
    expect_pixel_near(picture, 2, 2, {26, 26, 26, 255});
    expect_pixel_near(picture, 16, 16, {255, 0, 0, 255});
    expect_pixel_near(picture, 48, 16, {0, 255, 0, 255});
    expect_pixel_near(picture, 16, 48, {0, 0, 255, 255});
    expect_pixel_near(picture, 48, 48, {255, 255, 255, 255});
    EXPECT_GOLDEN(picture, "textured_quad");
}

TEST_F(GLRendererGolden, ColouredTrianglesInterpolateVertexColours)
{
    renderer->Clear(kDarkGrey, 1.0f, kClearAll);
    renderer->SetFaceCulling(false);
    ASSERT_TRUE(renderer->SetShader(CoreShader("single_color.isl")));
    DrawColored({{-0.9f, -0.9f, 0, 255, 0, 0, 255},
                 {0.0f, 0.9f, 0, 0, 255, 0, 255},
                 {0.9f, -0.9f, 0, 0, 0, 255, 255},
                 {-0.9f, 0.9f, 0, 255, 255, 0, 255},
                 {-0.5f, 0.9f, 0, 255, 255, 0, 255},
                 {-0.9f, 0.5f, 0, 255, 255, 0, 255}},
                {0, 1, 2, 3, 4, 5});
    const Picture picture = Present();
    expect_pixel_near(picture, 4, 4, {255, 255, 0, 255});  // the small yellow corner triangle
    expect_pixel_near(picture, 4, 59, {255, 0, 0, 255}, 40);
    expect_pixel_near(picture, 59, 59, {0, 0, 255, 255}, 40);
    expect_pixel_near(picture, 60, 2, {26, 26, 26, 255});
    EXPECT_GOLDEN(picture, "coloured_triangles");
}

TEST_F(GLRendererGolden, NearerGeometryHidesFartherGeometryDrawnLater)
{
    renderer->Clear(kDarkGrey, 1.0f, kClearAll);
    renderer->SetFaceCulling(false);
    renderer->SetDepthTest(true);
    renderer->SetDepthFunc(kDepthLess);
    ASSERT_TRUE(renderer->SetShader(CoreShader("single_color.isl")));
    // Red square near (left), then a green square far (right), overlapping in the middle.
    auto square = [](float x1, float x2, float z, std::uint8_t r, std::uint8_t g) {
        return std::vector<ColoredVertex>{{x1, -0.5f, z, r, g, 0, 255},
                                          {x1, 0.5f, z, r, g, 0, 255},
                                          {x2, 0.5f, z, r, g, 0, 255},
                                          {x2, -0.5f, z, r, g, 0, 255}};
    };
    const std::vector<std::uint16_t> quad = {0, 1, 2, 0, 2, 3};
    DrawColored(square(-0.8f, 0.3f, -0.5f, 255, 0), quad);
    DrawColored(square(-0.3f, 0.8f, 0.5f, 0, 255), quad);
    Picture picture = Present();
    expect_pixel_near(picture, 32, 32, {255, 0, 0, 255});  // overlap: the nearer red
    expect_pixel_near(picture, 56, 32, {0, 255, 0, 255});
    EXPECT_GOLDEN(picture, "depth_ordering");

    // With the test off, the later square covers the earlier one.
    renderer->SetDepthTest(false);
    DrawColored(square(-0.3f, 0.8f, 0.5f, 0, 255), quad);
    picture = Present();
    expect_pixel_near(picture, 32, 32, {0, 255, 0, 255});
}

TEST_F(GLRendererGolden, AlphaBlendingMixesWithTheBackground)
{
    renderer->Clear(Color{0, 0, 1, 1}, 1.0f, kClearAll);
    renderer->SetFaceCulling(false);
    renderer->SetBlend(true);
    renderer->SetBlendFunc(kBlendSourceAlpha, kBlendOneMinusSourceAlpha);
    ASSERT_TRUE(renderer->SetShader(CoreShader("single_color.isl")));
    DrawColored({{-0.9f, -0.9f, 0, 255, 255, 255, 128},
                 {-0.9f, 0.9f, 0, 255, 255, 255, 128},
                 {0.9f, 0.9f, 0, 255, 255, 255, 128}},
                {0, 1, 2});
    // Additive: one plus one.
    renderer->SetBlendFunc(kBlendOne, kBlendOne);
    DrawColored({{0.9f, 0.9f, 0, 255, 0, 0, 255}, {0.9f, -0.9f, 0, 255, 0, 0, 255}, {-0.9f, -0.9f, 0, 255, 0, 0, 255}},
                {0, 1, 2});
    const Picture picture = Present();
    // Alpha blends like colour: 0.5 * 0.5 + 1 * 0.5.
    expect_pixel_near(picture, 10, 20, {128, 128, 255, 191});
    expect_pixel_near(picture, 54, 44, {255, 0, 255, 255});
    EXPECT_GOLDEN(picture, "alpha_blending");
}

TEST_F(GLRendererGolden, BackFacesAreCulledAndFrontFacesWhenAsked)
{
    ASSERT_TRUE(renderer->SetShader(CoreShader("single_color.isl")));
    renderer->SetFaceCulling(true);
    // The engine's front faces wind clockwise on screen: the left triangle faces the viewer.
    const std::vector<ColoredVertex> triangles = {{-0.9f, -0.5f, 0, 255, 0, 0, 255}, {-0.5f, 0.5f, 0, 255, 0, 0, 255},
                                                  {-0.1f, -0.5f, 0, 255, 0, 0, 255}, {0.1f, -0.5f, 0, 0, 255, 0, 255},
                                                  {0.9f, -0.5f, 0, 0, 255, 0, 255},  {0.5f, 0.5f, 0, 0, 255, 0, 255}};
    renderer->Clear(kDarkGrey, 1.0f, kClearAll);
    DrawColored(triangles, {0, 1, 2, 3, 4, 5});
    Picture picture = Present();
    expect_pixel_near(picture, 16, 36, {255, 0, 0, 255});
    expect_pixel_near(picture, 48, 36, {26, 26, 26, 255});
    EXPECT_GOLDEN(picture, "face_culling");

    renderer->SetCullFront(true);
    renderer->Clear(kDarkGrey, 1.0f, kClearAll);
    DrawColored(triangles, {0, 1, 2, 3, 4, 5});
    picture = Present();
    expect_pixel_near(picture, 16, 36, {26, 26, 26, 255});
    expect_pixel_near(picture, 48, 36, {0, 255, 0, 255});
}

TEST_F(GLRendererGolden, RenderTargetDrawnIntoThenSampled)
{
    auto color = MakeTexture(32, 32, kTextureFormatColor8, nullptr, 0, false, 0, kTextureUsageColorTarget);
    auto depth = MakeTexture(32, 32, kTextureFormatDepth, nullptr, 0);
    // The target exists on the GPU before its textures are attached, as the VR session makes it.
    auto target = renderer->NewRenderTarget();
    renderer->CreateRenderTarget(*target);
    renderer->SetRenderTargetColorTexture(*target, color);
    renderer->SetRenderTargetDepthTexture(*target, depth);
    renderer->SetRenderTarget(target);
    ASSERT_TRUE(renderer->CheckRenderTarget());
    EXPECT_EQ(renderer->GetViewport(), (Rect{0, 0, 32, 32}));
    renderer->Clear(Color{1, 1, 0, 1}, 1.0f, kClearAll);
    renderer->SetFaceCulling(false);
    ASSERT_TRUE(renderer->SetShader(CoreShader("single_color.isl")));
    DrawColored({{-1, -1, 0, 255, 0, 0, 255}, {-1, 1, 0, 255, 0, 0, 255}, {1, 1, 0, 255, 0, 0, 255}}, {0, 1, 2});

    renderer->ResetRenderTarget();
    EXPECT_EQ(renderer->GetViewport(), (Rect{0, 0, kOutputSize, kOutputSize}));
    renderer->Clear(kDarkGrey, 1.0f, kClearAll);
    Use2DMatrices();
    ASSERT_TRUE(renderer->SetShader(renderer->GetDefaultShader()));
    renderer->SetShaderTexture(renderer->GetShaderVariable("u_tex"), color);
    // A target's first row is its bottom: the quad flips v to show it upright.
    renderer->DrawQuad(Rect{8, 8, 56, 56}, Rect{0, 1, 1, 0});
    const Picture picture = Present();
    expect_pixel_near(picture, 14, 14, {255, 0, 0, 255});    // upper left: the red half
    expect_pixel_near(picture, 50, 50, {255, 255, 0, 255});  // lower right: the clear colour
    expect_pixel_near(picture, 4, 4, {26, 26, 26, 255});
    EXPECT_GOLDEN(picture, "render_target");
}

TEST_F(GLRendererGolden, MultisampleTargetResolvedByBlit)
{
    ASSERT_TRUE(std::get<bool>(renderer->GetCapability(kCapabilityHardwareMultisample)));
    ASSERT_GE(renderer->GetMaxAntiAliasing(), 2);
    auto multisampled = MakeTexture(32, 32, kTextureFormatColor8, nullptr, 0, false, 2, kTextureUsageColorTarget);
    auto resolved = MakeTexture(32, 32, kTextureFormatColor8, nullptr, 0, false, 0, kTextureUsageColorTarget);
    auto source = renderer->NewRenderTarget();
    renderer->SetRenderTargetColorTexture(*source, multisampled);
    renderer->CreateRenderTarget(*source);
    auto destination = renderer->NewRenderTarget();
    renderer->SetRenderTargetColorTexture(*destination, resolved);
    renderer->CreateRenderTarget(*destination);

    renderer->SetRenderTarget(source);
    ASSERT_TRUE(renderer->CheckRenderTarget());
    renderer->Clear(Color{0, 0, 0, 1}, 1.0f, kClearColor);
    renderer->SetFaceCulling(false);
    renderer->SetDepthTest(false);
    ASSERT_TRUE(renderer->SetShader(CoreShader("single_color.isl")));
    DrawColored({{-0.8f, -0.8f, 0, 255, 255, 255, 255},
                 {-0.3f, 0.8f, 0, 255, 255, 255, 255},
                 {0.8f, -0.2f, 0, 255, 255, 255, 255}},
                {0, 1, 2});
    renderer->BlitRenderTarget(source, destination, Rect{0, 0, 32, 32}, Rect{0, 0, 32, 32}, true, false);

    // Edge pixels of the resolved picture carry partial coverage.
    Picture captured;
    ASSERT_TRUE(renderer->CaptureTexture(*resolved, captured));
    int partial = 0;
    for (std::size_t i = 0; i < captured.data.size(); i += 4)
        partial += captured.data[i] > 20 && captured.data[i] < 235 ? 1 : 0;
    EXPECT_GT(partial, 10);
    // The multisampled texture itself cannot be read as a picture.
    EXPECT_FALSE(renderer->CaptureTexture(*multisampled, captured));

    renderer->ResetRenderTarget();
    renderer->Clear(kDarkGrey, 1.0f, kClearAll);
    Use2DMatrices();
    ASSERT_TRUE(renderer->SetShader(renderer->GetDefaultShader()));
    TextureUnitConfig nearest;
    nearest.SetMinFilter(TextureFilter::kNearest);
    nearest.SetMagFilter(TextureFilter::kNearest);
    resolved->SetTextureUnitConfig(nearest);
    renderer->SetShaderTexture(renderer->GetShaderVariable("u_tex"), resolved);
    renderer->DrawQuad(Rect{0, 0, 64, 64}, Rect{0, 1, 1, 0});
    EXPECT_GOLDEN(Present(), "multisample_resolve");
}

TEST_F(GLRendererGolden, MipmapsAverageAMinifiedCheckerboard)
{
    const auto checker = Checkerboard(32, 32, 1, 0x000000ff, 0xffffffff);
    auto mipmapped = MakeTexture(32, 32, kTextureFormatColor8, checker.data(), 32 * 32 * 4, true);
    TextureUnitConfig trilinear;
    trilinear.SetMinFilter(TextureFilter::kTrilinear);
    mipmapped->SetTextureUnitConfig(trilinear);
    auto plain = MakeTexture(32, 32, kTextureFormatColor8, checker.data(), 32 * 32 * 4, false);
    TextureUnitConfig nearest;
    nearest.SetMinFilter(TextureFilter::kNearest);
    nearest.SetMagFilter(TextureFilter::kNearest);
    plain->SetTextureUnitConfig(nearest);

    renderer->Clear(Color{0, 0, 0.5f, 1}, 1.0f, kClearAll);
    Use2DMatrices();
    ASSERT_TRUE(renderer->SetShader(renderer->GetDefaultShader()));
    const ShaderVariable u_tex = renderer->GetShaderVariable("u_tex");
    renderer->SetShaderTexture(u_tex, mipmapped);
    renderer->DrawQuad(Rect{4, 24, 20, 40}, Rect{0, 0, 1, 1});
    renderer->SetShaderTexture(u_tex, plain);
    renderer->DrawQuad(Rect{36, 24, 52, 40}, Rect{0, 0, 1, 1});
    const Picture picture = Present();
    for (int y = 26; y < 38; ++y) {
        for (int x = 6; x < 18; ++x) {
            EXPECT_NEAR(pixel(picture, x, y)[0], 128, 24) << x << "," << y;
            const int sharp = pixel(picture, x + 32, y)[0];
            EXPECT_TRUE(sharp < 10 || sharp > 245) << x + 32 << "," << y << ": " << sharp;
        }
    }
    EXPECT_GOLDEN(picture, "mipmaps");
}

}  // namespace
}  // namespace kesta::testing
