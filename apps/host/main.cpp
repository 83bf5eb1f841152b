// A small host: starts the engine's process-wide objects and workers, opens a renderer (the
// recording back end, which needs no GPU), loads the VR module, shows its description, loads and
// unloads it, and shuts down in order, destroying the process-wide objects last.

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
#include "platform/plugin/plugin_library.h"
#include "plugins/engine_singletons.h"
#include "plugins/plugin_context.h"

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

int run_plugin(kesta::EngineSingletons& engine, const std::string& module_path)
{
    kesta::PluginLibrary library;
    if (!library.Open(module_path)) {
        kesta::error(library.error());
        return 1;
    }
    std::printf("Loaded %s\n", module_path.c_str());
    const kesta::PluginDescription description = library.get_description();
    print_description(description);
    if (description.api_version != kesta::kPluginApiVersion || description.host_version != kesta::kPluginHostVersion) {
        kesta::error("The plug-in's versions do not match this host");
        return 1;
    }
    const std::int32_t result = library.load(kesta::MakePluginContext());
    std::printf("PluginLoad returned %d\n", result);
    std::printf("Frame renderers:");
    for (const auto& [name, make] : engine.frame_renderer_factory())
        std::printf(" %s", name.c_str());
    std::printf("%s\n", engine.frame_renderer_factory().empty() ? " (none yet)" : "");
    library.unload();
    library.Close();
    std::printf("Plug-in unloaded\n");
    return result == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv)
{
    const std::string module_path = argc > 1 ? argv[1] : NORVANE_VR_MODULE_PATH;
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
            status = run_plugin(engine, module_path);

        kesta::RunOnRenderThreadAndWait([&] { renderer->Close(); });
        renderer.reset();
        engine.tasks().wait_for_all();
        std::printf("Shut down\n");
    }
    return status;
}
