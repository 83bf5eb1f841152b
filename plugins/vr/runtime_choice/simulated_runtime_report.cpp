#include "plugins/vr/runtime_choice/simulated_runtime_report.h"

#include <dlfcn.h>

#include "plugins/vr/simulator/vrsim_api.h"

namespace kesta {

namespace {

template <typename Function>
Function Find(void* library, const char* name)
{
    return reinterpret_cast<Function>(dlsym(library, name));
}

}  // namespace

bool ReadSimulatedRuntimeReport(const std::string& runtime_folder, SimulatedRuntimeReport& report)
{
    // RTLD_NOLOAD: only a runtime that the client layer has loaded already; this takes a reference
    // that is dropped again below.
    const std::string path = runtime_folder + "/bin/linux64/vrclient.so";
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
    if (library == nullptr)
        return false;
    const auto frame_count = Find<decltype(&VrSimFrameCount)>(library, "VrSimFrameCount");
    const auto submission_count = Find<decltype(&VrSimSubmissionCount)>(library, "VrSimSubmissionCount");
    const auto pulse_count = Find<decltype(&VrSimHapticPulseCount)>(library, "VrSimHapticPulseCount");
    const auto get_pulse = Find<decltype(&VrSimGetHapticPulse)>(library, "VrSimGetHapticPulse");
    const bool simulated = frame_count && submission_count && pulse_count && get_pulse;
    if (simulated) {
        SimulatedRuntimeReport read;
        read.frames = frame_count();
        read.submissions = submission_count();
        const std::uint64_t pulses = pulse_count();
        for (std::uint64_t i = 0; i < pulses; ++i) {
            VrSimHapticPulse pulse{};
            if (get_pulse(i, &pulse) != 0)
                read.haptic_pulses.push_back({pulse.frame, pulse.device_index, pulse.duration_microseconds});
        }
        report = std::move(read);
    }
    dlclose(library);
    return simulated;
}

}  // namespace kesta
