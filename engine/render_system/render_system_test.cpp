#include "engine/render_system/render_system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "engine/render_system/testing/fake_renderable.h"
#include "engine/render_system/testing/render_system_test_fixture.h"
#include "foundation/assert/assertion.h"
#include "foundation/math/projection.h"

namespace kesta {
namespace {

using testing::FakeRenderable;
using testing::RenderSystemTest;
using Strings = std::vector<std::string>;

// The calls from the first one named `first` on.
Strings From(const Strings& calls, const std::string& first)
{
    const auto start = std::find(calls.begin(), calls.end(), first);
    return Strings(start, calls.end());
}

// The shader files loaded, in order, from the calls.
Strings LoadedShaders(const Strings& calls)
{
    Strings names;
    for (const std::string& call : calls)
        if (call.rfind("NewShader(", 0) == 0)
            names.push_back(call.substr(10, call.size() - 11));
    return names;
}

const std::vector<std::uint8_t>& BytesOf(const std::shared_ptr<GpuBuffer>& buffer)
{
    return static_cast<RecordingBuffer&>(*buffer).bytes;
}

std::vector<std::uint16_t> IndicesOf(const std::shared_ptr<GpuBuffer>& buffer, std::size_t count)
{
    std::vector<std::uint16_t> indices(count);
    std::memcpy(indices.data(), BytesOf(buffer).data(), count * 2);
    return indices;
}

const Strings k2DShaders = {"@core/shaders/single_texture_2d.isl", "@core/shaders/single_texture_color.isl",
                            "@core/shaders/single_texture.isl", "@core/shaders/single_color.isl",
                            "@core/shaders/simple.isl"};
const Strings k3DShaders = {"@core/shaders/ambient.isl",
                            "@core/shaders/ds_spotlight.isl",
                            "@core/shaders/ds_spotlight_shadow.isl",
                            "@core/shaders/ds_pointlight.isl",
                            "@core/shaders/ds_pointlight_shadow.isl",
                            "@core/shaders/ds_linearlight.isl",
                            "@core/shaders/ds_linearlight_shadow.isl",
                            "@core/shaders/ds_fog.isl"};
const Strings kBufferCalls = {
    "NewBuffer()", "CreateBuffer(12, index, static)",      "NewBuffer()", "CreateBuffer(1024, vertex, dynamic)",
    "NewBuffer()", "CreateBuffer(72, index, static)",      "NewBuffer()", "CreateBuffer(4096, index, dynamic)",
    "NewBuffer()", "CreateBuffer(16384, vertex, dynamic)", "NewBuffer()"};
const std::string kNoMsaa = "warn: Insufficient RBO support, falling back to RTT: No hardware MSAA";

Strings Joined(std::initializer_list<Strings> parts)
{
    Strings all;
    for (const Strings& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// --- construction and initialisation ---

class RenderSystemInitialize : public ::testing::Test {
protected:
    void SetUp() override
    {
        renderer.Open();
        renderer.ClearCalls();
        env.log.Clear();
    }
    void TearDown() override { render_system.Free(); }

    testing::RendererTestEnvironment env;
    RecordingRenderer& renderer = *env.renderer;
    RenderSystem render_system;
};

TEST_F(RenderSystemInitialize, ConstructorPublishesDefaults)
{
    EXPECT_EQ(g_render_system, &render_system);
    const VertexLayout& layout = render_system.GetDefaultVertexLayout();
    EXPECT_EQ(layout.GetStride(), 20);
    const auto& attributes = layout.GetAttributes();
    // Position: 3 floats; colour 0: 4 normalised bytes; UV 0: 2 normalised shorts.
    EXPECT_EQ(attributes[0], (VertexLayout::Attribute{0, 3 | (VertexLayout::kFloat << 4)}));
    EXPECT_EQ(attributes[1], (VertexLayout::Attribute{6, 4 | (VertexLayout::kUnsignedByte << 4) | 0x80}));
    EXPECT_EQ(attributes[2], (VertexLayout::Attribute{2, 2 | (VertexLayout::kUnsignedShort << 4) | 0x80}));
    EXPECT_EQ(attributes[3].semantic, VertexLayout::kEnd);
    EXPECT_EQ(render_system.GetFxConfig(), 0x112u);
    EXPECT_EQ(render_system.GetFxScale(), 2);
    EXPECT_EQ(render_system.GetMultisampleCount(), 1);
    EXPECT_EQ(render_system.GetFeatures(), RenderSystem::kFeatureShadowMapping);
    EXPECT_EQ(render_system.GetShadowMapSize(), 1024);
    EXPECT_EQ(render_system.GetClock(), 0);
    EXPECT_FALSE(render_system.IsReady());
    EXPECT_TRUE(render_system.environment.clear_color);
    EXPECT_TRUE(render_system.environment.clear_depth);
    EXPECT_TRUE(render_system.environment.assume_continuous_normals);
    EXPECT_EQ(render_system.GetDefaultFont().path, "@core/fonts/default.ttf");
    EXPECT_EQ(render_system.GetDefaultFont().size, 12);
    EXPECT_EQ(render_system.GetDefaultFont().page_width, 512);
    EXPECT_EQ(render_system.GetDefaultFont().page_height, 512);
}

struct AssertionRecord {
    std::string function, condition;
    int count = 0;
};
AssertionRecord g_assertion;

TEST_F(RenderSystemInitialize, SecondInstanceAsserts)
{
    g_assertion = {};
    g_assertion_handler = [](const char*, int, const char* function, const char* condition, const char*) {
        g_assertion.function = function;
        g_assertion.condition = condition;
        ++g_assertion.count;
    };
    {
        RenderSystem second;
        EXPECT_EQ(g_assertion.count, 1);
        EXPECT_EQ(g_assertion.function, "kesta::RenderSystem::RenderSystem");
        EXPECT_EQ(g_assertion.condition, "!g_render_system");
    }
    g_assertion_handler = nullptr;
    g_render_system = &render_system;
}

TEST_F(RenderSystemInitialize, WithoutRendererRefuses)
{
    EXPECT_FALSE(render_system.Initialize(nullptr, true));
    EXPECT_FALSE(render_system.IsReady());
    EXPECT_TRUE(renderer.Calls().empty());
    // Frame steps without a renderer do nothing and do not crash.
    std::vector<std::shared_ptr<Renderable>> none;
    std::vector<std::shared_ptr<Component>> no_effects;
    render_system.BeginDrawFrame();
    render_system.DrawRenderables(none);
    render_system.ResolveMultisample();
    render_system.ApplyPostProcesses(no_effects);
    render_system.EndDrawFrame();
    render_system.DrawTriangle({}, Color{1, 1, 1, 1});
    EXPECT_TRUE(renderer.Calls().empty());
}

TEST_F(RenderSystemInitialize, Without3DResourcesOnlyThe2DShadersTwoTargetsAndTheBuffers)
{
    ASSERT_TRUE(render_system.Initialize(env.renderer, false));
    EXPECT_TRUE(render_system.IsReady());
    const Strings calls = renderer.Calls();
    EXPECT_EQ(LoadedShaders(calls), k2DShaders);
    EXPECT_EQ(From(calls, "NewRenderTarget()"),
              Joined({{"NewRenderTarget()", "CreateRenderTarget(0)", "NewRenderTarget()", "CreateRenderTarget(0)"},
                      kBufferCalls}));
    for (int slot = 0; slot < kCoreShaderCount; ++slot)
        EXPECT_EQ(render_system.GetCoreShader(static_cast<CoreShader>(slot)) != nullptr, slot < kCore2DShaderCount)
            << slot;
    EXPECT_FALSE(render_system.GetOutputTarget());
    EXPECT_FALSE(render_system.GetShadowTarget());
    EXPECT_EQ(env.NonDebugLines(), Strings{kNoMsaa});
}

TEST_F(RenderSystemInitialize, With3DResourcesReportsMissingShadersInLoadOrderAndMakesTheFrame)
{
    ASSERT_TRUE(render_system.Initialize(env.renderer, true));
    const Strings calls = renderer.Calls();
    EXPECT_EQ(LoadedShaders(calls), k2DShaders);
    const Strings expected = Joined({{"NewRenderTarget()",
                                      "CreateRenderTarget(0)",  // compose
                                      "NewRenderTarget()",
                                      "CreateRenderTarget(0)",  // feedback
                                      "NewRenderTarget()",
                                      "CreateRenderTarget(0)",  // main
                                      "NewRenderTarget()",
                                      "CreateRenderTarget(0)",  // post-process
                                      "NewRenderTarget()",
                                      "CreateRenderTarget(0)",  // shadow
                                      "NewShadowMap(1024, 1024, shadow_map)",
                                      "NewTexture(t_compose0)",
                                      "CreateTexture(t_compose0, 0, 1280, 720, 0, 0, 3, true, 0)",
                                      "NewTexture(t_compose1)",
                                      "CreateTexture(t_compose1, 0, 1280, 720, 0, 0, 3, true, 0)",
                                      "NewTexture(t_depth)",
                                      "CreateTexture(t_depth, 0, 1280, 720, 4, 0, 3, true, 0)",
                                      "NewRenderTarget()",
                                      "CreateRenderTarget(0)",  // read
                                      "NewTexture(t_color_read)",
                                      "CreateTexture(t_color_read, 0, 1280, 720, 0, 0, 3, true, 0)",
                                      "NewTexture(t_depth_read)",
                                      "CreateTexture(t_depth_read, 0, 1280, 720, 4, 0, 3, true, 0)"},
                                     kBufferCalls});
    EXPECT_EQ(From(calls, "NewRenderTarget()"), expected);

    Strings lines;
    for (const std::string& path : k3DShaders)
        lines.push_back("error: Shader file not found '" + path + "'");
    lines.insert(lines.end(), {"Create shadow maps (1024x1024)", "SetRenderTechnique(): 1280x720:0", kNoMsaa});
    Strings actual = env.NonDebugLines();
    for (std::string& line : actual)
        if (line.rfind(": ", 0) == 0)
            line.erase(0, 2);
    EXPECT_EQ(actual, lines);

    // Without hardware multisampling forward draws straight into the compose target.
    EXPECT_EQ(render_system.GetDrawTarget(), render_system.GetComposeTarget());
    EXPECT_EQ(render_system.GetComposeTarget()->color_textures[0]->GetName(), "t_compose0");
    EXPECT_EQ(render_system.GetComposeTarget()->depth_texture->GetName(), "t_depth");
    EXPECT_EQ(render_system.GetShadowTarget()->depth_texture, render_system.GetShadowMap());
    EXPECT_EQ(render_system.GetCurrentOutputTexture()->GetName(), "t_compose0");
}

TEST_F(RenderSystemInitialize, BuffersHoldTheQuadAndCubeIndices)
{
    ASSERT_TRUE(render_system.Initialize(env.renderer, false));
    EXPECT_EQ(IndicesOf(render_system.GetQuadIndexBuffer(), 6), (std::vector<std::uint16_t>{2, 1, 0, 3, 2, 0}));
    EXPECT_EQ(IndicesOf(render_system.GetCubeIndexBuffer(), 36),
              (std::vector<std::uint16_t>{0, 1, 2, 0, 2, 3, 1, 5, 6, 1, 6, 2, 5, 4, 7, 5, 7, 6,
                                          4, 0, 3, 4, 3, 7, 4, 5, 1, 4, 1, 0, 3, 2, 6, 3, 6, 7}));
    EXPECT_TRUE(BytesOf(render_system.GetInstanceBuffer()).empty());
}

TEST_F(RenderSystemInitialize, CheckPassWarnsOnlyAboutWhatIsMissing)
{
    renderer.capabilities[kCapabilityHardwareMultisample] = true;
    renderer.Close();
    renderer.Open();
    env.log.Clear();
    render_system.SetFeatures(0);
    ASSERT_TRUE(render_system.Initialize(env.renderer, false));
    EXPECT_EQ(env.NonDebugLines(), Strings{"warn: Shadow-mapping support disabled"});
}

TEST_F(RenderSystemInitialize, WithoutShadowMappingNoShadowTarget)
{
    render_system.SetFeatures(0);
    renderer.ClearCalls();
    ASSERT_TRUE(render_system.Initialize(env.renderer, true));
    EXPECT_FALSE(render_system.GetShadowTarget());
    EXPECT_FALSE(render_system.GetShadowMap());
    const Strings calls = renderer.Calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "NewRenderTarget()"), 5);  // and the read target
}

// --- the frame ---

class RenderSystemFrame : public RenderSystemTest {
protected:
    void Frame()
    {
        render_system.BeginDrawFrame();
        render_system.DrawRenderables(renderables);
        render_system.ResolveMultisample();
        render_system.ApplyPostProcesses(post_processes);
        render_system.EndDrawFrame();
    }
    // Restarts with hardware multisampling and `samples` samples.
    void RestartMultisampled(int samples)
    {
        render_system.Free();
        renderer.capabilities[kCapabilityHardwareMultisample] = true;
        renderer.Close();
        render_system.SetMultisampleCount(samples);
        Start();
    }

    std::vector<std::shared_ptr<Renderable>> renderables;
    std::vector<std::shared_ptr<Component>> post_processes;
};

TEST_F(RenderSystemFrame, BeginInForwardFollowsTheVotesAndClearFlags)
{
    render_system.environment.clear_color_value = Color{0.25f, 0.5f, 0.75f, 1};
    bool bind_vote = false, clear_vote = false;
    Strings fired;
    render_system.frame_clear_query_signal.Connect([&](bool& bound) {
        fired.push_back("clear-query");
        bound = bound || bind_vote;
    });
    // A second slot that does not vote leaves the first one's vote standing.
    render_system.frame_clear_query_signal.Connect([](bool&) {});
    render_system.frame_draw_query_signal.Connect([&](bool& cleared) {
        fired.push_back("draw-query");
        cleared = cleared || clear_vote;
    });
    render_system.frame_cleared_signal.Connect([&] { fired.push_back("cleared"); });

    for (int votes = 0; votes < 4; ++votes) {
        for (int flags = 0; flags < 4; ++flags) {
            SCOPED_TRACE("votes " + std::to_string(votes) + " flags " + std::to_string(flags));
            bind_vote = votes & 1;
            clear_vote = votes & 2;
            render_system.environment.clear_color = flags & 1;
            render_system.environment.clear_depth = flags & 2;
            renderer.ClearCalls();
            fired.clear();
            render_system.BeginDrawFrame();
            Strings expected;
            if (!bind_vote)
                expected.push_back("SetRenderTarget(target)");
            if (!clear_vote && flags)
                expected.push_back("Clear(0.25,0.5,0.75,1, 1, " + std::to_string(flags) + ")");
            EXPECT_EQ(renderer.Calls(), expected);
            EXPECT_EQ(fired, (Strings{"clear-query", "draw-query", "cleared"}));
        }
    }
}

TEST_F(RenderSystemFrame, BeginInDeferredClearsNothingAndAsksNoOne)
{
    render_system.SetRenderTechnique(kTechniqueDeferred);
    renderer.ClearCalls();
    int starts = 0, queries = 0;
    render_system.frame_start_signal.Connect([&] { ++starts; });
    render_system.frame_clear_query_signal.Connect([&](bool&) { ++queries; });
    render_system.frame_draw_query_signal.Connect([&](bool&) { ++queries; });
    render_system.frame_cleared_signal.Connect([&] { ++queries; });
    render_system.BeginDrawFrame();
    EXPECT_TRUE(renderer.Calls().empty());
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(queries, 0);
}

TEST_F(RenderSystemFrame, EndWithoutOutputTargetComposesIntoTheWindow)
{
    renderer.viewport = Rect{0, 0, 640, 360};
    bool completed_before_compose = false;
    render_system.frame_complete_signal.Connect([&] {
        const Strings calls = renderer.CallNames();
        completed_before_compose = calls.back() == "SetFaceCulling";
    });
    render_system.EndDrawFrame();
    EXPECT_TRUE(completed_before_compose);
    EXPECT_EQ(renderer.Calls(),
              (Strings{"SetRenderTarget(target)", "SetBlend(false)", "SetFaceCulling(false)", "ResetRenderTarget()",
                       "SetDepthTest(false)", "SetDepthWrite(false)", "SetShader(@core/shaders/single_texture_2d.isl)",
                       "GetShaderVariable(u_tex)", "SetShaderTexture(0, t_compose0)", "UpdateBuffer(0, 80)",
                       "SetIndexSource(buffer)", "SetVertexSource(buffer, 20)",
                       "SetShaderSystemBuiltins(0, 1280x720, 2, true)", "SetShaderTransformationBuiltins(0)",
                       "DrawBuffers(0, 6, 1, 0)", "SetDepthWrite(true)", "SetDepthTest(true)"}));
    // The quad samples the viewport's share of the internal resolution: a half in each axis.
    const auto& bytes = BytesOf(render_system.GetQuadVertexBuffer());
    std::uint16_t uv[2];
    std::memcpy(uv, bytes.data() + 2 * 20 + 16, 4);  // the top-right corner
    EXPECT_EQ(uv[0], 32767);
    EXPECT_EQ(uv[1], 32767);
    EXPECT_EQ(renderer.GetCurrentRenderTarget(), nullptr);
    EXPECT_EQ(render_system.GetComposeTarget()->color_textures[0], render_system.GetCurrentOutputTexture());
}

TEST_F(RenderSystemFrame, TargetBoundBeforeTheFrameReceivesIt)
{
    renderer.viewport = Rect{0, 0, 100, 50};
    auto eye_target = renderer.NewRenderTarget();
    renderer.SetRenderTarget(eye_target);
    render_system.BeginDrawFrame();
    // The frame drew into its own target meanwhile.
    EXPECT_NE(renderer.GetCurrentRenderTarget(), eye_target);
    renderer.ClearCalls();
    render_system.EndDrawFrame();
    EXPECT_EQ(renderer.Calls(), (Strings{"SetRenderTarget(target)", "SetBlend(false)", "SetFaceCulling(false)",
                                         "BlitRenderTarget(target, target, 0,0,100,50, 0,0,100,50, true, true)",
                                         "SetRenderTarget(target)", "SetDepthTest(false)", "SetDepthWrite(false)",
                                         "SetDepthWrite(true)", "SetDepthTest(true)"}));
    EXPECT_EQ(renderer.GetCurrentRenderTarget(), eye_target);

    // The next frame of the window, with no target bound, goes to the window again.
    renderer.ResetRenderTarget();
    render_system.BeginDrawFrame();
    renderer.ClearCalls();
    render_system.EndDrawFrame();
    const Strings names = renderer.CallNames();
    EXPECT_EQ(std::count(names.begin(), names.end(), "BlitRenderTarget"), 0);
    EXPECT_EQ(std::count(names.begin(), names.end(), "DrawBuffers"), 1);
}

TEST_F(RenderSystemFrame, FullscreenQuadSpansClipSpaceWithTheUvScale)
{
    render_system.DrawFullscreenQuad(Vector2{1, 0.5f});
    EXPECT_EQ(renderer.Calls(), (Strings{"UpdateBuffer(0, 80)", "SetIndexSource(buffer)", "SetVertexSource(buffer, 20)",
                                         "SetShaderSystemBuiltins(0, 1280x720, 2, true)",
                                         "SetShaderTransformationBuiltins(0)", "DrawBuffers(0, 6, 1, 0)"}));
    EXPECT_EQ(renderer.GetViewMatrix(), Matrix4::Identity());
    EXPECT_EQ(renderer.GetProjectionMatrix(), Matrix44::Identity());
    const auto& bytes = BytesOf(render_system.GetQuadVertexBuffer());
    float corner[3];
    std::uint16_t uv[2];
    std::memcpy(corner, bytes.data() + 2 * 20, sizeof corner);  // the third corner: top right
    std::memcpy(uv, bytes.data() + 2 * 20 + 16, sizeof uv);
    EXPECT_EQ(std::vector<float>(corner, corner + 3), (std::vector<float>{1, 1, 0}));
    EXPECT_EQ(uv[0], 65535);
    EXPECT_EQ(uv[1], 32767);
    std::memcpy(corner, bytes.data(), sizeof corner);
    std::memcpy(uv, bytes.data() + 16, sizeof uv);
    EXPECT_EQ(std::vector<float>(corner, corner + 3), (std::vector<float>{-1, -1, 0}));
    EXPECT_EQ(uv[0], 0);
    EXPECT_EQ(uv[1], 0);
}

TEST_F(RenderSystemFrame, EndSkipsTheQuadWhenTheComposeShaderIsNotReady)
{
    render_system.Free();
    renderer.Close();
    renderer.translate_result = false;
    Start();
    render_system.EndDrawFrame();
    const Strings names = renderer.CallNames();
    EXPECT_EQ(std::count(names.begin(), names.end(), "DrawBuffers"), 0);
    EXPECT_EQ(names.back(), "SetDepthTest");
}

TEST_F(RenderSystemFrame, ResolveWithOneSampleDoesNothing)
{
    render_system.ResolveMultisample();
    EXPECT_TRUE(renderer.Calls().empty());
    // Hardware multisampling with a count of 1 has nothing to resolve either.
    RestartMultisampled(1);
    render_system.ResolveMultisample();
    EXPECT_TRUE(renderer.Calls().empty());
}

TEST_F(RenderSystemFrame, ResolveWithFourSamplesBlitsTheWholeFrame)
{
    RestartMultisampled(4);
    EXPECT_EQ(render_system.GetDrawTarget(), render_system.GetOutputTarget());
    render_system.ResolveMultisample();
    EXPECT_EQ(renderer.Calls(), Strings{"BlitRenderTarget(target, target, 0,0,1280,720, 0,0,1280,720, true, true)"});
    EXPECT_EQ(render_system.GetComposeTarget()->color_textures[0], render_system.GetCurrentOutputTexture());
    // Deferred has no multisampling: the request is dropped.
    render_system.SetRenderTechnique(kTechniqueDeferred);
    renderer.ClearCalls();
    render_system.ResolveMultisample();
    EXPECT_TRUE(renderer.Calls().empty());
    EXPECT_EQ(render_system.GetMultisampleCount(), 0);
}

TEST_F(RenderSystemFrame, FrameWithoutRenderablesClearsComposesAndEnds)
{
    Frame();
    const Strings calls = renderer.Calls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(calls[0], "SetRenderTarget(target)");
    EXPECT_EQ(calls[1], "Clear(0,0,0,0, 1, 3)");
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "DrawBuffers(0, 6, 1, 0)"), 1);
    EXPECT_EQ(calls.back(), "SetDepthTest(true)");
    EXPECT_TRUE(render_system.primitive_lists.Empty());
}

TEST_F(RenderSystemFrame, Without3DResourcesAFrameShowsNothing)
{
    render_system.Free();
    renderer.Close();
    Start(false);
    Frame();
    const Strings names = renderer.CallNames();
    EXPECT_EQ(std::count(names.begin(), names.end(), "DrawBuffers"), 0);
    EXPECT_EQ(std::count(names.begin(), names.end(), "SetShader"), 0);
    EXPECT_EQ(names.back(), "SetDepthTest");
}

TEST_F(RenderSystemFrame, ClockAdvancesSixteenMillisecondsAFrame)
{
    renderer.record_calls = false;
    for (int frame = 0; frame < 125; ++frame)
        Frame();
    EXPECT_EQ(render_system.GetClock(), 2000000000);
    EXPECT_EQ(render_system.GetClockSeconds(), 2.0f);
}

TEST_F(RenderSystemFrame, SignalsFireInFrameOrder)
{
    Strings fired;
    render_system.frame_start_signal.Connect([&] { fired.push_back("start"); });
    render_system.frame_clear_query_signal.Connect([&](bool&) { fired.push_back("clear-query"); });
    render_system.frame_draw_query_signal.Connect([&](bool&) { fired.push_back("draw-query"); });
    render_system.frame_cleared_signal.Connect([&] { fired.push_back("cleared"); });
    render_system.renderables_drawn_signal.Connect([&] { fired.push_back("drawn"); });
    render_system.post_process_signal.Connect(
        [&](RenderSystem& rs, PrimitiveLists& lists, const std::shared_ptr<RenderTarget>& target,
            const std::shared_ptr<Texture>& input, const std::shared_ptr<Texture>& output, int&) {
            EXPECT_EQ(&rs, &render_system);
            EXPECT_EQ(&lists, &render_system.primitive_lists);
            EXPECT_EQ(target, render_system.GetPostProcessTarget());
            EXPECT_EQ(input->GetName(), "t_compose0");
            EXPECT_EQ(output->GetName(), "t_compose1");
            fired.push_back("post-process");
        });
    render_system.frame_complete_signal.Connect([&] { fired.push_back("complete"); });
    render_system.end_render_pass_signal.Connect(
        [&](std::uint8_t list) { fired.push_back("end-pass " + std::to_string(list)); });
    Frame();
    render_system.EmitEndRenderPassSignal(kRenderListTransparent);
    EXPECT_EQ(fired, (Strings{"start", "clear-query", "draw-query", "cleared", "drawn", "post-process", "complete",
                              "end-pass 1"}));
}

TEST_F(RenderSystemFrame, PostProcessSlotsSwapTheComposeTextures)
{
    int drawing_slots = 1;
    for (int i = 0; i < 3; ++i)
        render_system.post_process_signal.Connect(
            [&, i](RenderSystem&, PrimitiveLists&, const std::shared_ptr<RenderTarget>&,
                   const std::shared_ptr<Texture>&, const std::shared_ptr<Texture>&, int& swaps) {
                if (i < drawing_slots)
                    ++swaps;
            });
    render_system.ApplyPostProcesses(post_processes);
    EXPECT_EQ(render_system.GetCurrentOutputTexture()->GetName(), "t_compose1");
    drawing_slots = 2;
    render_system.ApplyPostProcesses(post_processes);
    EXPECT_EQ(render_system.GetCurrentOutputTexture()->GetName(), "t_compose0");
    EXPECT_EQ(renderer.Calls(),
              (Strings{"SetDepthTest(false)", "SetDepthWrite(false)", "SetDepthWrite(true)", "SetDepthTest(true)",
                       "SetDepthTest(false)", "SetDepthWrite(false)", "SetDepthWrite(true)", "SetDepthTest(true)"}));
}

TEST_F(RenderSystemFrame, SlotsMayConnectAndDisconnectWhileTheSignalFires)
{
    int late_calls = 0;
    SignalConnection self = 0;
    self = render_system.frame_start_signal.Connect([&] {
        render_system.frame_start_signal.Connect([&] { ++late_calls; });
        render_system.frame_start_signal.Disconnect(self);
    });
    render_system.BeginDrawFrame();
    EXPECT_EQ(late_calls, 0);  // connected during the fire: runs from the next one on
    render_system.BeginDrawFrame();
    EXPECT_EQ(late_calls, 1);
    EXPECT_EQ(render_system.frame_start_signal.SlotCount(), 1u);
}

TEST_F(RenderSystemFrame, DrawRenderablesAsksOnlyTheConcernedAndKeepsCapacity)
{
    const Matrix4 camera = Matrix4::FromPosition({1, 2, 3});
    render_system.SetView(camera, camera, PerspectiveFromZoom(1, 1, 0.1f, 100), kEyeLeft);
    auto inside = std::make_shared<FakeRenderable>(Frustum::kInside);
    auto crossing = std::make_shared<FakeRenderable>(Frustum::kCrossing);
    auto outside = std::make_shared<FakeRenderable>(Frustum::kOutside);
    renderables = {inside, nullptr, crossing, outside};
    int drawn = 0;
    std::size_t primitives_when_drawn = 0;
    render_system.renderables_drawn_signal.Connect([&] {
        ++drawn;
        primitives_when_drawn = render_system.primitive_lists.primitives[kRenderListOpaque].size();
    });
    render_system.DrawRenderables(renderables);
    EXPECT_EQ(drawn, 1);
    EXPECT_EQ(primitives_when_drawn, 2u);
    EXPECT_EQ(outside->cull_calls, 1);
    EXPECT_EQ(outside->primitive_calls, 0);
    EXPECT_EQ(inside->primitive_calls, 1);
    EXPECT_EQ(crossing->primitive_calls, 1);
    EXPECT_EQ(inside->seen_view, camera);
    EXPECT_EQ(inside->seen_flags, 0u);
    EXPECT_EQ(inside->culled_with.planes, render_system.GetFrustum().planes);
    EXPECT_EQ(render_system.GetEye(), kEyeLeft);

    // Nothing is drawn until the pipelines exist: the renderer sees no call.
    EXPECT_TRUE(renderer.Calls().empty());

    const std::size_t capacity = render_system.primitive_lists.primitives[kRenderListOpaque].capacity();
    renderables.clear();
    render_system.DrawRenderables(renderables);
    EXPECT_TRUE(render_system.primitive_lists.Empty());
    EXPECT_EQ(render_system.primitive_lists.primitives[kRenderListOpaque].capacity(), capacity);
}

TEST_F(RenderSystemFrame, SetViewSetsTheRendererMatrices)
{
    const Matrix4 camera = Matrix4::FromPosition({0, 0, -5});
    const Matrix4 previous = Matrix4::FromPosition({0, 0, -6});
    const Matrix44 projection = PerspectiveFromZoom(2, 1.5f, 0.5f, 50);
    render_system.SetView(camera, previous, projection, kEyeRight);
    EXPECT_EQ(renderer.GetViewMatrix(), camera);
    EXPECT_EQ(renderer.GetPreviousViewMatrix(), previous);
    EXPECT_EQ(renderer.GetProjectionMatrix(), projection);
    // The camera at z = -5 looks along +z: the origin is in view, a point behind it is not.
    EXPECT_TRUE(render_system.GetFrustum().Contains({0, 0, 0}));
    EXPECT_FALSE(render_system.GetFrustum().Contains({0, 0, -6}));
}

TEST_F(RenderSystemFrame, PassShaderClearsGreyAndFiresCleared)
{
    auto renderable = std::make_shared<FakeRenderable>();
    renderables = {renderable};
    int cleared = 0;
    render_system.frame_cleared_signal.Connect([&] { ++cleared; });
    render_system.DrawRenderPassShader(renderables, kShaderPassPPNormalDepth);
    EXPECT_EQ(renderer.Calls(), Strings{"Clear(0.5,0.5,0.5,1, 1, 65535)"});
    EXPECT_EQ(renderable->primitive_calls, 1);
    EXPECT_EQ(cleared, 1);
    // The frame's own lists are left alone.
    EXPECT_TRUE(render_system.primitive_lists.Empty());
}

TEST_F(RenderSystemFrame, PickingDrawsIntoTheTargetOrNotAtAll)
{
    auto renderable = std::make_shared<FakeRenderable>();
    renderables = {renderable};
    auto target = renderer.NewRenderTarget();
    renderer.ClearCalls();
    int cleared = 0;
    render_system.frame_cleared_signal.Connect([&] { ++cleared; });
    render_system.DrawRenderablesPicking(renderables, target);
    EXPECT_EQ(renderer.Calls(), (Strings{"SetRenderTarget(target)", "CheckRenderTarget()", "Clear(0,0,0,1, 1, 65535)",
                                         "ResetRenderTarget()"}));
    EXPECT_EQ(renderable->primitive_calls, 1);
    EXPECT_EQ(cleared, 1);

    renderer.check_render_target_result = false;
    renderer.ClearCalls();
    render_system.DrawRenderablesPicking(renderables, target);
    EXPECT_EQ(renderer.Calls(), (Strings{"SetRenderTarget(target)", "CheckRenderTarget()"}));
    EXPECT_EQ(renderable->primitive_calls, 1);
    EXPECT_EQ(cleared, 1);
}

TEST_F(RenderSystemFrame, ReloadRestoresDefaultStateAndSaysSo)
{
    render_system.Reload();
    EXPECT_EQ(renderer.Calls(),
              (Strings{"SetDepthFunc(3)", "SetDepthTest(true)", "SetDepthWrite(true)", "SetBlend(false)",
                       "SetAlphaToCoverage(false)", "SetCullFront(false)", "SetFaceCulling(true)"}));
    EXPECT_TRUE(env.log.Contains("", "Done reloading resources"));
}

// --- technique and targets ---

TEST_F(RenderSystemFrame, MultisampleCountMapsToLevels)
{
    const std::pair<int, int> levels[] = {{1, 0}, {2, 1}, {3, 2}, {4, 2}, {5, 3}, {8, 3}, {9, 4}, {15, 4}};
    renderer.capabilities[kCapabilityHardwareMultisample] = true;
    renderer.Close();
    renderer.Open();
    for (const auto& [count, level] : levels) {
        env.log.Clear();
        render_system.SetMultisampleCount(count);
        render_system.SetRenderTechnique(kTechniqueForward);
        EXPECT_TRUE(env.log.Contains("", "SetRenderTechnique(): 1280x720:" + std::to_string(level))) << count;
        EXPECT_EQ(render_system.GetOutputTarget()->color_textures[0]->anti_aliasing, level);
    }
}

TEST_F(RenderSystemFrame, SixteenSamplesAreLevelFour)
{
    RestartMultisampled(16);
    // The count field holds four bits: 16 is out of its range and stored as the largest count.
    EXPECT_EQ(render_system.GetMultisampleCount(), 15);
    EXPECT_EQ(render_system.GetOutputTarget()->color_textures[0]->GetName(), "t_color_aa");
    EXPECT_EQ(render_system.GetOutputTarget()->depth_texture->GetName(), "t_depth_aa");
    EXPECT_EQ(render_system.GetOutputTarget()->color_textures[0]->anti_aliasing, 4);
}

TEST_F(RenderSystemFrame, ZeroOutputSizeFallsBackTo256)
{
    renderer.output_size = {0, 0};
    env.log.Clear();
    render_system.SetRenderTechnique(kTechniqueForward);
    EXPECT_TRUE(env.log.Contains("", "SetRenderTechnique(): 256x256:0"));
    EXPECT_EQ(render_system.GetFrameWidth(), 256);
    EXPECT_EQ(render_system.GetCurrentOutputTexture()->width, 256);
}

TEST_F(RenderSystemFrame, DeferredMakesTheGBufferAndDropsMultisampling)
{
    renderer.capabilities[kCapabilityHardwareMultisample] = true;
    renderer.Close();
    renderer.Open();
    render_system.SetMultisampleCount(4);
    env.log.Clear();
    render_system.SetRenderTechnique(kTechniqueDeferred, true);
    EXPECT_TRUE(env.log.Contains("", "SetRenderTechnique(): 1280x720:0"));
    EXPECT_EQ(render_system.GetMultisampleCount(), 0);
    const auto& output = *render_system.GetOutputTarget();
    ASSERT_EQ(output.color_count, 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(output.color_textures[i]->GetName(), "t_gbuffer" + std::to_string(i));
        EXPECT_EQ(output.color_textures[i]->format, kTextureFormatColorFloat);
    }
    EXPECT_EQ(output.depth_texture->GetName(), "t_depth");
    EXPECT_EQ(render_system.GetDrawTarget(), render_system.GetOutputTarget());
    // hdr: the compose textures are floating point.
    EXPECT_EQ(render_system.GetCurrentOutputTexture()->format, kTextureFormatColorFloat);
    EXPECT_EQ(render_system.GetRenderTechnique(), kTechniqueDeferred);
}

TEST_F(RenderSystemFrame, InternalResolutionRemakesTheFrameAndKeepsTheTechnique)
{
    render_system.SetRenderTechnique(kTechniqueDeferred);
    render_system.SetInternalResolution(2016, 2240);
    EXPECT_EQ(render_system.GetInternalWidth(), 2016);
    EXPECT_EQ(render_system.GetInternalHeight(), 2240);
    EXPECT_EQ(render_system.GetRenderTechnique(), kTechniqueDeferred);
    EXPECT_EQ(render_system.GetCurrentOutputTexture()->width, 2016);
    EXPECT_EQ(render_system.GetCurrentOutputTexture()->height, 2240);
    // Back to following the output.
    render_system.SetInternalResolution(0, 0);
    EXPECT_EQ(render_system.GetFrameWidth(), 1280);
    EXPECT_EQ(render_system.GetFrameHeight(), 720);
}

TEST_F(RenderSystemFrame, ShadowMapSizeRemakesTheMap)
{
    env.log.Clear();
    render_system.SetShadowMapSize(2048);
    EXPECT_EQ(render_system.GetShadowMapSize(), 2048);
    EXPECT_EQ(renderer.Calls(), Strings{"NewShadowMap(2048, 2048, shadow_map)"});
    EXPECT_EQ(render_system.GetShadowTarget()->depth_texture, render_system.GetShadowMap());
    EXPECT_TRUE(env.log.Contains("", "Create shadow maps (2048x2048)"));
    renderer.ClearCalls();
    render_system.SetShadowMapSize(0);
    EXPECT_EQ(render_system.GetShadowMapSize(), 2048);
    EXPECT_TRUE(renderer.Calls().empty());
}

// --- immediate helpers ---

struct PackedVertex {
    float position[3];
    std::uint8_t color[4];
    std::uint16_t uv[2];
};
static_assert(sizeof(PackedVertex) == 20);

std::vector<PackedVertex> VerticesOf(const std::shared_ptr<GpuBuffer>& buffer, std::size_t count)
{
    std::vector<PackedVertex> vertices(count);
    std::memcpy(vertices.data(), BytesOf(buffer).data(), count * sizeof(PackedVertex));
    return vertices;
}

TEST_F(RenderSystemFrame, ImmediateVerticesClampScaleAndTruncate)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Vector3 positions[3] = {{1, 2, 3}, {-4, 5.5f, 0}, {0, 0, -1}};
    const Color colors[3] = {{-0.5f, 1.5f, 0.999f, 0.5f}, {1, 0, 0.2f, 1}, {nan, 2, -1, 0}};
    const Vector2 uvs[3] = {{-1, 2}, {0.5f, 1}, {0.25f, 0.99999f}};
    ImmediateVertices vertices{positions, colors, uvs, 3};
    render_system.DrawTriangle(vertices, Color{1, 1, 1, 1});
    const auto packed = VerticesOf(render_system.GetDynamicVertexBuffer(), 3);
    EXPECT_EQ(packed[0].position[0], 1);
    EXPECT_EQ(packed[1].position[1], 5.5f);
    EXPECT_EQ(packed[2].position[2], -1);
    EXPECT_EQ(std::vector<int>(packed[0].color, packed[0].color + 4), (std::vector<int>{0, 255, 254, 127}));
    EXPECT_EQ(std::vector<int>(packed[1].color, packed[1].color + 4), (std::vector<int>{255, 0, 51, 255}));
    EXPECT_EQ(std::vector<int>(packed[2].color, packed[2].color + 4), (std::vector<int>{0, 255, 0, 0}));
    EXPECT_EQ(packed[0].uv[0], 0);
    EXPECT_EQ(packed[0].uv[1], 65535);
    EXPECT_EQ(packed[1].uv[0], 32767);
    EXPECT_EQ(packed[1].uv[1], 65535);
    EXPECT_EQ(packed[2].uv[0], 16383);
    EXPECT_EQ(packed[2].uv[1], 65534);
    EXPECT_EQ(IndicesOf(render_system.GetDynamicIndexBuffer(), 3), (std::vector<std::uint16_t>{0, 1, 2}));
    EXPECT_EQ(render_system.GetFrameStatistics().triangles, 1u);
}

TEST_F(RenderSystemFrame, MissingArraysReadDefaults)
{
    ImmediateVertices vertices;
    vertices.vertex_count = 2;
    render_system.DrawLine(vertices, Color{0, 0.5f, 1, 1});
    const auto packed = VerticesOf(render_system.GetDynamicVertexBuffer(), 2);
    for (const PackedVertex& vertex : packed) {
        EXPECT_EQ(std::vector<float>(vertex.position, vertex.position + 3), (std::vector<float>{0, 0, 0}));
        EXPECT_EQ(std::vector<int>(vertex.color, vertex.color + 4), (std::vector<int>{0, 127, 255, 255}));
        EXPECT_EQ(vertex.uv[0], 0);
        EXPECT_EQ(vertex.uv[1], 0);
    }
    EXPECT_EQ(render_system.GetFrameStatistics().lines, 1u);
    EXPECT_EQ(render_system.GetFrameStatistics().triangles, 0u);
    EXPECT_EQ(renderer.Calls(),
              (Strings{"GetBufferSize()", "GetBufferSize()", "MapBuffer()", "UnmapBuffer()", "MapBuffer()",
                       "UnmapBuffer()", "SetShader(@core/shaders/single_color.isl)", "SetIndexSource(buffer)",
                       "SetVertexSource(buffer, 20)", "SetShaderSystemBuiltins(0, 1280x720, 2, true)",
                       "SetShaderTransformationBuiltins(0)", "DrawBuffers(0, 2, 0, 0)"}));
}

TEST_F(RenderSystemFrame, TexturedDrawsUseSingleTexture)
{
    auto texture = renderer.NewTexture("picture");
    renderer.ClearCalls();
    render_system.DrawSprite(Rect{10, 20, 30, 40}, Rect{0, 0, 1, 1}, Color{1, 1, 1, 1}, texture);
    const Strings names = renderer.Calls();
    EXPECT_EQ(From(names, "SetShader(@core/shaders/single_texture.isl)").size(), 8u);
    EXPECT_NE(std::find(names.begin(), names.end(), "SetShaderTexture(0, picture)"), names.end());
    EXPECT_EQ(names.back(), "DrawBuffers(0, 6, 1, 0)");
    const auto packed = VerticesOf(render_system.GetDynamicVertexBuffer(), 4);
    EXPECT_EQ(packed[2].position[0], 30);
    EXPECT_EQ(packed[2].position[1], 40);
    EXPECT_EQ(packed[2].uv[0], 65535);
    EXPECT_EQ(packed[3].uv[0], 0);
    EXPECT_EQ(IndicesOf(render_system.GetDynamicIndexBuffer(), 6), (std::vector<std::uint16_t>{2, 1, 0, 3, 2, 0}));
    EXPECT_EQ(render_system.GetFrameStatistics().triangles, 2u);
}

TEST_F(RenderSystemFrame, DynamicBuffersGrowAndNeverShrink)
{
    std::vector<Vector3> positions(1200);
    ImmediateVertices big{positions.data(), nullptr, nullptr, 1200};
    render_system.DrawTriangle(big, Color{1, 1, 1, 1});
    const Strings calls = renderer.Calls();
    // 1200 vertices of 20 bytes outgrow 16384 bytes: doubled to 32768; 2400 index bytes fit.
    EXPECT_NE(std::find(calls.begin(), calls.end(), "CreateBuffer(32768, vertex, dynamic)"), calls.end());
    EXPECT_EQ(BytesOf(render_system.GetDynamicVertexBuffer()).size(), 32768u);
    EXPECT_EQ(BytesOf(render_system.GetDynamicIndexBuffer()).size(), 4096u);
    EXPECT_EQ(IndicesOf(render_system.GetDynamicIndexBuffer(), 1200).back(), 1199);

    renderer.ClearCalls();
    ImmediateVertices small{positions.data(), nullptr, nullptr, 3};
    render_system.DrawTriangle(small, Color{1, 1, 1, 1});
    const Strings names = renderer.CallNames();
    EXPECT_EQ(std::count(names.begin(), names.end(), "CreateBuffer"), 0);
    EXPECT_EQ(BytesOf(render_system.GetDynamicVertexBuffer()).size(), 32768u);
}

TEST_F(RenderSystemFrame, BadImmediateInputDrawsNothing)
{
    const Vector3 positions[3] = {};
    const std::uint16_t out_of_range[3] = {0, 1, 3};
    ImmediateVertices bad_index{positions, nullptr, nullptr, 3, out_of_range, 3};
    render_system.DrawTriangle(bad_index, Color{1, 1, 1, 1});
    ImmediateVertices empty;
    render_system.DrawTriangle(empty, Color{1, 1, 1, 1});
    ImmediateVertices too_many;
    too_many.vertex_count = 70000;
    render_system.DrawLine(too_many, Color{1, 1, 1, 1});
    EXPECT_TRUE(renderer.Calls().empty());
    EXPECT_EQ(render_system.GetFrameStatistics().triangles, 0u);
}

TEST_F(RenderSystemFrame, ImmediateDrawWithAFailedShaderIsSkipped)
{
    render_system.Free();
    renderer.Close();
    renderer.compile_result = false;
    Start(false);
    const Vector3 positions[3] = {};
    render_system.DrawTriangle(ImmediateVertices{positions, nullptr, nullptr, 3}, Color{1, 1, 1, 1});
    const Strings names = renderer.CallNames();
    EXPECT_EQ(names.back(), "SetShader");
    EXPECT_EQ(render_system.GetFrameStatistics().triangles, 0u);
}

TEST_F(RenderSystemFrame, GeometrySimpleDrawsEachDisplayList)
{
    GeometryDisplayList list;
    list.index_buffer = renderer.NewBuffer();
    list.vertex_buffer = renderer.NewBuffer();
    list.index_type = kIndex32;
    list.index_count = 36;
    GeometryDisplayList empty;
    renderer.ClearCalls();
    render_system.DrawGeometrySimple({list, empty, list});
    EXPECT_EQ(renderer.CallNames(),
              (Strings{"SetIndexSource", "SetVertexSource", "SetShaderSystemBuiltins",
                       "SetShaderTransformationBuiltins", "DrawBuffers", "SetIndexSource", "SetVertexSource",
                       "SetShaderSystemBuiltins", "SetShaderTransformationBuiltins", "DrawBuffers"}));
    EXPECT_EQ(renderer.Calls().back(), "DrawBuffers(1, 36, 1, 0)");
}

}  // namespace
}  // namespace kesta
