// The simulated runtime's event queue when an application does not poll: it keeps the newest events.

#include "plugins/vr/simulator/event_queue.h"

#include <gtest/gtest.h>

#include <vector>

#include "plugins/vr/simulator/device_table.h"
#include "plugins/vr/simulator/sim_config.h"

namespace kesta::vrsim {
namespace {

TEST(EventQueue, WhenFullTheOldestEventsAreDroppedAndTheNewestKept)
{
    // Device 1 is connected on even frames only, so every frame posts one event for it; device 2
    // comes on at frame 1100.
    SimConfig config;
    DeviceConfig toggling;
    toggling.connected.clear();
    for (uint64_t frame = 0; frame <= 1500; frame += 2)
        toggling.connected.push_back(FrameRange{frame, frame});
    DeviceConfig late;
    late.connected = {FrameRange{1100}};
    config.devices = {toggling, late};
    const DeviceTable devices(config);

    EventQueue queue;
    queue.PostInitial(devices);  // the headset and device 1
    for (uint64_t frame = 1; frame <= 1500; ++frame)
        queue.PostChanges(devices, frame);

    std::vector<vr::VREvent_t> events;
    vr::VREvent_t event{};
    while (queue.Pop(event))
        events.push_back(event);

    // 2 + 1500 + 1 events were posted; the 1024 newest start with device 1's event of frame 478.
    ASSERT_EQ(events.size(), EventQueue::kCapacity);
    EXPECT_EQ(events.front().trackedDeviceIndex, 1u);
    EXPECT_EQ(events.front().eventType, vr::VREvent_TrackedDeviceActivated);
    EXPECT_EQ(events[1].eventType, vr::VREvent_TrackedDeviceDeactivated);
    const std::size_t frame_1100 = 1100 - 478;
    EXPECT_EQ(events[frame_1100].trackedDeviceIndex, 1u);
    EXPECT_EQ(events[frame_1100 + 1].trackedDeviceIndex, 2u);
    EXPECT_EQ(events[frame_1100 + 1].eventType, vr::VREvent_TrackedDeviceActivated);
    EXPECT_EQ(events.back().trackedDeviceIndex, 1u);
    EXPECT_EQ(events.back().eventType, vr::VREvent_TrackedDeviceActivated);

    // Emptied, the queue takes new events again.
    EXPECT_FALSE(queue.Pop(event));
    queue.PostChanges(devices, 1501);
    ASSERT_TRUE(queue.Pop(event));
    EXPECT_EQ(event.eventType, vr::VREvent_TrackedDeviceDeactivated);
}

}  // namespace
}  // namespace kesta::vrsim
