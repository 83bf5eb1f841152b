// The runtime choice of host programs and the report read from the simulated runtime, against the
// real client layer and the simulated runtime.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "plugins/vr/openvr_tests/vrsim_test_support.h"
#include "plugins/vr/runtime_choice/simulated_runtime_report.h"
#include "plugins/vr/runtime_choice/vr_runtime_choice.h"

namespace kesta {
namespace {

using ::testing::HasSubstr;
using testing::IsolatedOpenVREnvironment;
using testing::ScopedVRSession;

constexpr const char* kSimulated = "/opt/simulated";

TEST(VRRuntimeChoiceTest, WithNothingNamedTheSimulatedRuntimeIsUsedAndTheReasonNamesWhereItLooked)
{
    IsolatedOpenVREnvironment isolated;
    const VRRuntimeChoice choice = ChooseVRRuntime(kSimulated);
    EXPECT_FALSE(choice.user_runtime);
    EXPECT_EQ(choice.runtime_folder, kSimulated);
    EXPECT_THAT(choice.reason, HasSubstr("VR_OVERRIDE"));
    EXPECT_THAT(choice.reason, HasSubstr((isolated.home.path() / "config/openvr/openvrpaths.vrpath").string()));
}

TEST(VRRuntimeChoiceTest, TheUsersRuntimeWinsAndTheReasonSaysWhoNamedIt)
{
    IsolatedOpenVREnvironment isolated;
    isolated.home.Write("config/openvr/openvrpaths.vrpath", R"({"runtime": ["/from/registry"]})");
    VRRuntimeChoice choice = ChooseVRRuntime(kSimulated);
    EXPECT_TRUE(choice.user_runtime);
    EXPECT_EQ(choice.runtime_folder, "/from/registry");
    EXPECT_THAT(choice.reason, HasSubstr("openvrpaths.vrpath names it"));

    isolated.env.Set("VR_OVERRIDE", "/from/variable");
    choice = ChooseVRRuntime(kSimulated);
    EXPECT_TRUE(choice.user_runtime);
    EXPECT_EQ(choice.runtime_folder, "/from/variable");
    EXPECT_EQ(choice.reason, "VR_OVERRIDE names it");
}

TEST(VRRuntimeChoiceTest, ABrokenOrEmptyRegistryFileNamesNoRuntime)
{
    IsolatedOpenVREnvironment isolated;
    isolated.home.Write("config/openvr/openvrpaths.vrpath", "{ not json");
    EXPECT_FALSE(ChooseVRRuntime(kSimulated).user_runtime);
    isolated.home.Write("config/openvr/openvrpaths.vrpath", R"({"runtime": []})");
    EXPECT_FALSE(ChooseVRRuntime(kSimulated).user_runtime);
}

TEST(VRRuntimeChoiceTest, SelectingTheSimulatedRuntimeHidesTheUsersRegistryFromTheClientLayer)
{
    IsolatedOpenVREnvironment isolated;
    isolated.home.Write("config/openvr/openvrpaths.vrpath", R"({"runtime": ["/from/registry"]})");
    const std::string state = (isolated.home.path() / "state").string();
    SelectSimulatedRuntime(kSimulated, state, "/demo/vrsim.json");
    const VRRuntimeChoice choice = ChooseVRRuntime("/elsewhere");
    EXPECT_EQ(choice.runtime_folder, kSimulated);
    EXPECT_EQ(std::string(std::getenv("VR_CONFIG_PATH")), state);
    EXPECT_EQ(std::string(std::getenv("VR_LOG_PATH")), state);
    EXPECT_EQ(std::string(std::getenv("NORVANE_VRSIM_CONFIG")), "/demo/vrsim.json");
}

TEST(SimulatedRuntimeReportTest, ReadsFramesAndPulsesOnlyWhileTheSimulatedRuntimeIsLoaded)
{
    IsolatedOpenVREnvironment isolated;
    isolated.UseSimulatedRuntime(R"({"paced": false, "devices": [{"class": "controller"}]})");
    SimulatedRuntimeReport report;
    EXPECT_FALSE(ReadSimulatedRuntimeReport(testing::SimulatedRuntimeFolder(), report));
    {
        ScopedVRSession session;
        ASSERT_NE(session.system, nullptr);
        vr::TrackedDevicePose_t poses[2]{};
        vr::VRCompositor()->WaitGetPoses(poses, 2, nullptr, 0);
        vr::VRCompositor()->WaitGetPoses(poses, 2, nullptr, 0);
        session.system->TriggerHapticPulse(1, 0, 1999);

        ASSERT_TRUE(ReadSimulatedRuntimeReport(testing::SimulatedRuntimeFolder(), report));
        EXPECT_EQ(report.frames, 2u);
        ASSERT_EQ(report.haptic_pulses.size(), 1u);
        EXPECT_EQ(report.haptic_pulses[0].frame, 2u);
        EXPECT_EQ(report.haptic_pulses[0].device_index, 1u);
        EXPECT_EQ(report.haptic_pulses[0].duration_microseconds, 1999u);
        EXPECT_FALSE(ReadSimulatedRuntimeReport("/not/a/runtime", report));
    }
    // The report took no lasting reference: the runtime is gone with the session.
    EXPECT_FALSE(ReadSimulatedRuntimeReport(testing::SimulatedRuntimeFolder(), report));
}

}  // namespace
}  // namespace kesta
