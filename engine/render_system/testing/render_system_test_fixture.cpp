#include "engine/render_system/testing/render_system_test_fixture.h"

namespace kesta::testing {

void RenderSystemTest::Start(bool create_3d_resources)
{
    renderer.Open();
    ASSERT_TRUE(render_system.Initialize(env.renderer, create_3d_resources));
    renderer.ClearCalls();
    env.log.Clear();
}

}  // namespace kesta::testing
