#pragma once

#include "platform/plugin/plugin_api.h"

namespace kesta {

// The OpenGL module's description. Pure: touches no global, so a host may call it before loading.
PluginDescription GLPluginDescription();

// The name the module's renderer is registered under in the renderer factory table.
inline constexpr const char* kGLRendererName = "OpenGL";

// Adds the OpenGL renderer to the host's renderer factory table, and takes it out again.
void RegisterGLRenderer();
void UnregisterGLRenderer();

}  // namespace kesta
