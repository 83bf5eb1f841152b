#include "plugins/vr/testing/vr_module_fixture.h"

#include <GL/gl.h>

#include <algorithm>
#include <future>

#include "engine/frame_renderer_factory.h"
#include "engine/renderer/render_thread.h"
#include "foundation/profiler/profiler.h"
#include "foundation/task/future_call.h"
#include "foundation/task/task_system.h"
#include "plugins/plugin_context.h"

namespace kesta::testing {

std::string VRModuleTest::Config(const std::string& members)
{
    // A duplicate JSON member would not override: the eye size is left out when `members` has one.
    const bool own_size = members.find("\"render_width\"") != std::string::npos;
    return std::string(R"({"paced": false, "hmd_serial": "VRSIM-TEST-7", "tracking_system_name": "norvane_test_sim")") +
           (own_size ? "" : R"(, "render_width": 320, "render_height": 200)") +
           (members.empty() ? std::string() : ", " + members) + "}";
}

void VRModuleTest::Start(const std::string& vrsim_json)
{
    openvr.UseSimulatedRuntime(vrsim_json);
    StartHost();
}

void VRModuleTest::StartWithoutRuntime() { StartHost(); }

void VRModuleTest::StartHost()
{
    singletons.tasks().start(1);
    renderer = std::static_pointer_cast<RecordingRenderer>(AdoptRenderer(std::make_shared<RecordingRenderer>()));
    render_system = std::make_unique<RenderSystem>();
    RunOnRenderThreadAndWait([this] {
        renderer->Open();
        render_system->Initialize(renderer, true);
    });
    singletons.tasks().wait_for_all();
    render_system->frame_start_signal.Connect([this] {
        BegunFrame frame;
        frame.eye = render_system->GetEye();
        frame.view = renderer->GetViewMatrix();
        frame.previous_view = renderer->GetPreviousViewMatrix();
        frame.projection = renderer->GetProjectionMatrix();
        frame.viewport = renderer->viewport;
        const std::shared_ptr<RenderTarget>& target = renderer->GetCurrentRenderTarget();
        const std::shared_ptr<Texture> texture = target ? target->color_textures[0] : nullptr;
        frame.target_texture = texture ? texture->GetName() : "none";
        frame.target_handle = texture ? texture->GetNativeHandle() : 0;
        begun_frames.push_back(frame);
    });

    ASSERT_TRUE(library.Open(NORVANE_VR_MODULE_PATH)) << library.error();
    PluginContext context = MakePluginContext();
    context.input_system = input.get();
    ASSERT_EQ(library.load(context), 0);
    frame_renderer = singletons.frame_renderer_factory().at("VR")();
    ASSERT_NE(frame_renderer, nullptr);
    renderer->ClearCalls();
    log.Clear();
    SectionTrace();
}

void VRModuleTest::TearDown()
{
    if (frame_renderer && initialized_) {
        frame_renderer->Shutdown(*render_system);
        singletons.tasks().wait_for_all();
    }
    frame_renderer.reset();
    // The input system still holds the devices it handed out: it goes after the unload, which
    // removes the names from it, and before the module's code does.
    if (library.IsOpen())
        library.unload();
    input.reset();
    if (render_system) {
        RunOnRenderThreadAndWait([this] {
            render_system->Free();
            renderer->Close();
        });
        singletons.tasks().wait_for_all();
        render_system.reset();
    }
    renderer.reset();
    if (gl_) {
        RunOnRenderThreadAndWait([this] { gl_->ReleaseCurrent(); });
        gl_.reset();
    }
    // A worker drops its reference to a finished task only after the task's waiters were woken,
    // and the module's tasks are the module's code: one more call through the render worker, the
    // only worker, makes sure it has let go of them before the library is released.
    RunOnRenderThreadAndWait([] {});
    library.Close();
}

void VRModuleTest::ProvideGLTextureNames(unsigned count)
{
    std::string error;
    gl_ = HeadlessGLContext::Create(3, 3, &error);
    ASSERT_NE(gl_, nullptr) << error;
    RunOnRenderWorker([&] {
        ASSERT_TRUE(gl_->MakeCurrent());
        std::vector<GLuint> names(count);
        glGenTextures(static_cast<GLsizei>(count), names.data());
        const std::uint32_t pixel = 0;
        for (GLuint name : names) {
            glBindTexture(GL_TEXTURE_2D, name);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, &pixel);
        }
        glBindTexture(GL_TEXTURE_2D, 0);
        // A fresh context hands out the names in order from 1.
        ASSERT_EQ(names.front(), 1u);
        ASSERT_EQ(names.back(), count);
    });
}

bool VRModuleTest::Initialize()
{
    const bool result = frame_renderer->Initialize(*render_system);
    initialized_ = initialized_ || result;
    return result;
}

void VRModuleTest::RunOnRenderWorker(const std::function<void()>& call)
{
    run_call_with_return_value<void>(singletons.tasks(), call, 0).get();
}

void VRModuleTest::RenderFrames(int count)
{
    LightSystem& lights = *reinterpret_cast<LightSystem*>(render_system.get());  // only passed on
    for (int i = 0; i < count; ++i)
        RunOnRenderWorker([&] { frame_renderer->RenderFrame(*render_system, lights, renderables, post_processes); });
}

std::vector<std::string> VRModuleTest::SectionTrace()
{
    Profiler& profiler = singletons.profiler();
    profiler.EndFrame();
    const ProfileFrame frame = profiler.GetLastFrame();
    // Events are numbered in the order they were opened.
    std::vector<std::string> names(frame.events.size());
    for (const ProfileFrameSection& section : frame.sections)
        for (std::uint64_t event : section.events)
            if (event < names.size())
                names[event] = section.name;
    return names;
}

InputDevice& VRModuleTest::Device(const std::string& name)
{
    const std::shared_ptr<InputDevice> device = input->GetDevice(name);
    EXPECT_NE(device, nullptr) << name;
    return *device;
}

}  // namespace kesta::testing
