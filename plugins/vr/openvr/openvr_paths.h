#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "plugins/vr/openvr/openvr.h"

namespace kesta {

// Where the OpenVR runtime and its configuration and log folders are, as a client library finds them.
struct OpenVRPaths {
    std::string runtime;
    std::string config;
    std::string log;
    std::vector<std::string> external_drivers;
};

// $XDG_CONFIG_HOME/openvr/openvrpaths.vrpath, else $HOME/.config/openvr/openvrpaths.vrpath; empty when
// neither variable is set.
std::string OpenVRPathsFile();

// Reads the registry file's JSON object ("runtime", "config", "log": first entry of each string array;
// "external_drivers": all of them). False when the text is not such an object.
bool ParseOpenVRPaths(std::string_view json, OpenVRPaths& paths);

// VR_OVERRIDE, VR_CONFIG_PATH and VR_LOG_PATH override the file's entries; when all three are set the
// file is not read at all. Init_PathRegistryNotFound when no runtime folder is known.
vr::EVRInitError FindOpenVRPaths(OpenVRPaths& paths);

}  // namespace kesta
