#pragma once

#include "platform/plugin/plugin_api.h"

namespace kesta {

// The VR module's description. Pure: touches no global, so a host may call it before loading.
PluginDescription VRPluginDescription();

}  // namespace kesta
