#pragma once

namespace kesta {

// Scans plug-in folders, loads and unloads plug-in libraries.
class PluginSystem;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern PluginSystem* g_plugin_system;

}  // namespace kesta
