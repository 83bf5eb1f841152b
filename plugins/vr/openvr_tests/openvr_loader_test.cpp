// The client layer as the VR module uses it: runtime discovery, the init errors of each failure, the
// init token and the module's table of interface pointers.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/openvr/openvr_paths.h"
#include "plugins/vr/openvr_tests/vrsim_test_support.h"

namespace kesta {
namespace {

using testing::IsolatedOpenVREnvironment;
using testing::ScopedVRSession;

vr::EVRInitError InitError()
{
    vr::EVRInitError error = vr::VRInitError_None;
    vr::IVRSystem* system = vr::VR_Init(&error, vr::VRApplication_Scene);
    EXPECT_EQ(system, nullptr);
    if (system != nullptr)
        vr::VR_Shutdown();
    return error;
}

TEST(OpenVRLoaderTest, EachMissingPieceGivesItsOwnInitError)
{
    IsolatedOpenVREnvironment isolated;
    // Nothing at all: no variable, no registry file.
    EXPECT_EQ(InitError(), vr::VRInitError_Init_PathRegistryNotFound);
    EXPECT_EQ(vr::VRCompositor(), nullptr);
    EXPECT_EQ(vr::VRSystem(), nullptr);

    const std::filesystem::path runtime = isolated.home.path() / "runtime";
    isolated.env.Set("VR_OVERRIDE", runtime.string());
    EXPECT_EQ(InitError(), vr::VRInitError_Init_InstallationNotFound);

    std::filesystem::create_directories(runtime / "bin");
    EXPECT_EQ(InitError(), vr::VRInitError_Init_InstallationCorrupt);

    std::filesystem::create_directories(runtime / "bin" / "linux64");
    EXPECT_EQ(InitError(), vr::VRInitError_Init_VRClientDLLNotFound);

    // A file that is not a shared library.
    isolated.home.Write("runtime/bin/linux64/vrclient.so", "not a library");
    EXPECT_EQ(InitError(), vr::VRInitError_Init_VRClientDLLNotFound);

    // A real shared library without the factory.
    std::filesystem::remove(runtime / "bin" / "linux64" / "vrclient.so");
    std::filesystem::create_symlink(NORVANE_VR_MODULE_PATH, runtime / "bin" / "linux64" / "vrclient.so");
    EXPECT_EQ(InitError(), vr::VRInitError_Init_FactoryNotFound);
    EXPECT_EQ(vr::VRCompositor(), nullptr);
}

TEST(OpenVRLoaderTest, OverrideOnTheSimulatedRuntimeGivesWorkingInterfaces)
{
    IsolatedOpenVREnvironment isolated;
    isolated.UseSimulatedRuntime();
    ScopedVRSession session;
    ASSERT_EQ(session.error, vr::VRInitError_None);
    ASSERT_NE(session.system, nullptr);
    EXPECT_EQ(vr::VRSystem(), session.system);
    ASSERT_NE(vr::VRCompositor(), nullptr);
    EXPECT_TRUE(vr::VR_IsInterfaceVersionValid(vr::IVRSystem_Version));
    EXPECT_TRUE(vr::VR_IsInterfaceVersionValid(vr::IVRCompositor_Version));
    EXPECT_FALSE(vr::VR_IsInterfaceVersionValid("IVRSystem_016"));

    vr::EVRInitError error = vr::VRInitError_None;
    EXPECT_EQ(vr::VR_GetGenericInterface("IVROverlay_016", &error), nullptr);
    EXPECT_EQ(error, vr::VRInitError_Init_InvalidInterface);

    uint32_t width = 0, height = 0;
    session.system->GetRecommendedRenderTargetSize(&width, &height);
    EXPECT_EQ(width, 1512u);
    EXPECT_EQ(height, 1680u);
    EXPECT_EQ(vr::VRCompositor()->WaitGetPoses(nullptr, 0, nullptr, 0), vr::VRCompositorError_None);
}

TEST(OpenVRLoaderTest, CompositorIsNullAfterShutdownAndValidAgainAfterANewInit)
{
    IsolatedOpenVREnvironment isolated;
    isolated.UseSimulatedRuntime();
    vr::EVRInitError error = vr::VRInitError_Unknown;
    ASSERT_NE(vr::VR_Init(&error, vr::VRApplication_Scene), nullptr);
    const uint32_t first_token = vr::VR_GetInitToken();
    ASSERT_NE(vr::VRCompositor(), nullptr);

    vr::VR_Shutdown();
    EXPECT_NE(vr::VR_GetInitToken(), first_token);
    EXPECT_EQ(vr::VRCompositor(), nullptr);
    EXPECT_EQ(vr::VRSystem(), nullptr);
    EXPECT_FALSE(vr::VR_IsInterfaceVersionValid(vr::IVRCompositor_Version));
    EXPECT_EQ(vr::VR_GetGenericInterface(vr::IVRCompositor_Version, &error), nullptr);
    EXPECT_EQ(error, vr::VRInitError_Init_NotInitialized);

    vr::IVRSystem* system = vr::VR_Init(&error, vr::VRApplication_Scene);
    ASSERT_NE(system, nullptr);
    vr::IVRCompositor* compositor = vr::VRCompositor();
    ASSERT_NE(compositor, nullptr);
    // The new session's objects work: the old cached pointers were dropped with the token.
    EXPECT_EQ(compositor->WaitGetPoses(nullptr, 0, nullptr, 0), vr::VRCompositorError_None);
    EXPECT_TRUE(system->IsTrackedDeviceConnected(vr::k_unTrackedDeviceIndex_Hmd));
    vr::VR_Shutdown();
    EXPECT_EQ(vr::VRCompositor(), nullptr);
}

TEST(OpenVRLoaderTest, SecondInitWithoutShutdownStartsAFreshSession)
{
    IsolatedOpenVREnvironment isolated;
    isolated.UseSimulatedRuntime(R"({"paced": false})");
    vr::EVRInitError error = vr::VRInitError_Unknown;
    ASSERT_NE(vr::VR_Init(&error, vr::VRApplication_Scene), nullptr);
    ASSERT_EQ(vr::VRCompositor()->WaitGetPoses(nullptr, 0, nullptr, 0), vr::VRCompositorError_None);
    const uint32_t token = vr::VR_GetInitToken();

    vr::IVRSystem* system = vr::VR_Init(&error, vr::VRApplication_Scene);
    ASSERT_NE(system, nullptr);
    EXPECT_GT(vr::VR_GetInitToken(), token);
    uint64_t frame = 99;
    system->GetTimeSinceLastVsync(nullptr, &frame);
    EXPECT_EQ(frame, 0u) << "the new session starts at frame 0";
    vr::VR_Shutdown();
}

TEST(OpenVRLoaderTest, FailedInitLeavesNoSessionBehind)
{
    IsolatedOpenVREnvironment isolated;
    isolated.UseSimulatedRuntime(R"({"hmd_present": false})");
    EXPECT_EQ(InitError(), vr::VRInitError_Init_HmdNotFound);
    EXPECT_EQ(vr::VRCompositor(), nullptr);
    EXPECT_FALSE(vr::VR_IsInterfaceVersionValid(vr::IVRSystem_Version));
}

TEST(OpenVRLoaderTest, RegistryFileInTheXdgOrHomeConfigFolderFindsTheRuntime)
{
    const std::string registry = std::string(R"({"runtime": [")") + testing::SimulatedRuntimeFolder() +
                                 R"(", "/elsewhere"], "config": ["/tmp"], "log": ["/tmp"], "version": 1})";
    {
        IsolatedOpenVREnvironment isolated;
        isolated.home.Write("config/openvr/openvrpaths.vrpath", registry);
        ScopedVRSession session;
        EXPECT_EQ(session.error, vr::VRInitError_None);
        EXPECT_NE(session.system, nullptr);
    }
    {
        IsolatedOpenVREnvironment isolated;
        isolated.env.Unset("XDG_CONFIG_HOME");
        isolated.home.Write(".config/openvr/openvrpaths.vrpath", registry);
        ScopedVRSession session;
        EXPECT_EQ(session.error, vr::VRInitError_None);
    }
}

TEST(OpenVRLoaderTest, VariablesOverrideTheRegistryFile)
{
    IsolatedOpenVREnvironment isolated;
    isolated.home.Write("config/openvr/openvrpaths.vrpath",
                        R"({"runtime": ["/no/such/runtime"], "config": ["/cfg"], "log": ["/log"]})");
    EXPECT_EQ(InitError(), vr::VRInitError_Init_InstallationNotFound);

    isolated.env.Set("VR_OVERRIDE", testing::SimulatedRuntimeFolder());
    OpenVRPaths paths;
    ASSERT_EQ(FindOpenVRPaths(paths), vr::VRInitError_None);
    EXPECT_EQ(paths.runtime, testing::SimulatedRuntimeFolder());
    EXPECT_EQ(paths.config, "/cfg") << "entries without a variable still come from the file";
    EXPECT_EQ(paths.log, "/log");
    ScopedVRSession session;
    EXPECT_EQ(session.error, vr::VRInitError_None);
}

TEST(OpenVRLoaderTest, UnreadableRegistryCountsAsNone)
{
    IsolatedOpenVREnvironment isolated;
    isolated.home.Write("config/openvr/openvrpaths.vrpath", R"({"runtime": "not a list"})");
    EXPECT_EQ(InitError(), vr::VRInitError_Init_PathRegistryNotFound);
    isolated.home.Write("config/openvr/openvrpaths.vrpath", "{ truncated");
    EXPECT_EQ(InitError(), vr::VRInitError_Init_PathRegistryNotFound);
    isolated.home.Write("config/openvr/openvrpaths.vrpath", R"({"runtime": []})");
    EXPECT_EQ(InitError(), vr::VRInitError_Init_PathRegistryNotFound);
}

TEST(OpenVRPathsTest, ParsesFirstEntriesAndExternalDrivers)
{
    OpenVRPaths paths;
    ASSERT_TRUE(ParseOpenVRPaths(
        R"({"runtime": ["/a", "/b"], "config": ["/c"], "log": ["/l"], "external_drivers": ["/d1", "/d2"]})", paths));
    EXPECT_EQ(paths.runtime, "/a");
    EXPECT_EQ(paths.config, "/c");
    EXPECT_EQ(paths.log, "/l");
    EXPECT_EQ(paths.external_drivers, (std::vector<std::string>{"/d1", "/d2"}));

    ASSERT_TRUE(ParseOpenVRPaths(R"({"runtime": ["/r"], "external_drivers": null})", paths));
    EXPECT_EQ(paths.runtime, "/r");
    EXPECT_TRUE(paths.external_drivers.empty());

    OpenVRPaths untouched;
    untouched.runtime = "/kept";
    EXPECT_FALSE(ParseOpenVRPaths("[]", untouched));
    EXPECT_FALSE(ParseOpenVRPaths(R"({"runtime": [1]})", untouched));
    EXPECT_FALSE(ParseOpenVRPaths(R"({"external_drivers": "/d"})", untouched));
    EXPECT_EQ(untouched.runtime, "/kept");
}

TEST(OpenVRPathsTest, XdgConfigHomeComesBeforeHome)
{
    testing::ScopedEnvironment env;
    env.Set("XDG_CONFIG_HOME", "/xdg");
    env.Set("HOME", "/home/user");
    EXPECT_EQ(OpenVRPathsFile(), "/xdg/openvr/openvrpaths.vrpath");
    env.Set("XDG_CONFIG_HOME", "");
    EXPECT_EQ(OpenVRPathsFile(), "/home/user/.config/openvr/openvrpaths.vrpath");
    env.Unset("HOME");
    env.Unset("XDG_CONFIG_HOME");
    EXPECT_EQ(OpenVRPathsFile(), "");
}

// The loader's state is process-wide: queries from other threads during init and shutdown must see
// either a whole session or none.
TEST(OpenVRLoaderTest, QueriesFromAnotherThreadDuringInitAndShutdownAreSafe)
{
    IsolatedOpenVREnvironment isolated;
    isolated.UseSimulatedRuntime(R"({"paced": false})");
    std::atomic<bool> done{false};
    std::thread reader([&] {
        while (!done.load()) {
            vr::EVRInitError error = vr::VRInitError_None;
            (void)vr::VR_IsInterfaceVersionValid(vr::IVRSystem_Version);
            void* system = vr::VR_GetGenericInterface(vr::IVRSystem_Version, &error);
            EXPECT_TRUE((system != nullptr) == (error == vr::VRInitError_None));
            (void)vr::VR_GetInitToken();
        }
    });
    uint32_t last_token = vr::VR_GetInitToken();
    for (int i = 0; i < 50; ++i) {
        vr::EVRInitError error = vr::VRInitError_Unknown;
        const uint32_t token = vr::VR_InitInternal2(&error, vr::VRApplication_Scene, nullptr);
        ASSERT_EQ(error, vr::VRInitError_None);
        EXPECT_GT(token, last_token);
        vr::VR_ShutdownInternal();
        last_token = vr::VR_GetInitToken();
        EXPECT_GT(last_token, token);
    }
    done = true;
    reader.join();
    EXPECT_EQ(vr::VRCompositor(), nullptr);
}

}  // namespace
}  // namespace kesta
