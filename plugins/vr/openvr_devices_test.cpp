// The tracked devices as read-only views of the VR state: button and value codes, matrices and
// haptic requests. The frame that fills the state is tested against the simulated runtime.

#include <gtest/gtest.h>

#include "io/testing/log_capture.h"
#include "plugins/vr/openvr_controller_device.h"
#include "plugins/vr/openvr_hmd_device.h"
#include "plugins/vr/vr_state.h"

namespace kesta {
namespace {

class VRDevices : public ::testing::Test {
protected:
    void SetUp() override { g_vr_state = VRState(); }
    void TearDown() override { g_vr_state = VRState(); }

    testing::LogCapture log;
};

TEST_F(VRDevices, StartWithIdentityHeadZeroSlotsAndEveryButtonUp)
{
    OpenVRHMDDevice hmd;
    OpenVRControllerDevice controller(1);
    EXPECT_EQ(hmd.GetType(), 5);
    EXPECT_EQ(controller.GetType(), 6);
    EXPECT_EQ(hmd.GetMatrix(0), Matrix4::Identity());
    EXPECT_EQ(controller.GetMatrix(0), kZeroMatrix4);
    for (int code = 0; code < 256; ++code) {
        EXPECT_FALSE(controller.IsButtonDown(code));
        EXPECT_EQ(controller.GetValue(code), 0.0f);
    }
    // No session and no hardware: still connected, as the base says.
    EXPECT_TRUE(hmd.IsConnected());
    EXPECT_TRUE(controller.IsConnected());
    EXPECT_FALSE(hmd.SetEffect(0, 1.0f));
    EXPECT_TRUE(log.Lines().empty());
}

TEST_F(VRDevices, ButtonCodesReadTheirOpenVRBitsOfThisAndThePreviousFrame)
{
    const std::pair<int, int> code_to_bit[] = {{0, 32},  {1, 33},  {2, 34},  {3, 35},  {4, 36},  {5, 7},  {128, 2},
                                               {129, 0}, {130, 1}, {137, 4}, {138, 6}, {139, 3}, {140, 5}};
    OpenVRControllerDevice controller(2);
    for (const auto& [code, bit] : code_to_bit) {
        g_vr_state.device_state[2].ulButtonPressed = std::uint64_t{1} << bit;
        g_vr_state.device_prev_state[2].ulButtonPressed = ~(std::uint64_t{1} << bit);
        EXPECT_TRUE(controller.IsButtonDown(code)) << code;
        EXPECT_FALSE(controller.WasButtonDown(code)) << code;
        // Another slot's state is not this device's.
        EXPECT_FALSE(OpenVRControllerDevice(3).IsButtonDown(code)) << code;
    }
    // Unknown codes are up whatever the state; touches are not exposed.
    g_vr_state.device_state[2].ulButtonPressed = ~std::uint64_t{0};
    g_vr_state.device_state[2].ulButtonTouched = ~std::uint64_t{0};
    for (int code : {6, 7, 31, 32, 127, 131, 136, 141, -1})
        EXPECT_FALSE(controller.IsButtonDown(code)) << code;
}

TEST_F(VRDevices, ValueCodesTwelveToNineteenReadTheFirstFourAxes)
{
    vr::VRControllerState_t& state = g_vr_state.device_state[0];
    vr::VRControllerState_t& previous = g_vr_state.device_prev_state[0];
    for (int axis = 0; axis < 5; ++axis) {
        state.rAxis[axis] = {0.1f + axis, -0.1f - axis};
        previous.rAxis[axis] = {10.0f + axis, -10.0f - axis};
    }
    OpenVRControllerDevice controller(0);
    for (int code = 12; code <= 19; ++code) {
        const int axis = (code - 12) / 2;
        const bool is_x = (code - 12) % 2 == 0;
        EXPECT_EQ(controller.GetValue(code), is_x ? state.rAxis[axis].x : state.rAxis[axis].y) << code;
        EXPECT_EQ(controller.GetLastValue(code), is_x ? previous.rAxis[axis].x : previous.rAxis[axis].y) << code;
    }
    // The fifth axis is out of reach.
    for (int code : {11, 20, 21, 0})
        EXPECT_EQ(controller.GetValue(code), 0.0f) << code;
}

TEST_F(VRDevices, SlotsOutOfRangeReadNothing)
{
    OpenVRControllerDevice controller(64);
    EXPECT_FALSE(controller.IsButtonDown(0));
    EXPECT_FALSE(controller.WasButtonDown(0));
    EXPECT_EQ(controller.GetValue(12), 0.0f);
    EXPECT_EQ(controller.GetLastValue(12), 0.0f);
}

TEST_F(VRDevices, MatrixCodeZeroIsThePoseAndOtherCodesWarn)
{
    g_vr_state.head_matrix = Matrix4::FromPosition({1, 2, 3});
    g_vr_state.device_matrix[3] = Matrix4::FromPosition({4, 5, 6});
    OpenVRHMDDevice hmd;
    OpenVRControllerDevice tracker(3);
    EXPECT_EQ(hmd.GetMatrix(0), g_vr_state.head_matrix);
    EXPECT_EQ(tracker.GetMatrix(0), g_vr_state.device_matrix[3]);
    EXPECT_TRUE(log.Lines().empty());

    EXPECT_EQ(hmd.GetMatrix(1), Matrix4::Identity());
    EXPECT_EQ(tracker.GetMatrix(-7), Matrix4::Identity());
    EXPECT_EQ(log.Lines(), (std::vector<std::string>{"warn: OpenVRHMDDevice: Unsupported matrix code 1",
                                                     "warn: OpenVRControllerDevice: Unsupported matrix code -7"}));
}

TEST_F(VRDevices, SetEffectStoresThePulseLengthAndCancelsFirst)
{
    OpenVRControllerDevice controller(1);
    const std::uint16_t& pulse = g_vr_state.haptic_pulse[1];
    EXPECT_TRUE(controller.SetEffect(0, 0.5f));
    EXPECT_EQ(pulse, 1999);
    EXPECT_TRUE(controller.SetEffect(1, 2.0f));
    EXPECT_EQ(pulse, 3999);
    EXPECT_TRUE(controller.SetEffect(2, 1.0f));
    EXPECT_EQ(pulse, 3999);
    EXPECT_TRUE(controller.SetEffect(0, -1.0f));
    EXPECT_EQ(pulse, 0);

    // A refused effect still cancels what was pending.
    controller.SetEffect(0, 1.0f);
    EXPECT_FALSE(controller.SetEffect(3, 1.0f));
    EXPECT_EQ(pulse, 0);
    controller.SetEffect(0, 1.0f);
    EXPECT_FALSE(controller.SetEffect(-1, 1.0f));
    EXPECT_EQ(pulse, 0);
    EXPECT_EQ(g_vr_state.haptic_pulse[0], 0);
}

}  // namespace
}  // namespace kesta
