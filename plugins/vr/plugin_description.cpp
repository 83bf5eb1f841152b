#include "plugins/vr/plugin_description.h"

namespace kesta {

PluginDescription VRPluginDescription()
{
    return PluginDescription{
        kPluginApiVersion,      "OpenVR", "0.9.2", "OpenVR frame renderer", kPluginHostVersion, kPluginToolchain,
        kPluginBuildFlagTested,
    };
}

}  // namespace kesta
