#include "plugins/vr/simulator/event_queue.h"

namespace kesta::vrsim {

void EventQueue::PostInitial(const DeviceTable& devices)
{
    for (uint32_t i = 0; i < devices.Count(); ++i) {
        if (devices.IsConnected(i, 0))
            Post(vr::VREvent_TrackedDeviceActivated, i);
    }
}

void EventQueue::PostChanges(const DeviceTable& devices, uint64_t frame)
{
    if (frame == 0)
        return;
    for (uint32_t i = 0; i < devices.Count(); ++i) {
        const bool was = devices.IsConnected(i, frame - 1);
        const bool is = devices.IsConnected(i, frame);
        if (was != is) {
            Post(is ? vr::VREvent_TrackedDeviceActivated : vr::VREvent_TrackedDeviceDeactivated, i);
            continue;
        }
        if (!is || i == vr::k_unTrackedDeviceIndex_Hmd)
            continue;
        const vr::VRControllerState_t before = devices.ControllerStateAt(i, frame - 1);
        const vr::VRControllerState_t after = devices.ControllerStateAt(i, frame);
        PostButtons(i, before.ulButtonTouched, after.ulButtonTouched, vr::VREvent_ButtonTouch,
                    vr::VREvent_ButtonUntouch);
        PostButtons(i, before.ulButtonPressed, after.ulButtonPressed, vr::VREvent_ButtonPress,
                    vr::VREvent_ButtonUnpress);
    }
}

void EventQueue::PostButtons(vr::TrackedDeviceIndex_t device, uint64_t before, uint64_t after, vr::EVREventType on,
                             vr::EVREventType off)
{
    const uint64_t changed = before ^ after;
    for (uint32_t button = 0; button < 64; ++button) {
        const uint64_t bit = uint64_t{1} << button;
        if ((changed & bit) != 0)
            Post((after & bit) != 0 ? on : off, device, button);
    }
}

void EventQueue::Post(uint32_t type, vr::TrackedDeviceIndex_t device, uint32_t button)
{
    if (events_.size() >= kCapacity)
        events_.pop_front();
    vr::VREvent_t event{};
    event.eventType = type;
    event.trackedDeviceIndex = device;
    event.data.controller.button = button;
    events_.push_back(event);
}

bool EventQueue::Pop(vr::VREvent_t& event)
{
    if (events_.empty())
        return false;
    event = events_.front();
    events_.pop_front();
    return true;
}

}  // namespace kesta::vrsim
