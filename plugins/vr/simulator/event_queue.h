#pragma once

#include <cstdint>
#include <deque>

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/simulator/device_table.h"

namespace kesta::vrsim {

// The events a runtime posts as the scripted world changes from one frame to the next: devices
// activated and deactivated, buttons pressed, released, touched and untouched. Not thread-safe: the
// runtime guards it with its own lock.
class EventQueue {
public:
    // At most this many events wait; beyond it the oldest are dropped, as an application that never
    // polls would otherwise grow the queue without end.
    static constexpr size_t kCapacity = 1024;

    // The events of the first frame: every device connected at frame 0 is activated.
    void PostInitial(const DeviceTable& devices);
    // The events between frame - 1 and frame.
    void PostChanges(const DeviceTable& devices, uint64_t frame);

    bool Pop(vr::VREvent_t& event);

private:
    void Post(uint32_t type, vr::TrackedDeviceIndex_t device, uint32_t button = 0);
    void PostButtons(vr::TrackedDeviceIndex_t device, uint64_t before, uint64_t after, vr::EVREventType on,
                     vr::EVREventType off);

    std::deque<vr::VREvent_t> events_;
};

}  // namespace kesta::vrsim
