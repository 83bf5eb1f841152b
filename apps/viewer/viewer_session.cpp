#include "apps/viewer/viewer_session.h"

#include <algorithm>
#include <cstring>

#include "engine/frame_end.h"
#include "engine/frame_renderer.h"
#include "engine/frame_renderer_factory.h"
#include "engine/render_system/render_system.h"
#include "engine/renderer/render_thread.h"
#include "engine/renderer/renderer.h"
#include "engine/renderer/renderer_factory.h"
#include "foundation/math/projection.h"
#include "foundation/profiler/profiler.h"
#include "foundation/task/task_system.h"
#include "platform/input/input_system.h"
#include "platform/plugin/plugin_system.h"
#include "plugins/engine_singletons.h"

namespace kesta {

namespace {

constexpr const char* kRendererName = "OpenGL";
constexpr const char* kFrameRendererName = "VR";
// The scene's own camera: its projection gives the VR frame its depth range, and the mono mirror
// its view. Vertical field of view, near and far planes in metres.
constexpr float kCameraFieldOfView = 1.5708f;
constexpr float kCameraNear = 0.05f;
constexpr float kCameraFar = 100.0f;
constexpr Color kSkyColor{0.11f, 0.14f, 0.2f, 1.0f};

// No light system exists yet: the scene is drawn unlit by the immediate helpers, and neither the
// frame renderer nor the render system reads the lights of a frame without renderables. This
// stands in for the reference the frame renderer's signature asks for and is never read.
LightSystem& NoLights()
{
    alignas(std::max_align_t) static unsigned char storage[1];
    return *reinterpret_cast<LightSystem*>(storage);
}

}  // namespace

ViewerSession::ViewerSession(EngineSingletons& engine) : engine_(engine) {}

ViewerSession::~ViewerSession() { Stop(); }

bool ViewerSession::Start(const ViewerSessionSettings& settings, std::string& error)
{
    PluginSystem& plugins = engine_.plugin_system();
    plugins.SetDefaultSearchPaths(settings.module_folder);
    plugins.LoadPlugins();
    modules_loaded_ = true;

    if (!OpenRenderer(error))
        return false;
    const std::string module_hint = " (is its module in " + settings.module_folder + "?)";
    FrameRendererFactory& frame_renderers = engine_.frame_renderer_factory();
    const auto make = frame_renderers.find(kFrameRendererName);
    if (make == frame_renderers.end()) {
        error = "no frame renderer \"VR\" is registered: the VR module was not loaded" + module_hint;
        return false;
    }
    frame_renderer_ = make->second();
    frame_renderer_->SetConfiguration("MonitoringConfiguration", std::to_string(settings.monitoring));
    if (!frame_renderer_->Initialize(*render_system_)) {
        error = "the VR output could not open a session with the OpenVR runtime (the log above says why)";
        return false;
    }
    frame_renderer_initialized_ = true;
    RunOnRenderThreadAndWait([this] { MakeMirrorTarget(); });
    scene_connection_ = render_system_->renderables_drawn_signal.Connect([this] { scene_.Draw(*render_system_); });
    return true;
}

bool ViewerSession::OpenRenderer(std::string& error)
{
    RendererFactoryTable& renderers = engine_.renderer_factory_table();
    const auto make = renderers.find(kRendererName);
    if (make == renderers.end()) {
        error = "no renderer \"OpenGL\" is registered: the OpenGL module was not loaded";
        return false;
    }
    renderer_ = make->second();
    RunOnRenderThreadAndWait([this] { renderer_->Open(); });
    engine_.tasks().wait_for_all();
    if (!renderer_->IsOpen()) {
        error = "the OpenGL renderer did not open (the log above says why)";
        return false;
    }
    render_system_ = std::make_unique<RenderSystem>();
    bool initialized = false;
    RunOnRenderThreadAndWait([&] { initialized = render_system_->Initialize(renderer_, true); });
    if (!initialized) {
        error = "the render system could not start on the OpenGL renderer";
        return false;
    }
    // An opaque evening sky behind the scene, so that the pictures need no alpha to be read.
    render_system_->environment.clear_color_value = kSkyColor;
    return true;
}

void ViewerSession::MakeMirrorTarget()
{
    const auto [width, height] = renderer_->GetOutputSize();
    mirror_width_ = std::max(width, 1);
    mirror_height_ = std::max(height, 1);
    mirror_texture_ = renderer_->NewTexture("Viewer mirror");
    // 8-bit colour usable as a render target, as the eye textures are made.
    renderer_->CreateTexture(*mirror_texture_, nullptr, 0, mirror_width_, mirror_height_, kTextureFormatColor8, 0,
                             kTextureUsageColorTarget, false, 1);
    mirror_target_ = renderer_->NewRenderTarget();
    renderer_->CreateRenderTarget(*mirror_target_);
    renderer_->SetRenderTargetColorTexture(*mirror_target_, mirror_texture_);
    projection_ = PerspectiveFromFieldOfView(kCameraFieldOfView,
                                             static_cast<float>(mirror_width_) / static_cast<float>(mirror_height_),
                                             kCameraNear, kCameraFar);
}

void ViewerSession::RunFrame()
{
    if (!frame_renderer_initialized_)
        return;
    RunOnRenderThreadAndWait([this] {
        // The camera stands at the tracking space's origin: the headset's poses are world poses.
        const Matrix4 camera = Matrix4::Identity();
        render_system_->SetView(camera, camera, projection_, kEyeMono);
        // The mirror goes to the current target when the frame starts: the viewer's mirror target.
        renderer_->SetRenderTarget(mirror_target_);
        frame_renderer_->RenderFrame(*render_system_, NoLights(), renderables_, post_processes_);
    });
    ++frames_;
    scene_.UpdateDevices(engine_.input_system());
    EndEngineFrame(engine_.tasks(), engine_.profiler());
}

bool ViewerSession::CaptureMirror(Picture& picture)
{
    if (frames_ == 0 || !mirror_texture_)
        return false;
    bool captured = false;
    RunOnRenderThreadAndWait([&] { captured = renderer_->CaptureTexture(*mirror_texture_, picture); });
    if (!captured || picture.format != kPictureRGBA8 || picture.height <= 0)
        return false;
    // Textures keep their bottom row first.
    const std::size_t row = static_cast<std::size_t>(picture.width) * 4;
    for (int top = 0, bottom = picture.height - 1; top < bottom; ++top, --bottom)
        std::swap_ranges(picture.data.begin() + static_cast<std::ptrdiff_t>(top * row),
                         picture.data.begin() + static_cast<std::ptrdiff_t>((top + 1) * row),
                         picture.data.begin() + static_cast<std::ptrdiff_t>(bottom * row));
    return true;
}

void ViewerSession::Stop()
{
    if (frame_renderer_) {
        if (frame_renderer_initialized_)
            frame_renderer_->Shutdown(*render_system_);
        // Shutdown only queues its work on the render worker: let it run before anything goes.
        engine_.tasks().wait_for_all();
        // The instance's deleter is code of the VR module: release it before the module goes.
        frame_renderer_.reset();
        frame_renderer_initialized_ = false;
    }
    if (render_system_) {
        render_system_->renderables_drawn_signal.Disconnect(scene_connection_);
        RunOnRenderThreadAndWait([this] {
            if (mirror_target_)
                renderer_->FreeRenderTarget(*mirror_target_);
            if (mirror_texture_)
                renderer_->FreeTexture(*mirror_texture_);
            mirror_target_.reset();
            mirror_texture_.reset();
            render_system_->Free();
        });
        render_system_.reset();
    }
    if (renderer_) {
        RunOnRenderThreadAndWait([this] { renderer_->Close(); });
        renderer_.reset();
        engine_.tasks().wait_for_all();
    }
    if (modules_loaded_) {
        // The VR devices the scene asked for are code of the VR module.
        engine_.input_system().CloseOpenDevices();
        engine_.plugin_system().UnloadPlugins();
        modules_loaded_ = false;
    }
}

}  // namespace kesta
