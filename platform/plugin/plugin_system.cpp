#include "platform/plugin/plugin_system.h"

namespace kesta {

PluginSystem* g_plugin_system = nullptr;

}  // namespace kesta
