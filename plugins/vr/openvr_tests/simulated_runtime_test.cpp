// The simulated runtime's scripted world, observed only through IVRSystem and IVRCompositor.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstring>
#include <thread>
#include <tuple>
#include <vector>

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/openvr_tests/vrsim_test_support.h"

namespace kesta {
namespace {

using ::testing::HasSubstr;
using testing::IsolatedOpenVREnvironment;
using testing::ScopedVRSession;
using testing::VrSimIntrospection;

constexpr float kTolerance = 1e-4f;

// Note: the 64-bit fields of VRControllerState_t are only 4-byte aligned on Linux, so the assertions
// below copy them (uint64_t{...}) instead of binding references to them.

// Frame-scripted world used by most cases below: device 1 a left controller connected on frames 2 to 4
// and 7 on, device 2 a right controller, 3 a tracker, 4 a tracking reference.
constexpr const char* kScriptedWorld = R"({
  "paced": false,
  "render_width": 800, "render_height": 900,
  "ipd_meters": 0.07,
  "fov_degrees": {"left": {"left": 45, "right": 30, "up": 40, "down": 35},
                  "right": {"left": 30, "right": 45, "up": 40, "down": 35}},
  "tracking_system_name": "scripted", "hmd_serial": "HMD-42",
  "hmd_invalid_pose": [[5, 6]],
  "head": {"path": "keyframes", "keyframes": [
    {"frame": 1, "position": [0, 1, 0]},
    {"frame": 11, "position": [1, 2, -3], "yaw_degrees": 90}]},
  "devices": [
    {"class": "controller", "role": "left_hand", "serial": "LEFT", "connected": [[2, 4], [7]],
     "position": [-0.2, 1.0, -0.3],
     "buttons": [{"button": 33, "frames": [3, 4]}, {"button": 2, "frames": 8, "touch_only": true}],
     "axes": [{"axis": 1, "frames": 3, "x": 0.75}]},
    {"class": "controller", "role": "right_hand"},
    {"class": "tracker", "invalid_pose": [2]},
    {"class": "tracking_reference", "position": [2, 2, 2]}
  ]
})";

class SimulatedRuntimeTest : public ::testing::Test {
protected:
    void Start(const std::string& config)
    {
        isolated_.UseSimulatedRuntime(config);
        session_ = std::make_unique<ScopedVRSession>();
        ASSERT_EQ(session_->error, vr::VRInitError_None);
        system_ = session_->system;
        compositor_ = vr::VRCompositor();
        ASSERT_NE(compositor_, nullptr);
    }

    // Starts frames until `frame` is the current one, returning its poses.
    std::vector<vr::TrackedDevicePose_t> AdvanceTo(uint64_t frame)
    {
        std::vector<vr::TrackedDevicePose_t> poses(vr::k_unMaxTrackedDeviceCount);
        uint64_t current = 0;
        system_->GetTimeSinceLastVsync(nullptr, &current);
        EXPECT_LE(current, frame);
        while (current < frame) {
            EXPECT_EQ(compositor_->WaitGetPoses(poses.data(), vr::k_unMaxTrackedDeviceCount, nullptr, 0),
                      vr::VRCompositorError_None);
            ++current;
        }
        return poses;
    }

    std::string StringProperty(vr::TrackedDeviceIndex_t index, vr::ETrackedDeviceProperty prop)
    {
        vr::ETrackedPropertyError error = vr::TrackedProp_Success;
        const uint32_t size = system_->GetStringTrackedDeviceProperty(index, prop, nullptr, 0, &error);
        EXPECT_EQ(error, vr::TrackedProp_BufferTooSmall);
        std::string value(size, '?');
        EXPECT_EQ(system_->GetStringTrackedDeviceProperty(index, prop, value.data(), size, &error), size);
        EXPECT_EQ(error, vr::TrackedProp_Success);
        EXPECT_EQ(value.back(), '\0');
        value.pop_back();
        return value;
    }

    IsolatedOpenVREnvironment isolated_;
    std::unique_ptr<ScopedVRSession> session_;
    vr::IVRSystem* system_ = nullptr;
    vr::IVRCompositor* compositor_ = nullptr;
};

TEST_F(SimulatedRuntimeTest, DefaultsWithoutAConfigurationFile)
{
    Start("");
    uint32_t width = 0, height = 0;
    system_->GetRecommendedRenderTargetSize(&width, &height);
    EXPECT_EQ(width, 1512u);
    EXPECT_EQ(height, 1680u);
    vr::ETrackedPropertyError error = vr::TrackedProp_Success;
    EXPECT_FLOAT_EQ(system_->GetFloatTrackedDeviceProperty(0, vr::Prop_DisplayFrequency_Float, &error), 90.0f);
    EXPECT_EQ(error, vr::TrackedProp_Success);
    EXPECT_EQ(StringProperty(0, vr::Prop_TrackingSystemName_String), "norvane_vrsim");
    EXPECT_EQ(StringProperty(0, vr::Prop_SerialNumber_String), "VRSIM-HMD-0001");
    EXPECT_EQ(system_->GetTrackedDeviceClass(0), vr::TrackedDeviceClass_HMD);
    EXPECT_EQ(system_->GetTrackedDeviceClass(1), vr::TrackedDeviceClass_Invalid);
    EXPECT_FALSE(system_->IsTrackedDeviceConnected(1));
    // Paced by default: what is left of a frame never exceeds one 90 Hz period.
    compositor_->WaitGetPoses(nullptr, 0, nullptr, 0);
    const float remaining = compositor_->GetFrameTimeRemaining();
    EXPECT_GE(remaining, 0.0f);
    EXPECT_LE(remaining, 1.0f / 90.0f);
}

TEST_F(SimulatedRuntimeTest, StringPropertiesFollowTheTwoCallProtocol)
{
    Start(kScriptedWorld);
    EXPECT_EQ(StringProperty(0, vr::Prop_TrackingSystemName_String), "scripted");
    EXPECT_EQ(StringProperty(0, vr::Prop_SerialNumber_String), "HMD-42");
    EXPECT_EQ(StringProperty(1, vr::Prop_SerialNumber_String), "LEFT");

    // One byte short: the buffer is reported too small and left as it was.
    char buffer[8];
    std::memset(buffer, 'x', sizeof buffer);
    vr::ETrackedPropertyError error = vr::TrackedProp_Success;
    EXPECT_EQ(system_->GetStringTrackedDeviceProperty(0, vr::Prop_SerialNumber_String, buffer, 6, &error), 7u);
    EXPECT_EQ(error, vr::TrackedProp_BufferTooSmall);
    EXPECT_EQ(buffer[1], 'x');

    EXPECT_EQ(system_->GetStringTrackedDeviceProperty(9, vr::Prop_SerialNumber_String, buffer, 8, &error), 0u);
    EXPECT_EQ(error, vr::TrackedProp_InvalidDevice);
    system_->GetFloatTrackedDeviceProperty(0, vr::Prop_SerialNumber_String, &error);
    EXPECT_EQ(error, vr::TrackedProp_WrongDataType);
    system_->GetStringTrackedDeviceProperty(0, static_cast<vr::ETrackedDeviceProperty>(4242), buffer, 8, &error);
    EXPECT_EQ(error, vr::TrackedProp_UnknownProperty);
    system_->GetStringTrackedDeviceProperty(0, vr::Prop_DriverVersion_String, buffer, 8, &error);
    EXPECT_EQ(error, vr::TrackedProp_ValueNotProvidedByDevice);
    EXPECT_STREQ(system_->GetPropErrorNameFromEnum(vr::TrackedProp_BufferTooSmall), "TrackedProp_BufferTooSmall");
}

TEST_F(SimulatedRuntimeTest, DeviceClassesAndConnectionsChangeOnTheScriptedFrames)
{
    Start(kScriptedWorld);
    EXPECT_EQ(system_->GetTrackedDeviceClass(1), vr::TrackedDeviceClass_Controller);
    EXPECT_EQ(system_->GetTrackedDeviceClass(2), vr::TrackedDeviceClass_Controller);
    EXPECT_EQ(system_->GetTrackedDeviceClass(3), vr::TrackedDeviceClass_GenericTracker);
    EXPECT_EQ(system_->GetTrackedDeviceClass(4), vr::TrackedDeviceClass_TrackingReference);
    EXPECT_EQ(system_->GetTrackedDeviceClass(5), vr::TrackedDeviceClass_Invalid);
    EXPECT_EQ(system_->GetControllerRoleForTrackedDeviceIndex(1), vr::TrackedControllerRole_LeftHand);
    EXPECT_EQ(system_->GetControllerRoleForTrackedDeviceIndex(2), vr::TrackedControllerRole_RightHand);

    const bool expected_left[] = {false, false, true, true, true, false, false, true, true};
    for (uint64_t frame = 1; frame < std::size(expected_left); ++frame) {
        const auto poses = AdvanceTo(frame);
        SCOPED_TRACE("frame " + std::to_string(frame));
        EXPECT_EQ(system_->IsTrackedDeviceConnected(1), expected_left[frame]);
        EXPECT_EQ(poses[1].bDeviceIsConnected, expected_left[frame]);
        EXPECT_EQ(poses[1].bPoseIsValid, expected_left[frame]);
        EXPECT_TRUE(poses[2].bDeviceIsConnected);
        EXPECT_FALSE(poses[5].bDeviceIsConnected);

        vr::TrackedDeviceIndex_t controllers[4] = {};
        const uint32_t count =
            system_->GetSortedTrackedDeviceIndicesOfClass(vr::TrackedDeviceClass_Controller, controllers, 4, 0);
        ASSERT_EQ(count, expected_left[frame] ? 2u : 1u);
        EXPECT_EQ(controllers[0], expected_left[frame] ? 1u : 2u);
        EXPECT_EQ(system_->GetTrackedDeviceIndexForControllerRole(vr::TrackedControllerRole_LeftHand),
                  expected_left[frame] ? 1u : vr::k_unTrackedDeviceIndexInvalid);
    }
}

TEST_F(SimulatedRuntimeTest, PosesFollowTheHeadPathAndValidityScript)
{
    Start(kScriptedWorld);
    auto poses = AdvanceTo(1);
    ASSERT_TRUE(poses[0].bPoseIsValid);
    EXPECT_EQ(poses[0].eTrackingResult, vr::TrackingResult_Running_OK);
    EXPECT_NEAR(poses[0].mDeviceToAbsoluteTracking.m[1][3], 1.0f, kTolerance);

    // Halfway between the keyframes: half the way, half the turn (45 degrees to the left).
    poses = AdvanceTo(6);
    EXPECT_FALSE(poses[0].bPoseIsValid) << "frames 5 and 6 are scripted invalid";
    EXPECT_TRUE(poses[0].bDeviceIsConnected);
    poses = AdvanceTo(7);
    EXPECT_TRUE(poses[0].bPoseIsValid);
    const vr::HmdMatrix34_t& head = poses[0].mDeviceToAbsoluteTracking;
    EXPECT_NEAR(head.m[0][3], 0.6f, kTolerance);
    EXPECT_NEAR(head.m[1][3], 1.6f, kTolerance);
    EXPECT_NEAR(head.m[2][3], -1.8f, kTolerance);
    // Forward is -Z of the head; at 54 degrees of yaw it points to -x and -z.
    const float yaw = 54.0f * 3.14159265f / 180.0f;
    EXPECT_NEAR(-head.m[0][2], -std::sin(yaw), kTolerance);
    EXPECT_NEAR(-head.m[2][2], -std::cos(yaw), kTolerance);

    // The tracker's pose is invalid on frame 2 only; the tracking reference stands where configured.
    poses = AdvanceTo(8);
    EXPECT_TRUE(poses[3].bPoseIsValid);
    EXPECT_NEAR(poses[4].mDeviceToAbsoluteTracking.m[0][3], 2.0f, kTolerance);

    vr::TrackedDevicePose_t last{};
    EXPECT_EQ(compositor_->GetLastPoseForTrackedDeviceIndex(0, &last, nullptr), vr::VRCompositorError_None);
    EXPECT_EQ(
        std::memcmp(&last.mDeviceToAbsoluteTracking, &poses[0].mDeviceToAbsoluteTracking, sizeof(vr::HmdMatrix34_t)),
        0);
    EXPECT_EQ(compositor_->GetLastPoseForTrackedDeviceIndex(64, &last, nullptr), vr::VRCompositorError_IndexOutOfRange);
}

TEST_F(SimulatedRuntimeTest, OrbitKeepsTheRadiusAndFacesTheCentre)
{
    Start(R"({"paced": false, "head": {"path": "orbit", "position": [1, 1.5, 2], "radius": 2, "period_frames": 8}})");
    for (uint64_t frame = 1; frame <= 8; ++frame) {
        const auto poses = AdvanceTo(frame);
        const vr::HmdMatrix34_t& m = poses[0].mDeviceToAbsoluteTracking;
        const float dx = m.m[0][3] - 1.0f, dz = m.m[2][3] - 2.0f;
        EXPECT_NEAR(std::hypot(dx, dz), 2.0f, kTolerance);
        EXPECT_NEAR(m.m[1][3], 1.5f, kTolerance);
        // Forward (-Z column) points back at the centre.
        EXPECT_NEAR(-m.m[0][2], -dx / 2.0f, kTolerance);
        EXPECT_NEAR(-m.m[2][2], -dz / 2.0f, kTolerance);
    }
}

TEST_F(SimulatedRuntimeTest, NodSwingsThePitchWithinTheAmplitude)
{
    Start(R"({"paced": false, "head": {"path": "nod", "amplitude_degrees": 30, "period_frames": 4}})");
    // Frame 1 is a quarter period: full amplitude up. The forward vector's height is sin(pitch).
    auto poses = AdvanceTo(1);
    EXPECT_NEAR(-poses[0].mDeviceToAbsoluteTracking.m[1][2], 0.5f, kTolerance);
    poses = AdvanceTo(3);
    EXPECT_NEAR(-poses[0].mDeviceToAbsoluteTracking.m[1][2], -0.5f, kTolerance);
}

TEST_F(SimulatedRuntimeTest, EyeTransformsAndProjectionsComeFromIpdAndFieldOfView)
{
    Start(kScriptedWorld);
    EXPECT_NEAR(system_->GetEyeToHeadTransform(vr::Eye_Left).m[0][3], -0.035f, kTolerance);
    EXPECT_NEAR(system_->GetEyeToHeadTransform(vr::Eye_Right).m[0][3], 0.035f, kTolerance);

    float left = 0, right = 0, top = 0, bottom = 0;
    system_->GetProjectionRaw(vr::Eye_Left, &left, &right, &top, &bottom);
    EXPECT_NEAR(left, -1.0f, kTolerance);
    EXPECT_NEAR(right, std::tan(30.0f * 3.14159265f / 180.0f), kTolerance);
    EXPECT_LT(top, 0.0f);
    EXPECT_GT(bottom, 0.0f);

    // A point on the left edge of the left eye's frustum lands on the left edge of clip space, and the
    // near plane maps to depth 0, the far plane to depth 1.
    const vr::HmdMatrix44_t p = system_->GetProjectionMatrix(vr::Eye_Left, 0.1f, 100.0f);
    const float z = -2.0f, x = left * 2.0f;
    const float clip_x = p.m[0][0] * x + p.m[0][2] * z;
    const float clip_w = p.m[3][2] * z;
    EXPECT_NEAR(clip_x / clip_w, -1.0f, kTolerance);
    EXPECT_NEAR((p.m[2][2] * -0.1f + p.m[2][3]) / 0.1f, 0.0f, kTolerance);
    EXPECT_NEAR((p.m[2][2] * -100.0f + p.m[2][3]) / 100.0f, 1.0f, kTolerance);

    uint32_t width = 0, height = 0;
    system_->GetRecommendedRenderTargetSize(&width, &height);
    EXPECT_EQ(width, 800u);
    EXPECT_EQ(height, 900u);
}

TEST_F(SimulatedRuntimeTest, ControllerStatesFollowTheScriptAndCheckTheStructSize)
{
    Start(kScriptedWorld);
    vr::VRControllerState_t state{};
    AdvanceTo(2);
    ASSERT_TRUE(system_->GetControllerState(1, &state, sizeof(state)));
    EXPECT_EQ(uint64_t{state.ulButtonPressed}, 0u);

    AdvanceTo(3);
    ASSERT_TRUE(system_->GetControllerState(1, &state, sizeof(state)));
    EXPECT_EQ(uint64_t{state.ulButtonPressed}, uint64_t{1} << vr::k_EButton_SteamVR_Trigger);
    EXPECT_EQ(uint64_t{state.ulButtonTouched}, uint64_t{1} << vr::k_EButton_SteamVR_Trigger);
    EXPECT_FLOAT_EQ(state.rAxis[1].x, 0.75f);
    EXPECT_EQ(state.unPacketNum, 3u);
    // The Windows size (64) is refused on Linux, where the struct is packed to 60 bytes.
    EXPECT_FALSE(system_->GetControllerState(1, &state, 64));

    AdvanceTo(4);
    ASSERT_TRUE(system_->GetControllerState(1, &state, sizeof(state)));
    EXPECT_FLOAT_EQ(state.rAxis[1].x, 0.0f) << "the axis was scripted for frame 3 only";
    EXPECT_NE(uint64_t{state.ulButtonPressed}, 0u);

    AdvanceTo(5);
    EXPECT_FALSE(system_->GetControllerState(1, &state, sizeof(state))) << "disconnected on frame 5";

    AdvanceTo(8);
    vr::TrackedDevicePose_t pose{};
    ASSERT_TRUE(system_->GetControllerStateWithPose(vr::TrackingUniverseStanding, 1, &state, sizeof(state), &pose));
    EXPECT_EQ(uint64_t{state.ulButtonPressed}, 0u);
    EXPECT_EQ(uint64_t{state.ulButtonTouched}, uint64_t{1} << vr::k_EButton_Grip);
    EXPECT_NEAR(pose.mDeviceToAbsoluteTracking.m[0][3], -0.2f, kTolerance);
    ASSERT_FALSE(system_->GetControllerState(0, &state, sizeof(state))) << "the headset has no controller state";
    vr::ETrackedPropertyError error = vr::TrackedProp_Success;
    EXPECT_EQ(system_->GetUint64TrackedDeviceProperty(1, vr::Prop_SupportedButtons_Uint64, &error),
              (uint64_t{1} << 33) | (uint64_t{1} << 2));
}

TEST_F(SimulatedRuntimeTest, HapticPulsesAreRecordedForConnectedControllersOnly)
{
    Start(kScriptedWorld);
    VrSimIntrospection sim;
    ASSERT_TRUE(sim.loaded());
    AdvanceTo(3);
    system_->TriggerHapticPulse(1, 0, 3999);
    system_->TriggerHapticPulse(0, 0, 100);   // the headset
    system_->TriggerHapticPulse(4, 0, 100);   // a tracking reference
    system_->TriggerHapticPulse(40, 0, 100);  // no device
    AdvanceTo(5);
    system_->TriggerHapticPulse(1, 0, 100);  // disconnected
    system_->TriggerHapticPulse(3, 1, 250);  // the tracker

    ASSERT_EQ(sim.haptic_pulse_count(), 2u);
    VrSimHapticPulse pulse{};
    ASSERT_TRUE(sim.get_haptic_pulse(0, &pulse));
    EXPECT_EQ(pulse.frame, 3u);
    EXPECT_EQ(pulse.device_index, 1u);
    EXPECT_EQ(pulse.axis, 0u);
    EXPECT_EQ(pulse.duration_microseconds, 3999u);
    ASSERT_TRUE(sim.get_haptic_pulse(1, &pulse));
    EXPECT_EQ(pulse.device_index, 3u);
    EXPECT_EQ(pulse.axis, 1u);
    EXPECT_EQ(pulse.frame, 5u);
    EXPECT_FALSE(sim.get_haptic_pulse(2, &pulse));
    EXPECT_EQ(sim.frame_count(), 5u);
}

TEST_F(SimulatedRuntimeTest, EventsTellOfConnectionsAndButtonChangesInOrder)
{
    Start(kScriptedWorld);
    auto drain = [this] {
        std::vector<std::tuple<uint32_t, uint32_t, uint32_t>> events;
        vr::VREvent_t event{};
        while (system_->PollNextEvent(&event, sizeof(event)))
            events.emplace_back(event.eventType, event.trackedDeviceIndex, event.data.controller.button);
        return events;
    };
    using E = std::tuple<uint32_t, uint32_t, uint32_t>;
    // Frame 0: everything but the left controller is there from the start.
    EXPECT_THAT(drain(), ::testing::ElementsAre(
                             E{vr::VREvent_TrackedDeviceActivated, 0, 0}, E{vr::VREvent_TrackedDeviceActivated, 2, 0},
                             E{vr::VREvent_TrackedDeviceActivated, 3, 0}, E{vr::VREvent_TrackedDeviceActivated, 4, 0}));
    AdvanceTo(2);
    EXPECT_THAT(drain(), ::testing::ElementsAre(E{vr::VREvent_TrackedDeviceActivated, 1, 0}));
    AdvanceTo(3);
    EXPECT_THAT(drain(), ::testing::ElementsAre(E{vr::VREvent_ButtonTouch, 1, 33}, E{vr::VREvent_ButtonPress, 1, 33}));
    AdvanceTo(4);
    EXPECT_THAT(drain(), ::testing::IsEmpty());
    AdvanceTo(5);
    EXPECT_THAT(drain(), ::testing::ElementsAre(E{vr::VREvent_TrackedDeviceDeactivated, 1, 0}));
    AdvanceTo(9);
    EXPECT_THAT(drain(), ::testing::ElementsAre(E{vr::VREvent_TrackedDeviceActivated, 1, 0},
                                                E{vr::VREvent_ButtonTouch, 1, 2}, E{vr::VREvent_ButtonUntouch, 1, 2}));

    // The event's size is checked: a caller built with another packing gets nothing.
    AdvanceTo(10);
    vr::VREvent_t event{};
    EXPECT_FALSE(system_->PollNextEvent(&event, sizeof(event) + 4));
    EXPECT_STREQ(system_->GetEventTypeNameFromEnum(vr::VREvent_ButtonPress), "VREvent_ButtonPress");
}

// The VR output polls devices on its render thread, but an application may ask from another thread
// while frames go on: every answer must belong to one frame, and frames never go backwards.
TEST_F(SimulatedRuntimeTest, QueriesFromAnotherThreadSeeWholeFramesInOrder)
{
    Start(kScriptedWorld);
    std::atomic<bool> done{false};
    std::atomic<uint64_t> reads{0};
    uint64_t backwards = 0, torn = 0;
    std::thread reader([&] {
        uint64_t last = 0;
        while (!done.load()) {
            uint64_t frame = 0;
            system_->GetTimeSinceLastVsync(nullptr, &frame);
            vr::VRControllerState_t state{};
            if (system_->GetControllerState(2, &state, sizeof(state)) && state.unPacketNum < frame)
                ++torn;
            backwards += frame < last ? 1 : 0;
            last = frame;
            ++reads;
        }
    });
    // Frames go on until the reader has overlapped with a good number of them, however the two threads
    // are scheduled.
    uint64_t frame = 0;
    while (frame < 300 || (reads.load() < 100 && frame < 1000000))
        AdvanceTo(++frame);
    done = true;
    reader.join();
    EXPECT_EQ(backwards, 0u);
    EXPECT_EQ(torn, 0u) << "a state older than the frame read before it";
    EXPECT_GE(reads.load(), 100u);
}

// Pacing is checked from below only: a wait may last longer on a loaded machine, never shorter.
TEST_F(SimulatedRuntimeTest, PacedFramesTakeAtLeastTheRefreshPeriod)
{
    // The vsync grid starts during VR_Init, so the n-th frame cannot start earlier than n periods after
    // a time taken before it.
    const auto start = std::chrono::steady_clock::now();
    Start(R"({"refresh_rate": 200})");
    for (int i = 0; i < 10; ++i)
        compositor_->WaitGetPoses(nullptr, 0, nullptr, 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
}

struct BadConfiguration {
    const char* json;
    const char* message;
};

class BadConfigurationTest : public ::testing::TestWithParam<BadConfiguration> {};

TEST_P(BadConfigurationTest, FailsInitCleanlyWithAMessage)
{
    IsolatedOpenVREnvironment isolated;
    isolated.UseSimulatedRuntime(GetParam().json);
    ::testing::internal::CaptureStderr();
    vr::EVRInitError error = vr::VRInitError_None;
    vr::IVRSystem* system = vr::VR_Init(&error, vr::VRApplication_Scene);
    const std::string output = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(system, nullptr);
    EXPECT_EQ(error, vr::VRInitError_Init_SettingsInitFailed);
    EXPECT_EQ(vr::VRCompositor(), nullptr);
    EXPECT_THAT(output, HasSubstr("vrsim.json"));
    EXPECT_THAT(output, HasSubstr(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Messages, BadConfigurationTest,
    ::testing::Values(BadConfiguration{"{\"paced\": false,", "invalid JSON at offset"},
                      BadConfiguration{R"({"refresh_rat": 90})", "refresh_rat: unknown member"},
                      BadConfiguration{R"({"refresh_rate": 0})", "refresh_rate: expected a number from 1 to 1000"},
                      BadConfiguration{R"({"devices": [{"class": "robot"}]})",
                                       "devices[0].class: expected controller, tracker or tracking_reference"},
                      BadConfiguration{R"({"devices": [{}, {"connected": [[5, 2]]}]})",
                                       "devices[1].connected[0]: expected a frame number"},
                      BadConfiguration{R"({"devices": [{"buttons": [{"button": 64}]}]})",
                                       "devices[0].buttons[0].button: expected an integer from 0 to 63"},
                      BadConfiguration{R"({"head": {"path": "keyframes"}})", "the keyframes path needs"},
                      BadConfiguration{R"({"head": {"keyframes": [{"frame": 5}, {"frame": 5}]}})",
                                       "increasing frame order"},
                      BadConfiguration{R"({"capture": {"png_frames": [1]}})", "png_frames needs a png_folder"},
                      BadConfiguration{R"({"devices": [{"render_model": "vr_controller_vive_1_5"}]})",
                                       "devices[0].render_model: expected one of norvane_vrsim_headset, "
                                       "norvane_vrsim_controller, norvane_vrsim_controller_trigger, "
                                       "norvane_vrsim_tracker, norvane_vrsim_base_station"},
                      BadConfiguration{R"({"render_model_loading_calls": -1})",
                                       "render_model_loading_calls: expected an integer from 0 to 1000"},
                      BadConfiguration{"[1, 2]", "expected an object"}));

TEST(SimulatedRuntimeConfigTest, MissingNamedFileFailsAndConfigFolderFileIsFound)
{
    IsolatedOpenVREnvironment isolated;
    isolated.UseSimulatedRuntime();
    isolated.env.Set("NORVANE_VRSIM_CONFIG", (isolated.home.path() / "absent.json").string());
    ::testing::internal::CaptureStderr();
    vr::EVRInitError error = vr::VRInitError_None;
    EXPECT_EQ(vr::VR_Init(&error, vr::VRApplication_Scene), nullptr);
    EXPECT_THAT(::testing::internal::GetCapturedStderr(), HasSubstr("absent.json: cannot be read"));
    EXPECT_EQ(error, vr::VRInitError_Init_SettingsInitFailed);

    // Without the variable, vrsim.json in the OpenVR config folder is used.
    isolated.env.Unset("NORVANE_VRSIM_CONFIG");
    isolated.home.Write("vrconfig/vrsim.json", R"({"render_width": 640})");
    ScopedVRSession session;
    ASSERT_NE(session.system, nullptr);
    uint32_t width = 0, height = 0;
    session.system->GetRecommendedRenderTargetSize(&width, &height);
    EXPECT_EQ(width, 640u);
    EXPECT_EQ(height, 1680u);
}

}  // namespace
}  // namespace kesta
