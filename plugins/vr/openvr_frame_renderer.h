#pragma once

#include <cstdint>

#include "engine/frame_renderer.h"
#include "foundation/math/matrix4.h"
#include "plugins/vr/vr_state.h"

namespace kesta {

// What the desktop window shows of a VR frame.
enum VRMonitoring : std::int32_t {
    kMonitorSideBySide = 0,
    kMonitorRightEye = 1,
    kMonitorLeftEye = 2,
    // The head's view rendered once more, as a plain mono frame with the scene's projection.
    kMonitorMono = 3,
};

// Stereo output through OpenVR: each frame waits for the compositor's poses, draws the scene once
// per eye into the eye targets, submits both, and mirrors a picture to the window. The session
// itself is module-wide (see VRState): every instance shares it.
class OpenVRFrameRenderer : public FrameRenderer {
public:
    // Opens the session on the render worker and waits for it; forgets the previous views.
    bool Initialize(RenderSystem& render_system) override;
    void RenderFrame(RenderSystem& render_system, LightSystem& lights,
                     std::vector<std::shared_ptr<Renderable>>& renderables,
                     std::vector<std::shared_ptr<Component>>& post_processes) override;
    // Queues the end of the session to the render worker and returns at once; the render system
    // must outlive the queued call.
    void Shutdown(RenderSystem& render_system) override;
    // "MonitoringConfiguration" sets `monitoring` from decimal text (std::stoi's exceptions pass
    // through); every key is accepted.
    bool SetConfiguration(const std::string& key, const std::string& value) override;
    std::string GetConfiguration(const std::string& key) override;

    // Any value other than the four VRMonitoring ones draws nothing to the window. Read once per
    // frame, written by the application's thread without a lock.
    std::int32_t monitoring = kMonitorLeftEye;
    // World matrices of the last frame; all zero when there is none.
    Matrix4 head_prev_view = kZeroMatrix4;
    Matrix4 left_prev_view = kZeroMatrix4;
    Matrix4 right_prev_view = kZeroMatrix4;
};

}  // namespace kesta
