// The VR module as the host program loads it: found by the plug-in host in the build's plug-in
// folder, next to nothing else of the VR code (the simulated runtime lives in its own folder).

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

#include "foundation/log/log.h"
#include "platform/plugin/plugin_system.h"
#include "platform/plugin/testing/plugin_fixtures.h"
#include "plugins/engine_singletons.h"

namespace kesta {
namespace {

std::mutex g_lines_lock;
std::vector<std::string> g_lines;

void record_line(const std::string& message, const std::string& category, const std::string&, std::uint32_t, bool)
{
    std::lock_guard guard(g_lines_lock);
    g_lines.push_back(category + ": " + message);
}

TEST(VRModuleThroughPluginHost, IsFoundInThePluginFolderAndUnloadedBeforeTheLogStops)
{
    const std::string module_path = NORVANE_VR_MODULE_PATH;
    const std::string folder = std::filesystem::path(module_path).parent_path().string();
    g_lines.clear();
    {
        EngineSingletons engine;
        engine.log_system().SetOutputFunction(&record_line);
        PluginSystem& plugins = engine.plugin_system();
        plugins.SetDefaultSearchPaths(folder);
        EXPECT_EQ(plugins.search_paths().front(), folder + "/");
        EXPECT_GE(plugins.LoadPlugins(), 1u);

        const auto& records = plugins.plugins();
        const auto vr = std::find_if(records.begin(), records.end(),
                                     [](const auto& record) { return record->path == "norvane_openvr.so"; });
        ASSERT_NE(vr, records.end());
        EXPECT_STREQ((*vr)->description.name, "OpenVR");
        EXPECT_TRUE(testing::IsMapped(folder + "/norvane_openvr.so"));
        for (const auto& record : records)
            EXPECT_NE(record->path, "vrclient.so");
    }
    // Destroying the process-wide objects unloaded the module first, while the log still ran.
    std::lock_guard guard(g_lines_lock);
    EXPECT_NE(std::find(g_lines.begin(), g_lines.end(), "debug: Unloading plugin OpenVR [OpenVR frame renderer]"),
              g_lines.end());
    EXPECT_FALSE(testing::IsMapped(folder + "/norvane_openvr.so"));
}

}  // namespace
}  // namespace kesta
