// The OpenGL renderer's behaviour besides pictures: formats, life cycle, and bad input.

#include "plugins/gl/gl_renderer.h"

#include <gtest/gtest.h>
#include <stb_image_write.h>

#include <cstring>
#include <filesystem>

#include "engine/renderer/gpu_resource_registry.h"
#include "engine/vertex_layout.h"
#include "io/filesystem.h"
#include "io/memory_file_driver.h"
#include "plugins/gl/testing/gl_renderer_fixture.h"
#include "plugins/gl/testing/golden_image.h"

namespace kesta::testing {
namespace {

std::vector<std::string> lines_starting(const LogCapture& log, const std::string& prefix)
{
    std::vector<std::string> found;
    for (const std::string& line : log.Lines())
        if (line.rfind(prefix, 0) == 0)
            found.push_back(line);
    return found;
}

using GLRendererFormats = GLRendererTest;

TEST_F(GLRendererFormats, EveryColourFormatUploadsAndReadsBackAsRGBA)
{
    struct Case {
        TextureFormat format;
        std::vector<std::uint8_t> texels;  // one pixel
        std::array<int, 4> rgba;
    };
    const Case cases[] = {
        {0, {10, 20, 30, 40}, {10, 20, 30, 40}}, {1, {10, 20, 30}, {10, 20, 30, 255}}, {2, {77}, {77, 0, 0, 255}},
        {6, {30, 20, 10, 40}, {10, 20, 30, 40}}, {7, {30, 20, 10}, {10, 20, 30, 255}}, {8, {50, 60}, {50, 60, 0, 255}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.format));
        // Three pixels in a row: rows of odd byte counts must upload unpadded.
        std::vector<std::uint8_t> data;
        for (int i = 0; i < 3; ++i)
            data.insert(data.end(), c.texels.begin(), c.texels.end());
        auto texture = MakeTexture(3, 1, c.format, data.data(), static_cast<std::uint32_t>(data.size()));
        ASSERT_TRUE(texture->IsReady());
        EXPECT_NE(texture->GetNativeHandle(), 0u);
        Picture picture;
        ASSERT_TRUE(renderer->CaptureTexture(*texture, picture));
        ASSERT_EQ(picture.format, kPictureRGBA8);
        ASSERT_EQ(picture.data.size(), 12u);
        for (int i = 0; i < 3; ++i)
            for (int channel = 0; channel < 4; ++channel)
                EXPECT_EQ(picture.data[i * 4 + channel], c.rgba[channel]);
    }

    const float texels[] = {0.5f, 0.25f, 2.0f, 1.0f};
    auto hdr = MakeTexture(1, 1, kTextureFormatColorFloat, texels, sizeof texels);
    Picture picture;
    ASSERT_TRUE(renderer->CaptureTexture(*hdr, picture));
    ASSERT_EQ(picture.format, kPictureRGBAFloat);
    ASSERT_EQ(picture.data.size(), sizeof texels);
    EXPECT_EQ(std::memcmp(picture.data.data(), texels, sizeof texels), 0);
}

TEST_F(GLRendererFormats, DepthFormatsCompleteATargetButAreNoPicture)
{
    for (TextureFormat format : {kTextureFormatDepth, kTextureFormatDepthPostProcess}) {
        auto colour = MakeTexture(8, 8, kTextureFormatColor8, nullptr, 0, false, 0, kTextureUsageColorTarget);
        auto depth = MakeTexture(8, 8, format, nullptr, 0);
        auto target = renderer->NewRenderTarget();
        renderer->SetRenderTargetColorTexture(*target, colour);
        renderer->SetRenderTargetDepthTexture(*target, depth);
        renderer->CreateRenderTarget(*target);
        renderer->SetRenderTarget(target);
        EXPECT_TRUE(renderer->CheckRenderTarget());
        Picture picture;
        EXPECT_FALSE(renderer->CaptureTexture(*depth, picture));
        renderer->ResetRenderTarget();
    }
    auto shadow = renderer->NewShadowMap(16, 16, "shadow");
    EXPECT_TRUE(shadow->IsReady());
    EXPECT_EQ(shadow->format, kTextureFormatDepth);
}

TEST_F(GLRendererFormats, UnknownFormatsAndShortDataAreRefused)
{
    auto unknown = renderer->NewTexture("odd");
    renderer->CreateTexture(*unknown, nullptr, 0, 4, 4, 42, 0, kTextureUsageSampled, false, 1);
    EXPECT_TRUE(unknown->IsFailed());
    EXPECT_TRUE(log.Contains("error", "Cannot create texture 'odd' of format 42 and size 4 x 4"));

    // Too little data for the size: created empty instead of reading past the caller's bytes.
    const std::uint8_t two_pixels[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    auto short_data = MakeTexture(4, 4, kTextureFormatColor8, two_pixels, sizeof two_pixels);
    EXPECT_TRUE(log.Contains("warn", "Texture 'test texture': 8 bytes given, 64 needed; created empty"));
    Picture picture;
    EXPECT_TRUE(renderer->CaptureTexture(*short_data, picture));
}

TEST_F(GLRendererFormats, UpdateTextureReplacesThePixels)
{
    std::vector<std::uint8_t> first(16, 0), second(16, 200);
    auto texture = MakeTexture(2, 2, kTextureFormatColor8, first.data(), 16, true);
    renderer->UpdateTexture(*texture, second.data(), 16);
    Picture picture;
    ASSERT_TRUE(renderer->CaptureTexture(*texture, picture));
    EXPECT_EQ(picture.data, second);
    // Too short an update changes nothing.
    renderer->UpdateTexture(*texture, first.data(), 8);
    ASSERT_TRUE(renderer->CaptureTexture(*texture, picture));
    EXPECT_EQ(picture.data, second);
}

using GLRendererBuffers = GLRendererTest;

TEST_F(GLRendererBuffers, MapWriteUnmapAndGrowKeepTheBufferUsable)
{
    auto buffer = renderer->NewBuffer();
    renderer->CreateBuffer(*buffer, nullptr, 16, kVertexBuffer, kDynamicBuffer);
    EXPECT_EQ(renderer->GetBufferSize(*buffer), 16u);
    auto* bytes = static_cast<std::uint8_t*>(renderer->MapBuffer(*buffer));
    ASSERT_NE(bytes, nullptr);
    std::memset(bytes, 7, 16);
    renderer->UnmapBuffer(*buffer);
    renderer->CreateBuffer(*buffer, nullptr, 4096, kVertexBuffer, kDynamicBuffer);
    EXPECT_EQ(renderer->GetBufferSize(*buffer), 4096u);
    const std::uint8_t tail[8] = {};
    // Past the end is cut, not written beyond.
    renderer->UpdateBuffer(*buffer, tail, 4092, 8);
    renderer->FreeBuffer(*buffer);
    EXPECT_EQ(renderer->GetBufferSize(*buffer), 0u);
    EXPECT_EQ(renderer->MapBuffer(*buffer), nullptr);
}

TEST_F(GLRendererBuffers, MappedDynamicBuffersDrawWhatWasWrittenLast)
{
    // A buffer much larger than the draw, rewritten between draws: each draw shows its own data.
    auto vertices = renderer->NewBuffer();
    renderer->CreateBuffer(*vertices, nullptr, 4096, kVertexBuffer, kDynamicBuffer);
    auto indices = renderer->NewBuffer();
    renderer->CreateBuffer(*indices, nullptr, 1024, kIndexBuffer, kDynamicBuffer);
    VertexLayout layout;
    layout.AddAttribute(0, 3, VertexLayout::kFloat, false);
    layout.AddAttribute(6, 4, VertexLayout::kUnsignedByte, true);
    layout.End();
    auto triangle = [&](float x1, float x2, std::uint8_t red, std::uint8_t green) {
        const ColoredVertex corners[3] = {
            {x1, -1, 0, red, green, 0, 255}, {x1, 1, 0, red, green, 0, 255}, {x2, 1, 0, red, green, 0, 255}};
        std::memcpy(renderer->MapBuffer(*vertices), corners, sizeof corners);
        renderer->UnmapBuffer(*vertices);
        const std::uint16_t order[3] = {0, 1, 2};
        std::memcpy(renderer->MapBuffer(*indices), order, sizeof order);
        renderer->UnmapBuffer(*indices);
        renderer->SetVertexSource(vertices, layout);
        renderer->SetIndexSource(indices);
        renderer->DrawBuffers(kIndex16, 3, kTriangles, 0);
    };
    renderer->Clear(Color{0, 0, 0, 1}, 1.0f, kClearAll);
    renderer->SetFaceCulling(false);
    ASSERT_TRUE(renderer->SetShader(CoreShader("single_color.isl")));
    triangle(-1.0f, 0.0f, 255, 0);
    triangle(0.0f, 1.0f, 0, 255);
    // A write into the mapped-then-drawn buffer reaches the next draw too.
    const ColoredVertex blue[3] = {
        {-1, -1, 0, 0, 0, 255, 255}, {1, -1, 0, 0, 0, 255, 255}, {1, -0.5f, 0, 0, 0, 255, 255}};
    renderer->UpdateBuffer(*vertices, blue, 0, sizeof blue);
    renderer->DrawBuffers(kIndex16, 3, kTriangles, 0);
    const Picture picture = Present();
    auto at = [&](int x, int y) {
        return picture.data[(static_cast<std::size_t>(y) * picture.width + x) * 4 + 0] * 0x10000 +
               picture.data[(static_cast<std::size_t>(y) * picture.width + x) * 4 + 1] * 0x100 +
               picture.data[(static_cast<std::size_t>(y) * picture.width + x) * 4 + 2];
    };
    EXPECT_EQ(at(2, 30), 0xff0000);   // first triangle, left half
    EXPECT_EQ(at(34, 2), 0x00ff00);   // second, right half
    EXPECT_EQ(at(60, 62), 0x0000ff);  // the updated one along the bottom
    EXPECT_EQ(at(4, 40), 0xff0000);
}

using GLRendererLifecycle = GLRendererTest;

TEST_F(GLRendererLifecycle, OpensClosesAndOpensAgainWithWorkingCapabilities)
{
    EXPECT_EQ(renderer->GetName(), "OpenGL");
    EXPECT_FALSE(renderer->GetRendererName().empty());
    // Mesa hands out its newest core version when 3.3 core is asked for.
    EXPECT_NE(renderer->GetVersionText().find("Core Profile"), std::string::npos) << renderer->GetVersionText();
    EXPECT_EQ(renderer->GetOutputSize(), (std::pair<int, int>{kOutputSize, kOutputSize}));
    EXPECT_NE(renderer->GetCapabilities() & kCapabilityBitHardwareMultisample, 0);
    EXPECT_EQ(g_renderer, renderer.get());
    auto texture = MakeTexture(1, 1, kTextureFormatColor8, "\x01\x02\x03\x04", 4);

    renderer->Close();
    EXPECT_FALSE(renderer->IsOpen());
    EXPECT_EQ(g_renderer, nullptr);
    Picture picture;
    EXPECT_FALSE(renderer->ReadOutput(picture));

    renderer->Open();
    ASSERT_TRUE(renderer->IsOpen());
    EXPECT_TRUE(renderer->GetDefaultShader()->IsReady());
    renderer->Clear(Color{0, 1, 0, 1}, 1.0f, kClearAll);
    renderer->PresentFrame();
    ASSERT_TRUE(renderer->ReadOutput(picture));
    EXPECT_EQ(picture.data[1], 255);
    // A handle from the closed context goes without touching the new one.
    texture.reset();

    renderer->SetOutputSize(32, 16);
    EXPECT_EQ(renderer->GetViewport(), (Rect{0, 0, 32, 16}));
    renderer->PresentFrame();
    ASSERT_TRUE(renderer->ReadOutput(picture));
    EXPECT_EQ(picture.width, 32);
    EXPECT_EQ(picture.height, 16);
}

TEST_F(GLRendererLifecycle, WritesTheOutputAsPng)
{
    std::filesystem::create_directories(NORVANE_GL_TEST_OUTPUT_DIR);
    const std::string path = std::string(NORVANE_GL_TEST_OUTPUT_DIR) + "/written_output.png";
    EXPECT_FALSE(renderer->WriteOutputPng(path));  // nothing presented yet
    renderer->Clear(Color{1, 0, 0, 1}, 1.0f, kClearAll);
    renderer->PresentFrame();
    // What is drawn after presenting is not part of the presented output.
    renderer->Clear(Color{0, 0, 1, 1}, 1.0f, kClearAll);
    ASSERT_TRUE(renderer->WriteOutputPng(path));
    Picture picture;
    ASSERT_TRUE(ReadPng(path, picture));
    EXPECT_EQ(picture.width, kOutputSize);
    EXPECT_EQ(picture.data[0], 255);
    EXPECT_EQ(picture.data[2], 0);
}

using GLRendererBadInput = GLRendererTest;

TEST_F(GLRendererBadInput, ABrokenShaderFailsWithTheDriversMessageAndTheFileName)
{
    const std::string source = R"(
variant {
    vertex { source %{ %out.position% = vec4(vPosition, 1.0); %} }
    pixel { source %{ %out.color% = no_such_variable; %} }
})";
    auto shader = renderer->LoadShaderFromSource("@test/broken.isl", source, false);
    ASSERT_NE(shader, nullptr);
    EXPECT_TRUE(shader->IsFailed());
    const auto errors = lines_starting(log, "error: Cannot compile the Pixel stage of shader '@test/broken.isl': ");
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_NE(errors[0].find("no_such_variable"), std::string::npos) << errors[0];
    EXPECT_FALSE(renderer->SetShader(shader));

    // Stages that compile but do not link: one uniform with two types.
    const std::string unlinked = R"(
variant {
    vertex { global %{ uniform float u_x; %} source %{ %out.position% = vec4(vPosition, u_x); %} }
    pixel { global %{ uniform vec4 u_x; %} source %{ %out.color% = u_x; %} }
})";
    shader = renderer->LoadShaderFromSource("@test/unlinked.isl", unlinked, false);
    EXPECT_TRUE(shader->IsFailed());
    EXPECT_EQ(lines_starting(log, "error: Cannot link shader '@test/unlinked.isl': ").size(), 1u);

    // An unknown placeholder fails translation: the shader stays pending and is never drawn with.
    shader = renderer->LoadShaderFromSource("@test/placeholder.isl",
                                            "variant { pixel { source %{ %out.nothing% = vec4(1); %} } }", false);
    EXPECT_FALSE(shader->IsReadyOrFailed());
    EXPECT_TRUE(log.Contains(
        "error",
        "Cannot translate shader '@test/placeholder.isl': unknown placeholder '%out.nothing%' in the Pixel stage"));
    EXPECT_FALSE(renderer->SetShader(shader));
}

TEST_F(GLRendererBadInput, ATextureFileThatIsNotAPictureFails)
{
    singletons.filesystem().Mount(std::make_shared<MemoryFileDriver>(), "@test/");
    const std::string text = "this is not a picture";
    singletons.filesystem().DataToFile("@test/not_a_picture.png", text.data(), text.size());
    auto texture = renderer->LoadTexture("@test/not_a_picture.png", true);
    ASSERT_NE(texture, nullptr);
    EXPECT_TRUE(texture->IsFailed());
    EXPECT_TRUE(log.Contains("warn", "Cannot load texture '@test/not_a_picture.png'"));

    // A real one, for contrast, arrives ready with its size.
    std::vector<std::uint8_t> png;
    const std::uint8_t pixels[2 * 2 * 4] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 9, 9, 9, 255};
    stbi_write_png_to_func(
        [](void* context, void* data, int size) {
            auto* out = static_cast<std::vector<std::uint8_t>*>(context);
            out->insert(out->end(), static_cast<std::uint8_t*>(data), static_cast<std::uint8_t*>(data) + size);
        },
        &png, 2, 2, 4, pixels, 8);
    singletons.filesystem().DataToFile("@test/real.png", png.data(), png.size());
    auto real = renderer->LoadTexture("@test/real.png", true);
    ASSERT_TRUE(real->IsReady());
    EXPECT_EQ(real->GetWidth(), 2);
    Picture picture;
    ASSERT_TRUE(renderer->CaptureTexture(*real, picture));
    EXPECT_EQ(std::vector<std::uint8_t>(pixels, pixels + 16), picture.data);
    EXPECT_FALSE(renderer->LoadNativeTexture(*real, "@test/real.dds"));
}

TEST_F(GLRendererBadInput, ARenderTargetWithoutAttachmentIsIncompleteAndHarmless)
{
    auto target = renderer->NewRenderTarget();
    renderer->CreateRenderTarget(*target);
    renderer->SetRenderTarget(target);
    EXPECT_FALSE(renderer->CheckRenderTarget());
    EXPECT_EQ(lines_starting(log, "warn: Render target is incomplete").size(), 1u);
    renderer->Clear(Color{1, 0, 0, 1}, 1.0f, kClearAll);
    ASSERT_TRUE(renderer->SetShader(renderer->GetDefaultShader()));
    renderer->DrawQuad(Rect{0, 0, 1, 1}, Rect{0, 0, 1, 1});

    // Back on the output everything works again.
    renderer->ResetRenderTarget();
    renderer->Clear(Color{0, 0, 1, 1}, 1.0f, kClearAll);
    Picture picture = Present();
    EXPECT_EQ(picture.data[2], 255);
    // Dropping the target releases its framebuffer through the render-thread deleter.
    target.reset();
}

TEST_F(GLRendererBadInput, DrawsWithoutSourcesOrShaderDoNothing)
{
    renderer->Clear(Color{0, 0, 0, 1}, 1.0f, kClearAll);
    renderer->DrawBuffers(kIndex16, 3, kTriangles, 0);  // no shader, no sources
    ASSERT_TRUE(renderer->SetShader(renderer->GetDefaultShader()));
    renderer->DrawBuffers(kIndex16, 3, kTriangles, 0);  // no sources
    renderer->DrawBuffersInstanced(nullptr, 4, kIndex16, 3, kTriangles);
    EXPECT_EQ(renderer->GetShaderVariable("no_such_uniform"), ShaderVariable{});
    renderer->SetShaderFloat(ShaderVariable{}, nullptr, 4);
    Picture picture = Present();
    EXPECT_EQ(picture.data[0], 0);
}

}  // namespace
}  // namespace kesta::testing
