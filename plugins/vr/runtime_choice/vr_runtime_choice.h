#pragma once
// Which OpenVR runtime a host program uses, decided before the VR module opens its session. The
// header knows nothing of OpenVR, so that host programs may include it.

#include <string>

namespace kesta {

struct VRRuntimeChoice {
    bool user_runtime = false;   // true: the user's environment names a runtime, used as it stands
    std::string runtime_folder;  // where the client layer will load bin/linux64/vrclient.so from
    std::string reason;          // why, in words for the user
};

// The runtime that VR_OVERRIDE or the user's openvrpaths.vrpath names, found exactly as the client
// layer finds it; when neither names one, the simulated runtime in `simulated_runtime_folder`.
VRRuntimeChoice ChooseVRRuntime(const std::string& simulated_runtime_folder);

// Points the client layer at the simulated runtime for this process: VR_OVERRIDE, VR_CONFIG_PATH and
// VR_LOG_PATH (all three, so that no registry file of the user is read) and NORVANE_VRSIM_CONFIG.
void SelectSimulatedRuntime(const std::string& runtime_folder, const std::string& state_folder,
                            const std::string& config_file);

}  // namespace kesta
