// The module's tracked devices fed by real frames of the simulated runtime: slots by index order,
// button edges, axes, haptic pulses and poses of controllers and trackers that come and go.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "plugins/vr/testing/vr_module_fixture.h"

namespace kesta {
namespace {

using testing::VRModuleTest;

class VRTrackedDevices : public VRModuleTest {
protected:
    void StartSession(const std::string& devices_json)
    {
        Start(Config(R"("devices": )" + devices_json));
        ASSERT_TRUE(Initialize());
        sim = std::make_unique<testing::VrSimIntrospection>();
        ASSERT_TRUE(sim->loaded());
    }
    Vector3 Position(const std::string& device) { return Device(device).GetMatrix(0).Translation(); }
    std::vector<VrSimHapticPulse> Pulses()
    {
        std::vector<VrSimHapticPulse> pulses(sim->haptic_pulse_count());
        for (std::size_t i = 0; i < pulses.size(); ++i)
            sim->get_haptic_pulse(i, &pulses[i]);
        return pulses;
    }

    std::unique_ptr<testing::VrSimIntrospection> sim;
};

// Index 1 a tracker, 2 a controller, 3 a tracking reference, 4 and 5 controllers, 6 a tracker.
constexpr char kMixedDevices[] = R"([
    {"class": "tracker", "position": [1, 0, 1]},
    {"class": "controller", "position": [2, 0, 2]},
    {"class": "tracking_reference", "position": [3, 0, 3]},
    {"class": "controller", "position": [4, 0, 4]},
    {"class": "controller", "position": [5, 0, 5]},
    {"class": "tracker", "position": [6, 0, 6]}])";

TEST_F(VRTrackedDevices, SlotsFollowIndexOrderAndSkipWhatDoesNotFit)
{
    StartSession(kMixedDevices);
    RenderFrames(1);
    // Poses in engine handedness: z mirrored. The tracker before the controllers does not shift
    // them, the tracking reference is skipped, and the third controller is ignored.
    EXPECT_EQ(Position("VR Controller 0"), (Vector3{2, 0, -2}));
    EXPECT_EQ(Position("VR Controller 1"), (Vector3{4, 0, -4}));
    EXPECT_EQ(Position("VR Tracker 0"), (Vector3{1, 0, -1}));
    EXPECT_EQ(Position("VR Tracker 1"), (Vector3{6, 0, -6}));

    // A pulse asked of every slot reaches exactly the four devices in the slots, on the next frame.
    for (const char* name : {"VR Controller 0", "VR Controller 1", "VR Tracker 0", "VR Tracker 1"})
        EXPECT_TRUE(Device(name).SetEffect(0, 1.0f));
    sim->clear_logs();
    RenderFrames(1);
    std::vector<std::uint32_t> pulsed;
    for (const VrSimHapticPulse& pulse : Pulses())
        pulsed.push_back(pulse.device_index);
    std::sort(pulsed.begin(), pulsed.end());
    EXPECT_EQ(pulsed, (std::vector<std::uint32_t>{1, 2, 4, 6}));
}

TEST_F(VRTrackedDevices, AButtonPressShowsAsAnEdgeForExactlyOneFrame)
{
    StartSession(R"([{"class": "controller", "buttons": [{"button": 33, "frames": [3, 5]}, {"button": 4, "frames": 3}],
                      "axes": [{"axis": 1, "frames": [2], "x": 0.5, "y": -0.25},
                               {"axis": 3, "frames": [2], "x": 0.75, "y": 1.0}]}])");
    InputDevice& controller = Device("VR Controller 0");
    RenderFrames(1);
    EXPECT_FALSE(controller.IsButtonDown(1));
    EXPECT_EQ(controller.GetValue(14), 0.0f);

    RenderFrames(1);  // frame 2: the axes move
    EXPECT_EQ(controller.GetValue(14), 0.5f);
    EXPECT_EQ(controller.GetValue(15), -0.25f);
    EXPECT_EQ(controller.GetValue(18), 0.75f);
    EXPECT_EQ(controller.GetValue(19), 1.0f);
    EXPECT_EQ(controller.GetLastValue(14), 0.0f);
    for (int code : {12, 13, 16, 17, 20})
        EXPECT_EQ(controller.GetValue(code), 0.0f) << code;

    RenderFrames(1);  // frame 3: trigger (axis 1) and d-pad up go down
    EXPECT_TRUE(controller.IsButtonDown(1));
    EXPECT_FALSE(controller.WasButtonDown(1));
    EXPECT_TRUE(controller.IsButtonDown(137));
    EXPECT_EQ(controller.GetLastValue(14), 0.5f);
    // However often the application polls, the edge stays until the next frame.
    for (int poll = 0; poll < 3; ++poll)
        EXPECT_TRUE(controller.IsButtonDown(1) && !controller.WasButtonDown(1));

    RenderFrames(1);  // frame 4: still held, d-pad released
    EXPECT_TRUE(controller.IsButtonDown(1));
    EXPECT_TRUE(controller.WasButtonDown(1));
    EXPECT_FALSE(controller.IsButtonDown(137));
    EXPECT_TRUE(controller.WasButtonDown(137));

    RenderFrames(2);  // frame 6: released after frame 5
    EXPECT_FALSE(controller.IsButtonDown(1));
    EXPECT_TRUE(controller.WasButtonDown(1));
    RenderFrames(1);
    EXPECT_FALSE(controller.WasButtonDown(1));
}

TEST_F(VRTrackedDevices, HapticPulsesAreSentOnceOnTheNextFrame)
{
    StartSession(R"([{"class": "controller"}, {"class": "controller"}])");
    RenderFrames(1);
    sim->clear_logs();
    InputDevice& first = Device("VR Controller 0");
    InputDevice& second = Device("VR Controller 1");

    EXPECT_TRUE(first.SetEffect(0, 0.5f));
    EXPECT_TRUE(second.SetEffect(2, 2.0f));
    RenderFrames(1);
    const std::vector<VrSimHapticPulse> pulses = Pulses();
    ASSERT_EQ(pulses.size(), 2u);
    EXPECT_EQ(pulses[0].device_index, 1u);
    EXPECT_EQ(pulses[0].axis, 0u);
    EXPECT_EQ(pulses[0].duration_microseconds, 1999u);
    EXPECT_EQ(pulses[0].frame, 2u);
    EXPECT_EQ(pulses[1].device_index, 2u);
    EXPECT_EQ(pulses[1].duration_microseconds, 3999u);
    // Once only: a lasting vibration means asking every frame.
    RenderFrames(1);
    EXPECT_EQ(Pulses().size(), 2u);

    // Zero strength and refused effects send nothing, and a refusal cancels what was pending.
    EXPECT_TRUE(first.SetEffect(0, -1.0f));
    EXPECT_TRUE(second.SetEffect(0, 1.0f));
    EXPECT_FALSE(second.SetEffect(3, 1.0f));
    RenderFrames(1);
    EXPECT_EQ(Pulses().size(), 2u);
}

TEST_F(VRTrackedDevices, ADisconnectedControllerHandsItsSlotOnAndTheFreedSlotKeepsItsData)
{
    StartSession(R"([{"class": "controller", "position": [1, 1, 1], "connected": [[0, 2]]},
                     {"class": "controller", "position": [2, 2, 2], "buttons": [{"button": 7, "frames": [0]}]}])");
    RenderFrames(2);
    EXPECT_EQ(Position("VR Controller 0"), (Vector3{1, 1, -1}));
    EXPECT_EQ(Position("VR Controller 1"), (Vector3{2, 2, -2}));
    EXPECT_FALSE(Device("VR Controller 0").IsButtonDown(5));

    RenderFrames(1);  // frame 3: the first controller is gone, the second moves to slot 0
    EXPECT_EQ(Position("VR Controller 0"), (Vector3{2, 2, -2}));
    EXPECT_TRUE(Device("VR Controller 0").IsButtonDown(5));
    // Slot 1 keeps its last data indefinitely.
    RenderFrames(1);
    EXPECT_EQ(Position("VR Controller 1"), (Vector3{2, 2, -2}));
    EXPECT_TRUE(Device("VR Controller 1").IsButtonDown(5));
    EXPECT_TRUE(Device("VR Controller 1").WasButtonDown(5));
}

TEST_F(VRTrackedDevices, AnInvalidPoseKeepsTheLastMatrixWhileTheStateUpdates)
{
    StartSession(R"([{"class": "controller", "position": [1, 2, 3], "invalid_pose": [[2]],
                      "buttons": [{"button": 2, "frames": [2]}]}])");
    RenderFrames(1);
    const Matrix4 pose = Device("VR Controller 0").GetMatrix(0);
    RenderFrames(2);
    EXPECT_EQ(Device("VR Controller 0").GetMatrix(0), pose);
    EXPECT_TRUE(Device("VR Controller 0").IsButtonDown(128));
}

TEST_F(VRTrackedDevices, AnInvalidHeadsetPoseKeepsTheLastHeadMatrix)
{
    Start(Config(R"("hmd_invalid_pose": [[2, 3]], "head": {"path": "keyframes", "keyframes": [
                    {"frame": 0, "position": [0, 1, 0]}, {"frame": 10, "position": [10, 1, 0]}]})"));
    ASSERT_TRUE(Initialize());
    RenderFrames(1);
    EXPECT_EQ(Position("HMD"), (Vector3{1, 1, 0}));
    RenderFrames(2);
    EXPECT_EQ(Position("HMD"), (Vector3{1, 1, 0}));
    RenderFrames(1);
    EXPECT_EQ(Position("HMD"), (Vector3{4, 1, 0}));
}

TEST_F(VRTrackedDevices, UnsupportedMatrixCodesWarnAndGiveTheIdentity)
{
    StartSession("[]");
    EXPECT_EQ(Device("HMD").GetMatrix(1), Matrix4::Identity());
    EXPECT_EQ(Device("VR Tracker 0").GetMatrix(2), Matrix4::Identity());
    EXPECT_EQ(log.Count("warn", "OpenVRHMDDevice: Unsupported matrix code 1"), 1u);
    EXPECT_EQ(log.Count("warn", "OpenVRControllerDevice: Unsupported matrix code 2"), 1u);
    EXPECT_FALSE(Device("HMD").SetEffect(0, 1.0f));
}

}  // namespace
}  // namespace kesta
