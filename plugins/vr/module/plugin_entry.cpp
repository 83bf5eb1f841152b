// The three entry points of the VR module, the only symbols it exports.

#include <cstdint>

#include "plugins/plugin_context.h"
#include "plugins/vr/plugin_description.h"
#include "plugins/vr/vr_module_registration.h"

#define NORVANE_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

NORVANE_PLUGIN_EXPORT kesta::PluginDescription PluginGetDescription() { return kesta::VRPluginDescription(); }

NORVANE_PLUGIN_EXPORT std::int32_t PluginLoad(const kesta::PluginContext& context)
{
    kesta::AdoptPluginContext(context);
    kesta::RegisterModule();
    return 0;
}

NORVANE_PLUGIN_EXPORT void PluginUnload()
{
    kesta::UnregisterModule();
    kesta::ReleasePluginContext();
}
