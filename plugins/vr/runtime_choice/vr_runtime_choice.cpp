#include "plugins/vr/runtime_choice/vr_runtime_choice.h"

#include <cstdlib>

#include "plugins/vr/openvr/openvr_paths.h"

namespace kesta {

VRRuntimeChoice ChooseVRRuntime(const std::string& simulated_runtime_folder)
{
    VRRuntimeChoice choice;
    OpenVRPaths paths;
    const std::string registry = OpenVRPathsFile();
    if (FindOpenVRPaths(paths) == vr::VRInitError_None) {
        const char* runtime_override = std::getenv("VR_OVERRIDE");
        const bool by_variable = runtime_override != nullptr && runtime_override[0] != '\0';
        choice.user_runtime = true;
        choice.runtime_folder = paths.runtime;
        choice.reason = by_variable ? "VR_OVERRIDE names it" : registry + " names it";
        return choice;
    }
    choice.runtime_folder = simulated_runtime_folder;
    choice.reason = "no OpenVR runtime is named by VR_OVERRIDE or " +
                    (registry.empty() ? std::string("an openvrpaths.vrpath file") : registry);
    return choice;
}

void SelectSimulatedRuntime(const std::string& runtime_folder, const std::string& state_folder,
                            const std::string& config_file)
{
    setenv("VR_OVERRIDE", runtime_folder.c_str(), 1);
    setenv("VR_CONFIG_PATH", state_folder.c_str(), 1);
    setenv("VR_LOG_PATH", state_folder.c_str(), 1);
    setenv("NORVANE_VRSIM_CONFIG", config_file.c_str(), 1);
}

}  // namespace kesta
