#pragma once
// What the simulated runtime recorded during a session, read through its introspection functions on
// the vrclient.so that the VR module has loaded. For the summary a host prints and for its tests.

#include <cstdint>
#include <string>
#include <vector>

namespace kesta {

struct SimulatedHapticPulse {
    std::uint64_t frame = 0;
    std::uint32_t device_index = 0;
    std::uint32_t duration_microseconds = 0;
};

struct SimulatedRuntimeReport {
    std::uint64_t frames = 0;  // WaitGetPoses calls since the session began
    std::uint64_t submissions = 0;
    std::vector<SimulatedHapticPulse> haptic_pulses;
};

// False when the simulated runtime of `runtime_folder` is not loaded in this process (another
// runtime is in use, or no session is open). Call it while the session is open, between frames.
bool ReadSimulatedRuntimeReport(const std::string& runtime_folder, SimulatedRuntimeReport& report);

}  // namespace kesta
