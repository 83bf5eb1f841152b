#include "engine/default_frame_renderer.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "engine/frame_renderer_factory.h"
#include "engine/render_system/render_system.h"
#include "engine/render_system/testing/render_system_test_fixture.h"
#include "foundation/profiler/profiler.h"

namespace kesta {
namespace {

// The frame steps as the render system opens their profile sections, in the order they began.
std::vector<std::string> SectionOrder(const Profiler& profiler)
{
    const ProfileFrame frame = profiler.GetLastFrame();
    std::map<std::uint64_t, std::string> by_event;
    for (const ProfileFrameSection& section : frame.sections)
        for (std::uint64_t event : section.events)
            by_event[event] = section.name;
    std::vector<std::string> names;
    for (const auto& [event, name] : by_event)
        names.push_back(name);
    return names;
}

class DefaultFrameRendererFrame : public testing::RenderSystemTest {
protected:
    void SetUp() override
    {
        RenderSystemTest::SetUp();
        previous_profiler = g_profiler;
        g_profiler = &profiler;
    }
    void TearDown() override
    {
        g_profiler = previous_profiler;
        RenderSystemTest::TearDown();
    }
    void render(DefaultFrameRenderer& frame_renderer)
    {
        frame_renderer.RenderFrame(render_system, *lights, renderables, post_processes);
        profiler.EndFrame();
    }

    Profiler profiler;
    Profiler* previous_profiler = nullptr;
    // Never dereferenced: the frame renderer and the render system only pass the reference on.
    LightSystem* lights = reinterpret_cast<LightSystem*>(&render_system);
    std::vector<std::shared_ptr<Renderable>> renderables;
    std::vector<std::shared_ptr<Component>> post_processes;
};

// What a forward frame without multisampling sends to the renderer, from the start of the frame
// to the composition into the window.
const std::vector<std::string> kBeginCalls = {"SetRenderTarget", "Clear"};
const std::vector<std::string> kPostProcessCalls = {"SetDepthTest", "SetDepthWrite", "SetDepthWrite", "SetDepthTest"};
const std::vector<std::string> kEndCalls = {"SetRenderTarget",
                                            "SetBlend",
                                            "SetFaceCulling",
                                            "ResetRenderTarget",
                                            "SetDepthTest",
                                            "SetDepthWrite",
                                            "SetShader",
                                            "GetShaderVariable",
                                            "SetShaderTexture",
                                            "UpdateBuffer",
                                            "SetIndexSource",
                                            "SetVertexSource",
                                            "SetShaderSystemBuiltins",
                                            "SetShaderTransformationBuiltins",
                                            "DrawBuffers",
                                            "SetDepthWrite",
                                            "SetDepthTest"};

std::vector<std::string> Joined(std::initializer_list<std::vector<std::string>> parts)
{
    std::vector<std::string> all;
    for (const auto& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

TEST_F(DefaultFrameRendererFrame, WithoutPassShaderDrawsResolvesAndPostProcesses)
{
    DefaultFrameRenderer frame_renderer;
    ASSERT_EQ(frame_renderer.pass_shader, 14);
    render(frame_renderer);
    EXPECT_EQ(SectionOrder(profiler),
              (std::vector<std::string>{"RenderSystem.BeginDrawFrame", "RenderSystem.DrawRenderables",
                                        "RenderSystem.DrawRenderables.BuildFrustumPrimitiveLists",
                                        "RenderSystem.DrawRenderables.renderables_drawn_signal",
                                        "RenderSystem.ApplyPostProcesses", "RenderSystem.EndDrawFrame"}));
    // Without multisampling the resolve sends nothing.
    EXPECT_EQ(Names(), Joined({kBeginCalls, kPostProcessCalls, kEndCalls}));
}

TEST_F(DefaultFrameRendererFrame, PassShaderSkipsPostProcesses)
{
    DefaultFrameRenderer frame_renderer;
    for (std::uint8_t pass : {0, 3, 13, 15, 255}) {
        renderer.ClearCalls();
        frame_renderer.pass_shader = pass;
        render(frame_renderer);
        EXPECT_EQ(SectionOrder(profiler),
                  (std::vector<std::string>{"RenderSystem.BeginDrawFrame", "RenderSystem.DrawRenderPassShader",
                                            "RenderSystem.EndDrawFrame"}));
        EXPECT_EQ(Names(), Joined({kBeginCalls, {"Clear"}, kEndCalls}));
    }
}

TEST_F(DefaultFrameRendererFrame, MultisampledFrameResolvesBeforePostProcesses)
{
    renderer.capabilities[kCapabilityHardwareMultisample] = true;
    renderer.Close();
    renderer.Open();
    render_system.Free();
    render_system.SetMultisampleCount(4);
    ASSERT_TRUE(render_system.Initialize(env.renderer, true));
    renderer.ClearCalls();
    DefaultFrameRenderer frame_renderer;
    render(frame_renderer);
    EXPECT_EQ(Names(), Joined({kBeginCalls, {"BlitRenderTarget"}, kPostProcessCalls, kEndCalls}));
}

TEST_F(DefaultFrameRendererFrame, InitializeAndShutdownTouchNothing)
{
    DefaultFrameRenderer frame_renderer;
    EXPECT_TRUE(frame_renderer.Initialize(render_system));
    frame_renderer.Shutdown(render_system);
    EXPECT_TRUE(renderer.Calls().empty());
}

TEST(FrameRendererConfiguration, BaseRefusesEveryKeyAndAnswersEmpty)
{
    DefaultFrameRenderer renderer;
    FrameRenderer& base = renderer;
    EXPECT_FALSE(base.SetConfiguration("Other", "x"));
    EXPECT_FALSE(base.SetConfiguration("MonitoringConfiguration", "3"));
    EXPECT_EQ(base.GetConfiguration("Other"), "");
    EXPECT_EQ(base.GetConfiguration("MonitoringConfiguration"), "");
}

TEST(FrameRendererFactoryMap, MakesNewInstancesByNameInNameOrder)
{
    FrameRendererFactory factory;
    factory["Zeta"] = [] { return std::make_shared<DefaultFrameRenderer>(); };
    factory["Alpha"] = [] { return std::make_shared<DefaultFrameRenderer>(); };
    ASSERT_EQ(factory.begin()->first, "Alpha");
    const auto first = factory.at("Zeta")();
    const auto second = factory.at("Zeta")();
    ASSERT_TRUE(first && second);
    EXPECT_NE(first, second);
    factory.erase("Zeta");
    EXPECT_EQ(factory.count("Zeta"), 0u);
}

}  // namespace
}  // namespace kesta
