#pragma once
// A render system initialised on an open recording renderer, with the calls and log lines of
// opening and initialising cleared, so that a test sees only what it does itself.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/render_system/render_system.h"
#include "engine/renderer/testing/renderer_test_environment.h"

namespace kesta::testing {

class RenderSystemTest : public ::testing::Test {
protected:
    // Opens the renderer and initialises the render system, with or without 3D resources.
    void Start(bool create_3d_resources = true);
    void SetUp() override { Start(); }
    void TearDown() override { render_system.Free(); }

    // The calls recorded since the last ClearCalls, names only.
    std::vector<std::string> Names() const { return renderer.CallNames(); }

    RendererTestEnvironment env;
    RecordingRenderer& renderer = *env.renderer;
    RenderSystem render_system;
};

}  // namespace kesta::testing
