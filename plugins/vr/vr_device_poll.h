#pragma once

#include "plugins/vr/openvr/openvr.h"

namespace kesta {

// Reads every connected controller and tracker once into its slot of the VR state, sends the
// pending haptic pulses and takes the valid poses of this frame. Slots follow the runtime's index
// order among this frame's connected devices: the first two controllers take slots 0 and 1, the
// first two trackers slots 2 and 3; every other device is skipped.
void PollTrackedDevices(vr::IVRSystem& system, const vr::TrackedDevicePose_t* poses);

}  // namespace kesta
