#include "plugins/vr/vr_device_poll.h"

#include "plugins/vr/vr_pose_conversion.h"
#include "plugins/vr/vr_state.h"

namespace kesta {

namespace {

constexpr std::size_t kFirstControllerSlot = 0;
constexpr std::size_t kFirstTrackerSlot = 2;
constexpr std::size_t kSlotsPerClass = 2;

}  // namespace

void PollTrackedDevices(vr::IVRSystem& system, const vr::TrackedDevicePose_t* poses)
{
    VRState& state = g_vr_state;
    std::size_t controllers = kFirstControllerSlot;
    std::size_t trackers = kFirstTrackerSlot;
    // Index 0 is the headset.
    for (vr::TrackedDeviceIndex_t i = 1; i < vr::k_unMaxTrackedDeviceCount; ++i) {
        if (!system.IsTrackedDeviceConnected(i))
            continue;
        std::size_t slot = 0;
        const vr::ETrackedDeviceClass device_class = system.GetTrackedDeviceClass(i);
        if (device_class == vr::TrackedDeviceClass_Controller) {
            if (controllers >= kFirstControllerSlot + kSlotsPerClass)
                continue;
            slot = controllers++;
        } else if (device_class == vr::TrackedDeviceClass_GenericTracker) {
            if (trackers >= kFirstTrackerSlot + kSlotsPerClass)
                continue;
            slot = trackers++;
        } else {
            continue;
        }

        state.device_prev_state[slot] = state.device_state[slot];
        // The size is that of this platform's struct (packed on Linux), which the runtime checks.
        system.GetControllerState(i, &state.device_state[slot], sizeof(vr::VRControllerState_t));
        if (state.haptic_pulse[slot] != 0) {
            system.TriggerHapticPulse(i, 0, state.haptic_pulse[slot]);
            state.haptic_pulse[slot] = 0;
        }
        if (poses[i].bPoseIsValid)
            state.device_matrix[slot] = ConvertPose(poses[i].mDeviceToAbsoluteTracking);
    }
}

}  // namespace kesta
