// A plug-in really loaded with dlopen adopts a host's context and uses each of the 22 objects once;
// every use must land on the host's own object. A slot that the adoption dropped or mixed up shows
// as a missing effect, not only as a different pointer.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

#include "engine/engine_signals.h"
#include "engine/frame_renderer_factory.h"
#include "engine/renderer/gpu_resource_registry.h"
#include "engine/renderer/renderer_factory.h"
#include "foundation/log/log.h"
#include "foundation/profiler/profiler.h"
#include "foundation/task/task_system.h"
#include "foundation/time/timer_thread.h"
#include "io/filesystem.h"
#include "io/memory_file_driver.h"
#include "overlay/imgui_shared_state.h"
#include "platform/plugin/plugin_api.h"

namespace kesta {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

// Memory standing in for an object whose type the engine only names; the plug-in writes the slot's
// name into it.
struct OpaqueObject {
    std::array<char, 64> bytes{};
    template <typename T>
    T* as()
    {
        return reinterpret_cast<T*>(bytes.data());
    }
    std::string text() const { return std::string(bytes.data()); }
};

struct AssertionCall {
    std::string function;
    std::string detail;
    int count = 0;
};
AssertionCall g_assertion_call;

void record_assertion(const char*, int, const char* function, const char*, const char* detail)
{
    g_assertion_call.function = function;
    g_assertion_call.detail = detail ? detail : "";
    ++g_assertion_call.count;
}

void discard_log_line(const std::string&, const std::string&, const std::string&, std::uint32_t, bool) {}

struct LibraryCloser {
    void operator()(void* library) const { dlclose(library); }
};

TEST(PluginContextAdoption, EveryAdoptedObjectIsTheHostsOwn)
{
    // Released last: the host's objects keep functions whose code lies in the library.
    const std::unique_ptr<void, LibraryCloser> library(dlopen(NORVANE_ADOPTION_PROBE_PATH, RTLD_NOW | RTLD_LOCAL));
    ASSERT_TRUE(library) << dlerror();
    const auto load = reinterpret_cast<PluginLoadFunction>(dlsym(library.get(), "PluginLoad"));
    const auto unload = reinterpret_cast<PluginUnloadFunction>(dlsym(library.get(), "PluginUnload"));
    ASSERT_TRUE(load && unload);

    LogSystem log_system;
    log_system.SetOutputFunction(&discard_log_line);
    task_system tasks;  // no workers: a task runs at once on the caller
    for (int i = 0; i < 7; ++i)
        tasks.advance_cycle();
    timer_thread timer("Probe timer");
    Filesystem filesystem;
    filesystem.Mount(std::make_shared<MemoryFileDriver>(), "host/");
    Profiler profiler;
    EngineSignals engine_signals;
    RendererFactoryTable renderer_factories;
    FrameRendererFactory frame_renderer_factory;
    ImGuiSharedState imgui_shared_state;
    GpuResourceRegistry gpu_resources;
    OpaqueObject plugin_system, type_registry, input_system, plus, window_system_signals, serializer_list,
        physic_factories, script_factories, picture_renderer_factories, resource_loaders, picture_formats;
    g_assertion_call = {};

    const PluginContext context{
        plugin_system.as<PluginSystem>(),
        type_registry.as<TypeRegistry>(),
        &log_system,
        &tasks,
        &timer,
        &filesystem,
        input_system.as<InputSystem>(),
        plus.as<Plus>(),
        window_system_signals.as<WindowSystemSignals>(),
        &profiler,
        &engine_signals,
        serializer_list.as<SerializerList>(),
        &renderer_factories,
        physic_factories.as<PhysicSystemFactoryTable>(),
        &frame_renderer_factory,
        script_factories.as<ScriptEngineFactoryTable>(),
        picture_renderer_factories.as<PictureRendererFactoryTable>(),
        resource_loaders.as<ResourceLoaderMap>(),
        picture_formats.as<PictureFormatList>(),
        &imgui_shared_state,
        &gpu_resources,
        &record_assertion,
    };
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(load(context), 0);
    ::testing::internal::GetCapturedStderr();

    EXPECT_EQ(plugin_system.text(), "plugin_system");
    EXPECT_EQ(type_registry.text(), "type_registry");
    EXPECT_EQ(input_system.text(), "input_system");
    EXPECT_EQ(plus.text(), "plus");
    EXPECT_EQ(window_system_signals.text(), "window_system_signals");
    EXPECT_EQ(serializer_list.text(), "serializer_list");
    EXPECT_EQ(physic_factories.text(), "physic_system_factory_table");
    EXPECT_EQ(script_factories.text(), "script_engine_factory_table");
    EXPECT_EQ(picture_renderer_factories.text(), "picture_renderer_factory_table");
    EXPECT_EQ(resource_loaders.text(), "resource_loader_map");
    EXPECT_EQ(picture_formats.text(), "picture_format_list");

    const std::string tail = log_system.GetTail();
    EXPECT_THAT(tail, HasSubstr("adoption probe: log\n"));
    EXPECT_THAT(tail, HasSubstr("adoption probe: task ran at cycle 7\n"));
    EXPECT_EQ(timer.periodic_count(), 1u);
    EXPECT_EQ(filesystem.FileToString("host/probe.txt"), "written by the probe");
    profiler.EndFrame();
    const ProfileFrame frame = profiler.GetLastFrame();
    ASSERT_EQ(frame.sections.size(), 1u);
    EXPECT_EQ(frame.sections[0].name, "adoption probe");
    EXPECT_EQ(engine_signals.renderer_deleted.SlotCount(), 1u);
    EXPECT_EQ(renderer_factories.count("adoption probe"), 1u);
    EXPECT_EQ(frame_renderer_factory.count("adoption probe"), 1u);
    EXPECT_EQ(gpu_resources.PendingCount(), 1u);
    EXPECT_EQ(imgui_shared_state.context_changed.SlotCount(), 1u);
    ASSERT_EQ(g_assertion_call.count, 1);
    EXPECT_EQ(g_assertion_call.detail, "adoption probe");
    EXPECT_THAT(g_assertion_call.function, EndsWith("::use_every_adopted_object"));
    // The assertion's report went to the host's log too.
    EXPECT_THAT(tail, HasSubstr("ASSERT(g_assertion_handler == nullptr) failed!"));

    unload();
    EXPECT_EQ(imgui_shared_state.context_changed.SlotCount(), 0u);
}

}  // namespace
}  // namespace kesta
