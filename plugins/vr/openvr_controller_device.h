#pragma once

#include <cstdint>

#include "platform/input/input_device.h"

namespace kesta {

// Engine button codes of a tracked controller; each reads one OpenVR button bit.
enum VRControllerButton : int {
    kVRButtonAxis0 = 0,
    kVRButtonAxis1 = 1,
    kVRButtonAxis2 = 2,
    kVRButtonAxis3 = 3,
    kVRButtonAxis4 = 4,
    kVRButtonA = 5,
    kVRButtonGrip = 128,
    kVRButtonSystem = 129,
    kVRButtonApplicationMenu = 130,
    // The same codes as a game pad's hat, so a controller can be read like a pad.
    kVRButtonDPadUp = 137,
    kVRButtonDPadDown = 138,
    kVRButtonDPadLeft = 139,
    kVRButtonDPadRight = 140,
};

// Engine value codes: x and y of the first four controller axes.
enum VRControllerValue : int {
    kVRValueAxis0X = 12,
    kVRValueAxis0Y,
    kVRValueAxis1X,
    kVRValueAxis1Y,
    kVRValueAxis2X,
    kVRValueAxis2Y,
    kVRValueAxis3X,
    kVRValueAxis3Y,
};

// A tracked controller or tracker as an input device: a read-only view of its slot of the VR state,
// which the frame renderer fills once per frame. Trackers use this class too.
class OpenVRControllerDevice : public InputDevice {
public:
    // Pulse length in microseconds at full strength.
    static constexpr float kFullPulseMicroseconds = 3999.0f;

    explicit OpenVRControllerDevice(std::uint64_t slot) : slot_(slot) {}

    InputDeviceKind GetType() override { return kInputDeviceTrackedController; }
    void Update() override {}
    bool IsButtonDown(int button) override;
    bool WasButtonDown(int button) override;
    float GetValue(int value) override;
    float GetLastValue(int value) override;
    // Code 0: the device's pose in tracking space, engine handedness.
    Matrix4 GetMatrix(int matrix) override;
    // Effects 0 to 2 all request one haptic pulse, sent by the next frame, of `strength` (0 to 1)
    // times 3999 microseconds. Any call first cancels the pending pulse.
    bool SetEffect(int effect, float strength) override;

    std::uint64_t slot() const { return slot_; }

private:
    std::uint64_t slot_;
};

}  // namespace kesta
