#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/simulator/sim_config.h"

namespace kesta::vrsim {

// The simulated tracked devices as pure functions of the configuration and the frame number: the
// headset at index 0, the configured devices at 1, 2, ... Nothing here changes after construction,
// so any thread may ask.
class DeviceTable {
public:
    explicit DeviceTable(const SimConfig& config) : config_(config) {}

    uint32_t Count() const { return 1 + static_cast<uint32_t>(config_.devices.size()); }
    bool Exists(vr::TrackedDeviceIndex_t index) const { return index < Count(); }

    // TrackedDeviceClass_Invalid for an index without a device.
    vr::ETrackedDeviceClass ClassOf(vr::TrackedDeviceIndex_t index) const;
    vr::ETrackedControllerRole RoleOf(vr::TrackedDeviceIndex_t index) const;
    bool IsConnected(vr::TrackedDeviceIndex_t index, uint64_t frame) const;
    const std::string& SerialOf(vr::TrackedDeviceIndex_t index) const;
    const std::string& ModelOf(vr::TrackedDeviceIndex_t index) const;
    // The configured render model, else the default model of the device's class.
    std::string_view RenderModelOf(vr::TrackedDeviceIndex_t index) const;

    // A device that does not exist, or is disconnected, has an invalid, zero pose.
    vr::TrackedDevicePose_t PoseAt(vr::TrackedDeviceIndex_t index, uint64_t frame) const;

    // Buttons and axes as scripted for the frame; the packet number is the frame number.
    vr::VRControllerState_t ControllerStateAt(vr::TrackedDeviceIndex_t index, uint64_t frame) const;

    // Bit n set for every button that the device's scripts use.
    uint64_t SupportedButtons(vr::TrackedDeviceIndex_t index) const;

private:
    const SimConfig& config_;
};

}  // namespace kesta::vrsim
