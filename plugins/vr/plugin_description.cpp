#include "plugins/vr/plugin_description.h"

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

PluginDescription VRPluginDescription()
{
    return PluginDescription{
        kPluginApiVersion,      "OpenVR", "0.9.2", "OpenVR frame renderer", kPluginHostVersion, kToolchain,
        kPluginBuildFlagTested,
    };
}

}  // namespace kesta
