#include "plugins/engine_singletons.h"

#include "engine/engine_signals.h"
#include "engine/frame_renderer_factory.h"
#include "engine/renderer/gpu_resource_registry.h"
#include "engine/renderer/renderer_factory.h"
#include "foundation/log/log.h"
#include "foundation/profiler/profiler.h"
#include "foundation/task/task_system.h"
#include "foundation/time/timer_thread.h"
#include "io/filesystem.h"
#include "overlay/imgui_shared_state.h"
#include "platform/input/input_system.h"
#include "platform/plugin/plugin_system.h"
#include "plugins/plugin_context.h"

namespace kesta {

namespace {
// The timer's sleep between ticks: the log flushes its listeners at most every 5 ms.
constexpr std::int64_t kTimerTickMs = 5;
}  // namespace

EngineSingletons::EngineSingletons()
    : log_system_(std::make_unique<LogSystem>()),
      timer_(std::make_unique<timer_thread>("Timer")),
      tasks_(std::make_unique<task_system>()),
      profiler_(std::make_unique<Profiler>()),
      filesystem_(std::make_unique<Filesystem>()),
      gpu_resource_registry_(std::make_unique<GpuResourceRegistry>()),
      engine_signals_(std::make_unique<EngineSignals>()),
      renderer_factory_table_(std::make_unique<RendererFactoryTable>()),
      frame_renderer_factory_(std::make_unique<FrameRendererFactory>()),
      input_system_(std::make_unique<InputSystem>()),
      imgui_shared_state_(std::make_unique<ImGuiSharedState>()),
      plugin_system_(std::make_unique<PluginSystem>(&MakePluginContext))
{
    g_log_system = log_system_.get();
    g_timer_thread = timer_.get();
    g_task_system = tasks_.get();
    g_profiler = profiler_.get();
    g_filesystem = filesystem_.get();
    g_gpu_resource_registry = gpu_resource_registry_.get();
    g_engine_signals = engine_signals_.get();
    g_renderer_factory_table = renderer_factory_table_.get();
    g_frame_renderer_factory = frame_renderer_factory_.get();
    g_input_system = input_system_.get();
    g_imgui_shared_state = imgui_shared_state_.get();
    g_plugin_system = plugin_system_.get();
    timer_->start(kTimerTickMs);
}

EngineSingletons::~EngineSingletons()
{
    // The host has freed its render system by now; the plug-ins go before anything they were given.
    plugin_system_->UnloadPlugins();
    g_plugin_system = nullptr;
    plugin_system_.reset();
    tasks_->stop();
    g_imgui_shared_state = nullptr;
    g_input_system = nullptr;
    g_frame_renderer_factory = nullptr;
    g_renderer_factory_table = nullptr;
    g_engine_signals = nullptr;
    g_gpu_resource_registry = nullptr;
    g_filesystem = nullptr;
    g_profiler = nullptr;
    g_task_system = nullptr;
    imgui_shared_state_.reset();
    input_system_.reset();
    frame_renderer_factory_.reset();
    renderer_factory_table_.reset();
    engine_signals_.reset();
    gpu_resource_registry_.reset();
    filesystem_.reset();
    profiler_.reset();
    tasks_.reset();
    // The log's pending batch is flushed on the timer: stop the timer before the log goes.
    timer_->stop();
    g_timer_thread = nullptr;
    timer_.reset();
    g_log_system = nullptr;
    log_system_.reset();
}

}  // namespace kesta
