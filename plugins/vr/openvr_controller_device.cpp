#include "plugins/vr/openvr_controller_device.h"

#include <algorithm>

#include "foundation/log/log.h"
#include "plugins/vr/vr_state.h"

namespace kesta {

namespace {

// The OpenVR button bit of an engine button code, or -1.
int ButtonBit(int button)
{
    switch (button) {
        case kVRButtonAxis0:
        case kVRButtonAxis1:
        case kVRButtonAxis2:
        case kVRButtonAxis3:
        case kVRButtonAxis4:
            return vr::k_EButton_Axis0 + button;
        case kVRButtonA:
            return vr::k_EButton_A;
        case kVRButtonGrip:
            return vr::k_EButton_Grip;
        case kVRButtonSystem:
            return vr::k_EButton_System;
        case kVRButtonApplicationMenu:
            return vr::k_EButton_ApplicationMenu;
        case kVRButtonDPadUp:
            return vr::k_EButton_DPad_Up;
        case kVRButtonDPadDown:
            return vr::k_EButton_DPad_Down;
        case kVRButtonDPadLeft:
            return vr::k_EButton_DPad_Left;
        case kVRButtonDPadRight:
            return vr::k_EButton_DPad_Right;
        default:
            return -1;
    }
}

bool ButtonDown(const vr::VRControllerState_t& state, int button)
{
    const int bit = ButtonBit(button);
    return bit >= 0 && (state.ulButtonPressed >> bit & 1u) != 0;
}

// rAxis[4] is deliberately out of reach: codes 12 to 19 cover axes 0 to 3.
float AxisValue(const vr::VRControllerState_t& state, int value)
{
    if (value < kVRValueAxis0X || value > kVRValueAxis3Y)
        return 0.0f;
    const int offset = value - kVRValueAxis0X;
    const vr::VRControllerAxis_t& axis = state.rAxis[offset / 2];
    return offset % 2 == 0 ? axis.x : axis.y;
}

}  // namespace

bool OpenVRControllerDevice::IsButtonDown(int button)
{
    return slot_ < VRState::kSlotCount && ButtonDown(g_vr_state.device_state[slot_], button);
}

bool OpenVRControllerDevice::WasButtonDown(int button)
{
    return slot_ < VRState::kSlotCount && ButtonDown(g_vr_state.device_prev_state[slot_], button);
}

float OpenVRControllerDevice::GetValue(int value)
{
    return slot_ < VRState::kSlotCount ? AxisValue(g_vr_state.device_state[slot_], value) : 0.0f;
}

float OpenVRControllerDevice::GetLastValue(int value)
{
    return slot_ < VRState::kSlotCount ? AxisValue(g_vr_state.device_prev_state[slot_], value) : 0.0f;
}

Matrix4 OpenVRControllerDevice::GetMatrix(int matrix)
{
    if (matrix == 0)
        return g_vr_state.device_matrix[slot_];
    warn(format("OpenVRControllerDevice: Unsupported matrix code %1") << matrix);
    return Matrix4::Identity();
}

bool OpenVRControllerDevice::SetEffect(int effect, float strength)
{
    g_vr_state.haptic_pulse[slot_] = 0;
    if (static_cast<unsigned>(effect) > 2)
        return false;
    const float scale = strength < 0.0f ? 0.0f : std::min(1.0f, strength);
    g_vr_state.haptic_pulse[slot_] = static_cast<std::uint16_t>(scale * kFullPulseMicroseconds);
    return true;
}

}  // namespace kesta
