#include "plugins/plugin_context.h"

#include <imgui.h>

#include "engine/engine_signals.h"
#include "engine/frame_renderer_factory.h"
#include "engine/picture/picture_format_list.h"
#include "engine/plugin_maps.h"
#include "engine/plus.h"
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
#include "platform/window/window_system_signals.h"
#include "reflection/serializer_list.h"
#include "reflection/type_registry.h"

namespace kesta {

namespace {
SignalConnection g_imgui_connection = 0;
}

PluginContext MakePluginContext()
{
    return PluginContext{
        g_plugin_system,
        g_type_registry,
        g_log_system,
        g_task_system,
        g_timer_thread,
        g_filesystem,
        g_input_system,
        g_plus,
        g_window_system_signals,
        g_profiler,
        g_engine_signals,
        g_serializer_list,
        g_renderer_factory_table,
        g_physic_system_factory_table,
        g_frame_renderer_factory,
        g_script_engine_factory_table,
        g_picture_renderer_factory_table,
        g_resource_loader_map,
        g_picture_format_list,
        g_imgui_shared_state,
        g_gpu_resource_registry,
        g_assertion_handler,
    };
}

void AdoptPluginContext(const PluginContext& context)
{
    g_assertion_handler = context.assertion_handler;
    g_plugin_system = context.plugin_system;
    g_type_registry = context.type_registry;
    g_log_system = context.log_system;
    g_task_system = context.tasks;
    g_timer_thread = context.timer;
    g_filesystem = context.filesystem;
    g_input_system = context.input_system;
    g_plus = context.plus;
    g_window_system_signals = context.window_system_signals;
    g_profiler = context.profiler;
    g_engine_signals = context.engine_signals;
    g_serializer_list = context.serializer_list;
    g_renderer_factory_table = context.renderer_factory_table;
    g_physic_system_factory_table = context.physic_system_factory_table;
    g_frame_renderer_factory = context.frame_renderer_factory;
    g_script_engine_factory_table = context.script_engine_factory_table;
    g_picture_renderer_factory_table = context.picture_renderer_factory_table;
    g_resource_loader_map = context.resource_loader_map;
    g_picture_format_list = context.picture_format_list;
    g_imgui_shared_state = context.imgui_shared_state;
    g_gpu_resource_registry = context.gpu_resource_registry;

    // Dear ImGui keeps its current context in a global of each library that links it: this module's
    // copy must be told every change the host makes.
    if (g_imgui_shared_state)
        g_imgui_connection =
            g_imgui_shared_state->context_changed.Connect([](ImGuiContext* imgui) { ImGui::SetCurrentContext(imgui); });
}

void ReleasePluginContext()
{
    if (g_imgui_shared_state && g_imgui_connection)
        g_imgui_shared_state->context_changed.Disconnect(g_imgui_connection);
    g_imgui_connection = 0;
}

}  // namespace kesta
