#pragma once
// The binary contract between a host and its plug-ins: three C entry points and two plain records.

#include <cstdint>

#include "foundation/assert/assertion.h"

namespace kesta {

class PluginSystem;
class TypeRegistry;
class LogSystem;
class task_system;
class timer_thread;
class Filesystem;
class InputSystem;
class Plus;
class WindowSystemSignals;
class Profiler;
class EngineSignals;
class SerializerList;
class RendererFactoryTable;
class PhysicSystemFactoryTable;
class FrameRendererFactory;
class ScriptEngineFactoryTable;
class PictureRendererFactoryTable;
class ResourceLoaderMap;
class PictureFormatList;
struct ImGuiSharedState;
class GpuResourceRegistry;

// Returned by value from PluginGetDescription. The strings point to static text of the library and
// stay valid only while it is loaded.
struct PluginDescription {
    std::int32_t api_version;
    const char* name;
    const char* version;
    const char* description;
    std::int32_t host_version;
    const char* toolchain;
    std::int32_t build_flags;
};

// The host's process-wide singletons, handed to PluginLoad. All pointers are non-owning.
struct PluginContext {
    PluginSystem* plugin_system;
    TypeRegistry* type_registry;
    LogSystem* log_system;
    task_system* tasks;
    timer_thread* timer;
    Filesystem* filesystem;
    InputSystem* input_system;
    Plus* plus;
    WindowSystemSignals* window_system_signals;
    Profiler* profiler;
    EngineSignals* engine_signals;
    SerializerList* serializer_list;
    RendererFactoryTable* renderer_factory_table;
    PhysicSystemFactoryTable* physic_system_factory_table;
    FrameRendererFactory* frame_renderer_factory;
    ScriptEngineFactoryTable* script_engine_factory_table;
    PictureRendererFactoryTable* picture_renderer_factory_table;
    ResourceLoaderMap* resource_loader_map;
    PictureFormatList* picture_format_list;
    ImGuiSharedState* imgui_shared_state;
    GpuResourceRegistry* gpu_resource_registry;
    AssertionHandler assertion_handler;
};

static_assert(sizeof(PluginContext) == 22 * sizeof(void*), "22 pointers, nothing between them");

// The versions a host accepts, and the build flag it tests.
inline constexpr std::int32_t kPluginApiVersion = 1;
inline constexpr std::int32_t kPluginHostVersion = 1;
inline constexpr std::int32_t kPluginBuildFlagTested = 2;

// The compiler family the including code is built with, for a description's `toolchain`; nobody
// compares it, it is for reports.
inline constexpr const char* kPluginToolchain =
#if defined(__clang__)
    "Clang";
#elif defined(__GNUC__)
    "GCC";
#else
    "unknown";
#endif

using PluginGetDescriptionFunction = PluginDescription (*)();
using PluginLoadFunction = std::int32_t (*)(const PluginContext&);
using PluginUnloadFunction = void (*)();

}  // namespace kesta

// The entry points every plug-in library exports with C linkage.
extern "C" {
kesta::PluginDescription PluginGetDescription();
std::int32_t PluginLoad(const kesta::PluginContext& context);
void PluginUnload();
}
