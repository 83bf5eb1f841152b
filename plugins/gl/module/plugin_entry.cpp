// The three entry points of the OpenGL module, the only symbols it exports.

#include <cstdint>

#include "plugins/gl/gl_plugin_description.h"
#include "plugins/plugin_context.h"

#define NORVANE_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

NORVANE_PLUGIN_EXPORT kesta::PluginDescription PluginGetDescription() { return kesta::GLPluginDescription(); }

NORVANE_PLUGIN_EXPORT std::int32_t PluginLoad(const kesta::PluginContext& context)
{
    kesta::AdoptPluginContext(context);
    kesta::RegisterGLRenderer();
    return 0;
}

NORVANE_PLUGIN_EXPORT void PluginUnload()
{
    kesta::UnregisterGLRenderer();
    kesta::ReleasePluginContext();
}
