// A plug-in for tests of the plug-in context: it adopts the host's objects with the same code as the
// VR module, then uses every adopted object once, so that the host can see an effect on each of its
// own objects. Objects whose types the engine only names, with no definition yet, are marked by
// writing the slot's name into their first bytes.

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "engine/engine_signals.h"
#include "engine/frame_renderer_factory.h"
#include "engine/picture/picture_format_list.h"
#include "engine/plugin_maps.h"
#include "engine/plus.h"
#include "engine/renderer/gpu_resource_registry.h"
#include "engine/renderer/renderer_factory.h"
#include "foundation/assert/assertion.h"
#include "foundation/format.h"
#include "foundation/log/log.h"
#include "foundation/profiler/profiler.h"
#include "foundation/task/task.h"
#include "foundation/task/task_system.h"
#include "foundation/time/timer_thread.h"
#include "io/filesystem.h"
#include "overlay/imgui_shared_state.h"
#include "platform/input/input_system.h"
#include "platform/plugin/plugin_system.h"
#include "platform/window/window_system_signals.h"
#include "plugins/plugin_context.h"
#include "reflection/serializer_list.h"
#include "reflection/type_registry.h"

#define NORVANE_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

namespace kesta {
namespace {

template <typename T>
void mark(T* object, const char* slot)
{
    if (object)
        std::memcpy(reinterpret_cast<char*>(object), slot, std::strlen(slot) + 1);
}

// Reports the host task system's cycle, which the system stamps on the task when it schedules it.
class ReportCycleTask final : public task {
public:
    void run() override { log((format("adoption probe: task ran at cycle %1") << scheduled_cycle).str()); }
};

void use_every_adopted_object()
{
    mark(g_plugin_system, "plugin_system");
    mark(g_type_registry, "type_registry");
    mark(g_input_system, "input_system");
    mark(g_plus, "plus");
    mark(g_window_system_signals, "window_system_signals");
    mark(g_serializer_list, "serializer_list");
    mark(g_physic_system_factory_table, "physic_system_factory_table");
    mark(g_script_engine_factory_table, "script_engine_factory_table");
    mark(g_picture_renderer_factory_table, "picture_renderer_factory_table");
    mark(g_resource_loader_map, "resource_loader_map");
    mark(g_picture_format_list, "picture_format_list");

    if (g_log_system)
        log("adoption probe: log");
    if (g_task_system)
        g_task_system->run_task(std::make_shared<ReportCycleTask>(), nullptr);
    if (g_timer_thread)
        g_timer_thread->run_every([] {}, 3'600'000'000'000);
    if (g_filesystem) {
        const std::string text = "written by the probe";
        g_filesystem->DataToFile("host/probe.txt", text.data(), text.size());
    }
    if (g_profiler)
        g_profiler->EndSection(g_profiler->BeginSection("adoption probe"));
    if (g_engine_signals)
        g_engine_signals->renderer_deleted.Connect([](Renderer*) {});
    if (g_renderer_factory_table)
        (*g_renderer_factory_table)["adoption probe"] = [] { return std::shared_ptr<Renderer>(); };
    if (g_frame_renderer_factory)
        (*g_frame_renderer_factory)["adoption probe"] = [] { return std::shared_ptr<FrameRenderer>(); };
    if (g_gpu_resource_registry)
        g_gpu_resource_registry->Add(nullptr, [] {});
    // The ImGui shared state is used by the adoption itself, which connects to it.
    // Fails on purpose once a handler was adopted: the host's handler must receive the failure.
    KESTA_ASSERT_MSG(g_assertion_handler == nullptr, "adoption probe");
}

}  // namespace
}  // namespace kesta

NORVANE_PLUGIN_EXPORT kesta::PluginDescription PluginGetDescription()
{
    return kesta::PluginDescription{kesta::kPluginApiVersion,     "AdoptionProbe",           "1.0",
                                    "Uses every adopted object",  kesta::kPluginHostVersion, "",
                                    kesta::kPluginBuildFlagTested};
}

NORVANE_PLUGIN_EXPORT std::int32_t PluginLoad(const kesta::PluginContext& context)
{
    kesta::AdoptPluginContext(context);
    kesta::use_every_adopted_object();
    return 0;
}

NORVANE_PLUGIN_EXPORT void PluginUnload() { kesta::ReleasePluginContext(); }
