// A small host: starts the engine's process-wide objects and workers, opens a renderer (the
// recording back end, which needs no GPU), loads every plug-in of its plug-in folder, shows their
// descriptions, and shuts down in order: the renderer first, then the plug-ins, then the
// process-wide objects.

#include <cstdio>
#include <memory>
#include <string>

#include "engine/frame_renderer_factory.h"
#include "engine/renderer/recording_renderer.h"
#include "engine/renderer/render_thread.h"
#include "engine/renderer/renderer_factory.h"
#include "foundation/log/log.h"
#include "foundation/task/task_system.h"
#include "io/filesystem.h"
#include "platform/plugin/plugin_system.h"
#include "plugins/engine_singletons.h"

namespace {

void print_description(const kesta::PluginDescription& d)
{
    std::printf("Plug-in description\n");
    std::printf("  api_version   %d\n", d.api_version);
    std::printf("  name          %s\n", d.name);
    std::printf("  version       %s\n", d.version);
    std::printf("  description   %s\n", d.description);
    std::printf("  host_version  %d\n", d.host_version);
    std::printf("  toolchain     %s\n", d.toolchain);
    std::printf("  build_flags   %d\n", d.build_flags);
}

// Opens the renderer on the render worker, where every GPU call belongs, and waits for its default
// shader, which the render worker finishes after Open.
bool open_renderer(kesta::EngineSingletons& engine, const std::shared_ptr<kesta::Renderer>& renderer)
{
    kesta::RunOnRenderThreadAndWait([&] { renderer->Open(); });
    engine.tasks().wait_for_all();
    const auto& shader = renderer->GetDefaultShader();
    std::printf("Renderer %s open: %s; core resources on '@core/': %s; default shader: %s\n",
                renderer->GetName().c_str(), renderer->IsOpen() ? "yes" : "no",
                engine.filesystem().GetDriver("@core/") ? "mounted" : "missing",
                !shader ? "missing" : (shader->IsReady() ? "ready" : (shader->IsFailed() ? "failed" : "pending")));
    return renderer->IsOpen();
}

// Loads every plug-in of the install folder (and of NORVANE_PLUGINS_PATH) through the plug-in host.
int load_plugins(kesta::EngineSingletons& engine, const std::string& install_path)
{
    kesta::PluginSystem& plugins = engine.plugin_system();
    plugins.SetDefaultSearchPaths(install_path);
    const unsigned loaded = plugins.LoadPlugins();
    for (const auto& record : plugins.plugins())
        print_description(record->description);
    std::printf("Frame renderers:");
    for (const auto& [name, make] : engine.frame_renderer_factory())
        std::printf(" %s", name.c_str());
    std::printf("%s\n", engine.frame_renderer_factory().empty() ? " (none yet)" : "");
    return loaded > 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv)
{
    // The folder the plug-ins are installed in: for the build tree, where the modules are built.
    const std::string install_path = argc > 1 ? argv[1] : NORVANE_PLUGIN_DIR;
    int status = 0;
    {
        kesta::EngineSingletons engine;
        // Show the engine's notices too, not only warnings and errors.
        engine.log_system().SetOutputMask(kesta::kLogNormal | kesta::kLogWarn | kesta::kLogError);
        engine.renderer_factory_table()["Recording"] = [] {
            return kesta::AdoptRenderer(std::make_shared<kesta::RecordingRenderer>());
        };
        engine.tasks().start(0);
        std::printf("Task workers: %llu\n", static_cast<unsigned long long>(engine.tasks().get_worker_count()));

        std::shared_ptr<kesta::Renderer> renderer = engine.renderer_factory_table().at("Recording")();
        if (!open_renderer(engine, renderer))
            status = 1;
        if (status == 0)
            status = load_plugins(engine, install_path);

        kesta::RunOnRenderThreadAndWait([&] { renderer->Close(); });
        renderer.reset();
        engine.tasks().wait_for_all();
        // With the renderer gone, the plug-ins go, before the log, timer and task system stop.
        engine.plugin_system().UnloadPlugins();
        std::printf("Plug-ins unloaded\n");
    }
    std::printf("Shut down\n");
    return status;
}
