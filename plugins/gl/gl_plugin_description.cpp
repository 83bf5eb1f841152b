#include "plugins/gl/gl_plugin_description.h"

#include "engine/renderer/renderer_factory.h"
#include "plugins/gl/gl_renderer.h"
#include "plugins/gl/gl_renderer_factory.h"

namespace kesta {

namespace {

// The compiler family this module was built with; nobody compares it, it is for reports.
constexpr const char* kToolchain =
#if defined(__clang__)
    "Clang";
#elif defined(__GNUC__)
    "GCC";
#else
    "unknown";
#endif

}  // namespace

PluginDescription GLPluginDescription()
{
    return PluginDescription{
        kPluginApiVersion,
        kGLRendererName,
        "1.0.0",
        "OpenGL 3.3 renderer (headless through EGL)",
        kPluginHostVersion,
        kToolchain,
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
