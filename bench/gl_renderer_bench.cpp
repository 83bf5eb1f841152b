// The OpenGL back end on Mesa's software rasteriser, headless: the CPU cost our layers add to a
// draw, against a hand-written GL loop doing the same work (10,000 single-triangle draws a frame,
// each one buffer update and one indexed draw, same state), measured through the RenderSystem's
// immediate helpers and through the Renderer contract alone; and the time of a VR-sized frame of
// two 1512 x 1680 clears and compositions.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "engine/render_system/render_system.h"
#include "engine/renderer/renderer.h"
#include "engine/vertex_layout.h"
#include "plugins/engine_singletons.h"
#include "plugins/gl/gl_renderer_factory.h"
#include "plugins/gl/testing/raw_gl_triangle_loop.h"

namespace kesta {
namespace {

constexpr int kTrianglesPerFrame = 10000;

// The renderer opened on this thread: no worker runs, so render-worker calls run here.
struct OpenRenderer {
    explicit OpenRenderer(int width, int height)
    {
        renderer = MakeGLRenderer(width, height);
        renderer->Open();
    }
    ~OpenRenderer() { renderer->Close(); }

    EngineSingletons singletons;
    std::shared_ptr<Renderer> renderer;
};

// Small triangles spread over the output, one colour each: 48 bytes a triangle.
std::vector<std::uint8_t> make_triangles()
{
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(kTrianglesPerFrame) * 48);
    for (int i = 0; i < kTrianglesPerFrame; ++i) {
        const float x = -1.0f + 2.0f * static_cast<float>(i % 100) / 100.0f;
        const float y = -1.0f + 2.0f * static_cast<float>(i / 100) / 100.0f;
        const float corners[3][2] = {{x, y}, {x, y + 0.02f}, {x + 0.02f, y}};
        for (int v = 0; v < 3; ++v) {
            std::uint8_t* vertex = bytes.data() + i * 48 + v * 16;
            const float position[3] = {corners[v][0], corners[v][1], 0.0f};
            std::memcpy(vertex, position, sizeof position);
            const std::uint8_t colour[4] = {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i >> 8), 128, 255};
            std::memcpy(vertex + 12, colour, sizeof colour);
        }
    }
    return bytes;
}

void BM_RawGLTriangles(benchmark::State& state)
{
    OpenRenderer open(256, 256);
    if (!open.renderer->IsOpen()) {
        state.SkipWithError("no OpenGL context");
        return;
    }
    open.renderer->SetFaceCulling(false);
    const auto triangles = make_triangles();
    testing::RawGLTriangleLoop loop;
    for (auto _ : state) {
        loop.Begin();
        for (int i = 0; i < kTrianglesPerFrame; ++i)
            loop.Draw(triangles.data() + i * 48);
        open.renderer->FlushRenderer();
    }
    state.SetItemsProcessed(state.iterations() * kTrianglesPerFrame);
}

// The same triangles through the RenderSystem's immediate helper, as engine code draws them.
void BM_RenderSystemImmediateTriangles(benchmark::State& state)
{
    OpenRenderer open(256, 256);
    if (!open.renderer->IsOpen()) {
        state.SkipWithError("no OpenGL context");
        return;
    }
    RenderSystem render_system;
    if (!render_system.Initialize(open.renderer, false)) {
        state.SkipWithError("the render system did not initialise");
        return;
    }
    open.renderer->SetFaceCulling(false);
    const auto triangles = make_triangles();
    std::vector<Vector3> positions(static_cast<std::size_t>(kTrianglesPerFrame) * 3);
    std::vector<Color> colors(positions.size());
    for (std::size_t v = 0; v < positions.size(); ++v) {
        float position[3];
        std::memcpy(position, triangles.data() + v * 16, sizeof position);
        positions[v] = Vector3{position[0], position[1], position[2]};
        const std::uint8_t* colour = triangles.data() + v * 16 + 12;
        colors[v] = Color{colour[0] / 255.0f, colour[1] / 255.0f, colour[2] / 255.0f, colour[3] / 255.0f};
    }
    for (auto _ : state) {
        for (int i = 0; i < kTrianglesPerFrame; ++i) {
            ImmediateVertices vertices;
            vertices.positions = positions.data() + i * 3;
            vertices.colors = colors.data() + i * 3;
            vertices.vertex_count = 3;
            render_system.DrawTriangle(vertices, Color{1, 1, 1, 1});
        }
        open.renderer->FlushRenderer();
    }
    render_system.Free();
    state.SetItemsProcessed(state.iterations() * kTrianglesPerFrame);
}

// The same work through the Renderer contract: bind, update, set the sources and draw, as an
// immediate draw helper does for each triangle.
void BM_RendererContractTriangles(benchmark::State& state)
{
    OpenRenderer open(256, 256);
    Renderer& renderer = *open.renderer;
    if (!renderer.IsOpen()) {
        state.SkipWithError("no OpenGL context");
        return;
    }
    renderer.SetFaceCulling(false);
    const auto triangles = make_triangles();
    const auto shader = renderer.LoadShader("@core/shaders/single_color.isl", false);
    VertexLayout layout;
    layout.AddAttribute(0, 3, VertexLayout::kFloat, false);
    layout.AddAttribute(6, 4, VertexLayout::kUnsignedByte, true);
    layout.End();
    auto vertices = renderer.NewBuffer();
    renderer.CreateBuffer(*vertices, nullptr, 48, kVertexBuffer, kDynamicBuffer);
    const std::uint16_t indices[3] = {0, 1, 2};
    auto index_buffer = renderer.NewBuffer();
    renderer.CreateBuffer(*index_buffer, indices, sizeof indices, kIndexBuffer, kStaticBuffer);
    for (auto _ : state) {
        for (int i = 0; i < kTrianglesPerFrame; ++i) {
            renderer.SetShader(shader);
            renderer.UpdateBuffer(*vertices, triangles.data() + i * 48, 0, 48);
            renderer.SetVertexSource(vertices, layout);
            renderer.SetIndexSource(index_buffer);
            renderer.DrawBuffers(kIndex16, 3, kTriangles, 0);
        }
        renderer.FlushRenderer();
    }
    renderer.FreeBuffer(*vertices);
    renderer.FreeBuffer(*index_buffer);
    state.SetItemsProcessed(state.iterations() * kTrianglesPerFrame);
}

// A VR frame's GPU work without the scene: each eye's target cleared, then a full-screen picture
// composed into it, and the frame finished.
void BM_TwoEyeClearAndComposition(benchmark::State& state)
{
    constexpr int kWidth = 1512, kHeight = 1680;
    OpenRenderer open(64, 64);
    Renderer& renderer = *open.renderer;
    if (!renderer.IsOpen()) {
        state.SkipWithError("no OpenGL context");
        return;
    }
    std::vector<std::uint8_t> pixels(256 * 256 * 4, 200);
    auto picture = renderer.NewTexture("composed");
    renderer.CreateTexture(*picture, pixels.data(), static_cast<std::uint32_t>(pixels.size()), 256, 256,
                           kTextureFormatColor8, 0, kTextureUsageSampled, false, 1);
    picture->SetReady();
    std::shared_ptr<RenderTarget> eyes[2];
    std::shared_ptr<Texture> eye_textures[2];
    for (int eye = 0; eye < 2; ++eye) {
        eye_textures[eye] = renderer.NewTexture("eye");
        renderer.CreateTexture(*eye_textures[eye], nullptr, 0, kWidth, kHeight, kTextureFormatColor8, 0,
                               kTextureUsageColorTarget, false, 1);
        auto depth = renderer.NewTexture("eye depth");
        renderer.CreateTexture(*depth, nullptr, 0, kWidth, kHeight, kTextureFormatDepth, 0, kTextureUsageSampled, false,
                               1);
        eyes[eye] = renderer.NewRenderTarget();
        renderer.CreateRenderTarget(*eyes[eye]);
        renderer.SetRenderTargetColorTexture(*eyes[eye], eye_textures[eye]);
        renderer.SetRenderTargetDepthTexture(*eyes[eye], depth);
    }
    renderer.SetFaceCulling(false);
    for (auto _ : state) {
        for (auto& eye : eyes) {
            renderer.SetRenderTarget(eye);
            renderer.Clear(Color{0.1f, 0.2f, 0.3f, 1.0f}, 1.0f, kClearAll);
            renderer.SetDepthTest(false);
            renderer.SetBlend(true);
            renderer.SetBlendFunc(kBlendSourceAlpha, kBlendOneMinusSourceAlpha);
            renderer.Set2DMatrices(false);
            renderer.SetShader(renderer.GetDefaultShader());
            renderer.SetShaderTexture(renderer.GetShaderVariable("u_tex"), picture);
            renderer.DrawQuad(Rect{0, 0, kWidth, kHeight}, Rect{0, 0, 1, 1});
            renderer.SetBlend(false);
            renderer.SetDepthTest(true);
        }
        renderer.ResetRenderTarget();
        renderer.FlushRenderer();
    }
}

BENCHMARK(BM_RawGLTriangles)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);
BENCHMARK(BM_RenderSystemImmediateTriangles)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);
BENCHMARK(BM_RendererContractTriangles)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);
BENCHMARK(BM_TwoEyeClearAndComposition)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

}  // namespace
}  // namespace kesta

BENCHMARK_MAIN();
