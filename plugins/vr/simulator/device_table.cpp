#include "plugins/vr/simulator/device_table.h"

#include "plugins/vr/simulator/head_path.h"
#include "plugins/vr/simulator/render_model_catalog.h"

namespace kesta::vrsim {

vr::ETrackedDeviceClass DeviceTable::ClassOf(vr::TrackedDeviceIndex_t index) const
{
    if (index == vr::k_unTrackedDeviceIndex_Hmd)
        return vr::TrackedDeviceClass_HMD;
    return Exists(index) ? config_.devices[index - 1].device_class : vr::TrackedDeviceClass_Invalid;
}

vr::ETrackedControllerRole DeviceTable::RoleOf(vr::TrackedDeviceIndex_t index) const
{
    if (index == vr::k_unTrackedDeviceIndex_Hmd || !Exists(index))
        return vr::TrackedControllerRole_Invalid;
    return config_.devices[index - 1].role;
}

bool DeviceTable::IsConnected(vr::TrackedDeviceIndex_t index, uint64_t frame) const
{
    if (index == vr::k_unTrackedDeviceIndex_Hmd)
        return AnyContains(config_.hmd_connected, frame);
    return Exists(index) && AnyContains(config_.devices[index - 1].connected, frame);
}

const std::string& DeviceTable::SerialOf(vr::TrackedDeviceIndex_t index) const
{
    return index == vr::k_unTrackedDeviceIndex_Hmd ? config_.hmd_serial : config_.devices[index - 1].serial;
}

const std::string& DeviceTable::ModelOf(vr::TrackedDeviceIndex_t index) const
{
    return index == vr::k_unTrackedDeviceIndex_Hmd ? config_.hmd_model : config_.devices[index - 1].model;
}

std::string_view DeviceTable::RenderModelOf(vr::TrackedDeviceIndex_t index) const
{
    const std::string& configured =
        index == vr::k_unTrackedDeviceIndex_Hmd ? config_.hmd_render_model : config_.devices[index - 1].render_model;
    return configured.empty() ? DefaultRenderModel(ClassOf(index)) : std::string_view(configured);
}

vr::TrackedDevicePose_t DeviceTable::PoseAt(vr::TrackedDeviceIndex_t index, uint64_t frame) const
{
    vr::TrackedDevicePose_t pose{};
    pose.eTrackingResult = vr::TrackingResult_Uninitialized;
    if (!IsConnected(index, frame))
        return pose;
    pose.bDeviceIsConnected = true;
    const bool invalid = index == vr::k_unTrackedDeviceIndex_Hmd
                             ? AnyContains(config_.hmd_invalid_pose, frame)
                             : AnyContains(config_.devices[index - 1].invalid_pose, frame);
    if (invalid) {
        pose.eTrackingResult = vr::TrackingResult_Running_OutOfRange;
        return pose;
    }
    const Pose where = index == vr::k_unTrackedDeviceIndex_Hmd ? HeadPoseAt(config_.head, frame)
                                                               : Pose{config_.devices[index - 1].position, 0.0, 0.0};
    pose.mDeviceToAbsoluteTracking = ToMatrix(where);
    pose.eTrackingResult = vr::TrackingResult_Running_OK;
    pose.bPoseIsValid = true;
    return pose;
}

vr::VRControllerState_t DeviceTable::ControllerStateAt(vr::TrackedDeviceIndex_t index, uint64_t frame) const
{
    vr::VRControllerState_t state{};
    state.unPacketNum = static_cast<uint32_t>(frame);
    if (index == vr::k_unTrackedDeviceIndex_Hmd || !IsConnected(index, frame))
        return state;
    const DeviceConfig& device = config_.devices[index - 1];
    for (const ButtonScript& button : device.buttons) {
        if (!button.frames.Contains(frame))
            continue;
        const uint64_t bit = uint64_t{1} << button.button;
        state.ulButtonTouched |= bit;
        if (!button.touch_only)
            state.ulButtonPressed |= bit;
    }
    for (const AxisScript& axis : device.axes) {
        if (axis.frames.Contains(frame))
            state.rAxis[axis.axis] = vr::VRControllerAxis_t{axis.x, axis.y};
    }
    return state;
}

uint64_t DeviceTable::SupportedButtons(vr::TrackedDeviceIndex_t index) const
{
    if (index == vr::k_unTrackedDeviceIndex_Hmd || !Exists(index))
        return 0;
    uint64_t bits = 0;
    for (const ButtonScript& button : config_.devices[index - 1].buttons)
        bits |= uint64_t{1} << button.button;
    return bits;
}

}  // namespace kesta::vrsim
