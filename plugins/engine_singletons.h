#pragma once

#include <memory>

namespace kesta {

class LogSystem;
class timer_thread;
class task_system;
class Profiler;
class Filesystem;
class GpuResourceRegistry;
class EngineSignals;
class RendererFactoryTable;
class FrameRendererFactory;
class InputSystem;
struct ImGuiSharedState;
class PluginSystem;

// The process-wide objects a host creates at start-up, published in the engine globals by the
// constructor. The timer thread runs from the start (the log's listeners are flushed on it); the
// task system's workers are the host's to start. The destructor first unloads the plug-ins that are
// still loaded, while every object they were handed is alive, then stops the threads, clears the
// globals and destroys the objects in reverse order of creation, the log last.
class EngineSingletons {
public:
    EngineSingletons();
    ~EngineSingletons();
    EngineSingletons(const EngineSingletons&) = delete;
    EngineSingletons& operator=(const EngineSingletons&) = delete;

    LogSystem& log_system() { return *log_system_; }
    timer_thread& timer() { return *timer_; }
    task_system& tasks() { return *tasks_; }
    Profiler& profiler() { return *profiler_; }
    Filesystem& filesystem() { return *filesystem_; }
    GpuResourceRegistry& gpu_resource_registry() { return *gpu_resource_registry_; }
    EngineSignals& engine_signals() { return *engine_signals_; }
    RendererFactoryTable& renderer_factory_table() { return *renderer_factory_table_; }
    FrameRendererFactory& frame_renderer_factory() { return *frame_renderer_factory_; }
    InputSystem& input_system() { return *input_system_; }
    ImGuiSharedState& imgui_shared_state() { return *imgui_shared_state_; }
    PluginSystem& plugin_system() { return *plugin_system_; }

private:
    std::unique_ptr<LogSystem> log_system_;
    std::unique_ptr<timer_thread> timer_;
    std::unique_ptr<task_system> tasks_;
    std::unique_ptr<Profiler> profiler_;
    std::unique_ptr<Filesystem> filesystem_;
    std::unique_ptr<GpuResourceRegistry> gpu_resource_registry_;
    std::unique_ptr<EngineSignals> engine_signals_;
    std::unique_ptr<RendererFactoryTable> renderer_factory_table_;
    std::unique_ptr<FrameRendererFactory> frame_renderer_factory_;
    std::unique_ptr<InputSystem> input_system_;
    std::unique_ptr<ImGuiSharedState> imgui_shared_state_;
    std::unique_ptr<PluginSystem> plugin_system_;
};

}  // namespace kesta
