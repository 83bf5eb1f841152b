// Which target a forward frame draws into: the multisampled one only when there is a resolve.
#include <gtest/gtest.h>

#include "engine/render_system/testing/render_system_test_fixture.h"

namespace kesta {
namespace {

class RenderSystemDrawTarget : public testing::RenderSystemTest {
protected:
    // Restarts on a renderer that can multisample, with `samples` samples asked for.
    void Restart(int samples)
    {
        render_system.Free();
        renderer.capabilities[kCapabilityHardwareMultisample] = true;
        renderer.Close();
        render_system.SetMultisampleCount(samples);
        Start();
    }
};

TEST_F(RenderSystemDrawTarget, OneSampleDrawsIntoTheComposeTargetThatEndDrawFrameShows)
{
    Restart(1);
    render_system.BeginDrawFrame();
    EXPECT_EQ(renderer.GetCurrentRenderTarget(), render_system.GetComposeTarget());
    render_system.EndDrawFrame();
}

TEST_F(RenderSystemDrawTarget, FourSamplesDrawIntoTheMultisampledTargetThatIsResolved)
{
    Restart(4);
    render_system.BeginDrawFrame();
    EXPECT_EQ(renderer.GetCurrentRenderTarget(), render_system.GetOutputTarget());
    EXPECT_NE(render_system.GetOutputTarget(), render_system.GetComposeTarget());
    render_system.EndDrawFrame();
}

}  // namespace
}  // namespace kesta
