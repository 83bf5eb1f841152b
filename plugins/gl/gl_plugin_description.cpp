#include "plugins/gl/gl_plugin_description.h"

#include "engine/renderer/renderer_factory.h"
#include "plugins/gl/gl_renderer.h"
#include "plugins/gl/gl_renderer_factory.h"

namespace kesta {

PluginDescription GLPluginDescription()
{
    return PluginDescription{
        kPluginApiVersion,
        kGLRendererName,
        "1.0.0",
        "OpenGL 3.3 renderer (headless through EGL)",
        kPluginHostVersion,
        kPluginToolchain,
        kPluginBuildFlagTested,
    };
}

void RegisterGLRenderer()
{
    if (g_renderer_factory_table)
        (*g_renderer_factory_table)[kGLRendererName] = [] {
            return MakeGLRenderer(GLRenderer::kDefaultOutputWidth, GLRenderer::kDefaultOutputHeight);
        };
}

void UnregisterGLRenderer()
{
    if (g_renderer_factory_table)
        g_renderer_factory_table->erase(kGLRendererName);
}

}  // namespace kesta
