#pragma once

#include <memory>

namespace kesta {

class LogSystem;
class FrameRendererFactory;
struct ImGuiSharedState;

// The process-wide objects a host creates at start-up. Constructing publishes them in the engine
// globals; destroying clears the globals and destroys the objects, after every plug-in has gone.
class EngineSingletons {
public:
    EngineSingletons();
    ~EngineSingletons();
    EngineSingletons(const EngineSingletons&) = delete;
    EngineSingletons& operator=(const EngineSingletons&) = delete;

    LogSystem& log_system() { return *log_system_; }
    FrameRendererFactory& frame_renderer_factory() { return *frame_renderer_factory_; }
    ImGuiSharedState& imgui_shared_state() { return *imgui_shared_state_; }

private:
    std::unique_ptr<LogSystem> log_system_;
    std::unique_ptr<FrameRendererFactory> frame_renderer_factory_;
    std::unique_ptr<ImGuiSharedState> imgui_shared_state_;
};

}  // namespace kesta
