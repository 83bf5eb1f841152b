#include "engine/default_frame_renderer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/frame_renderer_factory.h"
#include "engine/render_system/render_system.h"

// The render system's frame steps, defined here to record the order in which a frame renderer
// calls them. This test program links no other definition of them.
namespace {
std::vector<std::string> g_steps;
}

namespace kesta {

void RenderSystem::BeginDrawFrame() { g_steps.push_back("BeginDrawFrame"); }
void RenderSystem::DrawRenderables(std::vector<std::shared_ptr<Renderable>>&, LightSystem&)
{
    g_steps.push_back("DrawRenderables");
}
void RenderSystem::DrawRenderPassShader(std::vector<std::shared_ptr<Renderable>>&, std::uint8_t pass_shader)
{
    g_steps.push_back("DrawRenderPassShader " + std::to_string(pass_shader));
}
void RenderSystem::ResolveMultisample() { g_steps.push_back("ResolveMultisample"); }
void RenderSystem::ApplyPostProcesses(std::vector<std::shared_ptr<Component>>&)
{
    g_steps.push_back("ApplyPostProcesses");
}
void RenderSystem::EndDrawFrame() { g_steps.push_back("EndDrawFrame"); }

namespace {

class DefaultFrameRendererFrame : public ::testing::Test {
protected:
    void SetUp() override { g_steps.clear(); }
    void render(DefaultFrameRenderer& renderer)
    {
        renderer.RenderFrame(render_system, *lights, renderables, post_processes);
    }

    RenderSystem render_system;
    // Never dereferenced by the frame renderer; it only passes the reference on.
    LightSystem* lights = reinterpret_cast<LightSystem*>(&render_system);
    std::vector<std::shared_ptr<Renderable>> renderables;
    std::vector<std::shared_ptr<Component>> post_processes;
};

TEST_F(DefaultFrameRendererFrame, WithoutPassShaderDrawsResolvesAndPostProcesses)
{
    DefaultFrameRenderer renderer;
    ASSERT_EQ(renderer.pass_shader, 14);
    render(renderer);
    EXPECT_EQ(g_steps, (std::vector<std::string>{"BeginDrawFrame", "DrawRenderables", "ResolveMultisample",
                                                 "ApplyPostProcesses", "EndDrawFrame"}));
}

TEST_F(DefaultFrameRendererFrame, PassShaderSkipsPostProcesses)
{
    DefaultFrameRenderer renderer;
    for (std::uint8_t pass : {0, 3, 13, 15, 255}) {
        g_steps.clear();
        renderer.pass_shader = pass;
        render(renderer);
        EXPECT_EQ(g_steps, (std::vector<std::string>{"BeginDrawFrame", "DrawRenderPassShader " + std::to_string(pass),
                                                     "ResolveMultisample", "EndDrawFrame"}));
    }
}

TEST_F(DefaultFrameRendererFrame, InitializeAndShutdownTouchNothing)
{
    DefaultFrameRenderer renderer;
    EXPECT_TRUE(renderer.Initialize(render_system));
    renderer.Shutdown(render_system);
    EXPECT_TRUE(g_steps.empty());
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
