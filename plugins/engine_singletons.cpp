#include "plugins/engine_singletons.h"

#include "engine/frame_renderer_factory.h"
#include "foundation/log/log.h"
#include "overlay/imgui_shared_state.h"

namespace kesta {

EngineSingletons::EngineSingletons()
    : log_system_(std::make_unique<LogSystem>()),
      frame_renderer_factory_(std::make_unique<FrameRendererFactory>()),
      imgui_shared_state_(std::make_unique<ImGuiSharedState>())
{
    g_log_system = log_system_.get();
    g_frame_renderer_factory = frame_renderer_factory_.get();
    g_imgui_shared_state = imgui_shared_state_.get();
}

EngineSingletons::~EngineSingletons()
{
    // Reverse order of creation; the log goes last so that everything before can still report.
    g_imgui_shared_state = nullptr;
    g_frame_renderer_factory = nullptr;
    imgui_shared_state_.reset();
    frame_renderer_factory_.reset();
    g_log_system = nullptr;
    log_system_.reset();
}

}  // namespace kesta
