#pragma once
// The viewer's engine side: the modules loaded through the plug-in host, the "OpenGL" renderer open
// on the render worker, the render system with its 3D resources, and the "VR" frame renderer
// installed with the chosen monitoring mode. One call runs one frame as the engine's frame code
// does it, ending with the duties of a frame end.
//
// The headless renderer has no window: the mirror (the picture a desktop window would show) goes
// into the viewer's own mirror target at the renderer's output size, read back through the
// renderer's texture capture.

#include <memory>
#include <string>
#include <vector>

#include "apps/viewer/viewer_scene.h"
#include "engine/picture/picture.h"
#include "foundation/math/matrix44.h"

namespace kesta {

class EngineSingletons;
class FrameRenderer;
class Renderer;
class RenderSystem;
class RenderTarget;
class Texture;
class Renderable;
class Component;

struct ViewerSessionSettings {
    std::string module_folder;
    int monitoring = 0;
};

class ViewerSession {
public:
    explicit ViewerSession(EngineSingletons& engine);
    // Stops what Start began.
    ~ViewerSession();
    ViewerSession(const ViewerSession&) = delete;
    ViewerSession& operator=(const ViewerSession&) = delete;

    // False with a message for the user at the first step that fails; Stop undoes the steps that
    // were done.
    bool Start(const ViewerSessionSettings& settings, std::string& error);
    // One frame: the VR frame on the render worker, then the devices, then the frame end.
    void RunFrame();
    // The last frame's mirror, top row first. False when no frame has run or the capture failed.
    bool CaptureMirror(Picture& picture);
    // In the reverse order of Start: frame renderer, mirror target, render system, renderer, modules.
    void Stop();

    ViewerScene& scene() { return scene_; }
    Renderer* renderer() const { return renderer_.get(); }
    int mirror_width() const { return mirror_width_; }
    int mirror_height() const { return mirror_height_; }

private:
    bool OpenRenderer(std::string& error);
    void MakeMirrorTarget();

    EngineSingletons& engine_;
    ViewerScene scene_;
    bool modules_loaded_ = false;
    std::shared_ptr<Renderer> renderer_;
    std::unique_ptr<RenderSystem> render_system_;
    std::shared_ptr<FrameRenderer> frame_renderer_;
    bool frame_renderer_initialized_ = false;
    std::shared_ptr<Texture> mirror_texture_;
    std::shared_ptr<RenderTarget> mirror_target_;
    int mirror_width_ = 0;
    int mirror_height_ = 0;
    std::uint64_t frames_ = 0;
    std::uint64_t scene_connection_ = 0;
    Matrix44 projection_;
    std::vector<std::shared_ptr<Renderable>> renderables_;
    std::vector<std::shared_ptr<Component>> post_processes_;
};

}  // namespace kesta
