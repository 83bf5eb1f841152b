// A small host: creates the process-wide objects, loads the VR module, shows its description,
// loads and unloads it, and shuts down with the singletons destroyed last.

#include <cstdio>
#include <string>

#include "engine/frame_renderer_factory.h"
#include "foundation/log/log.h"
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

}  // namespace

int main(int argc, char** argv)
{
    const std::string module_path = argc > 1 ? argv[1] : NORVANE_VR_MODULE_PATH;
    int status = 0;
    {
        kesta::EngineSingletons singletons;
        kesta::PluginLibrary library;
        if (!library.Open(module_path)) {
            kesta::error(library.error());
            return 1;
        }
        std::printf("Loaded %s\n", module_path.c_str());
        const kesta::PluginDescription description = library.get_description();
        print_description(description);
        if (description.api_version != kesta::kPluginApiVersion ||
            description.host_version != kesta::kPluginHostVersion) {
            kesta::error("The plug-in's versions do not match this host");
            return 1;
        }
        const std::int32_t result = library.load(kesta::MakePluginContext());
        std::printf("PluginLoad returned %d\n", result);
        if (result != 0)
            status = 1;
        std::printf("Frame renderers:");
        for (const auto& [name, make] : singletons.frame_renderer_factory())
            std::printf(" %s", name.c_str());
        std::printf("%s\n", singletons.frame_renderer_factory().empty() ? " (none yet)" : "");
        library.unload();
        library.Close();
        std::printf("Plug-in unloaded\n");
    }
    return status;
}
