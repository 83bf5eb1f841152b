#pragma once
// A test host for the VR module: the engine's process-wide objects with one task worker (the render
// worker), an open recording renderer, a render system, the module loaded with dlopen, and a frame
// renderer made from the module's factory, against the simulated runtime. Every frame the render
// system begins is recorded with the view it was given, so tests see what each eye drew.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/frame_renderer.h"
#include "engine/render_system/render_system.h"
#include "engine/renderer/recording_renderer.h"
#include "foundation/math/matrix4.h"
#include "foundation/math/matrix44.h"
#include "foundation/math/rect.h"
#include "io/testing/log_capture.h"
#include "platform/headless_gl/headless_gl_context.h"
#include "platform/input/input_device.h"
#include "platform/input/input_system.h"
#include "platform/plugin/plugin_library.h"
#include "plugins/engine_singletons.h"
#include "plugins/vr/openvr_tests/vrsim_test_support.h"

namespace kesta::testing {

// What the render system was set to when a frame began.
struct BegunFrame {
    std::uint8_t eye = 0;
    Matrix4 view;
    Matrix4 previous_view;
    Matrix44 projection;
    Rect viewport;
    // The first colour texture of the render target current at that moment, or "none".
    std::string target_texture;
    std::uint64_t target_handle = 0;
};

class VRModuleTest : public ::testing::Test {
protected:
    // The simulated runtime's settings that every test shares: unpaced, small eyes.
    static std::string Config(const std::string& members = {});

    // Starts the host with the simulated runtime configured by `vrsim_json`.
    void Start(const std::string& vrsim_json);
    // Starts the host with no runtime folder at all.
    void StartWithoutRuntime();
    void TearDown() override;

    // The simulated compositor takes only names of OpenGL textures of the context current on the
    // submitting thread, while the recording back end numbers its textures 1, 2, ... without GL.
    // This makes a headless context current on the render worker in which the first `count`
    // texture names exist, so the recording textures' handles are accepted.
    void ProvideGLTextureNames(unsigned count);
    bool Initialize();
    // Renders frames on the render worker, as the renderable system does.
    void RenderFrames(int count);
    void RunOnRenderWorker(const std::function<void()>& call);
    // The profile sections opened since the last call, in the order they were opened.
    std::vector<std::string> SectionTrace();
    // A device of the module, by name.
    InputDevice& Device(const std::string& name);

    IsolatedOpenVREnvironment openvr;
    EngineSingletons singletons;
    LogCapture log;
    std::shared_ptr<RecordingRenderer> renderer;
    std::unique_ptr<RenderSystem> render_system;
    PluginLibrary library;
    // Goes before the library does: it keeps the module's devices once they were asked for.
    std::unique_ptr<InputSystem> input = std::make_unique<InputSystem>();
    std::shared_ptr<FrameRenderer> frame_renderer;
    std::vector<BegunFrame> begun_frames;
    std::vector<std::shared_ptr<Renderable>> renderables;
    std::vector<std::shared_ptr<Component>> post_processes;

private:
    void StartHost();

    bool initialized_ = false;
    std::unique_ptr<HeadlessGLContext> gl_;
};

}  // namespace kesta::testing
