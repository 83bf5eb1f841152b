#pragma once

#include "platform/input/input_device.h"

namespace kesta {

// The headset as an input device: a read-only view of the head pose of the last VR frame.
class OpenVRHMDDevice : public InputDevice {
public:
    InputDeviceKind GetType() override { return kInputDeviceHeadMountedDisplay; }
    // The frame renderer fills the state; there is nothing to poll.
    void Update() override {}
    // Code 0: the head pose in tracking space, engine handedness. Other codes warn and give the
    // identity.
    Matrix4 GetMatrix(int matrix) override;
};

}  // namespace kesta
