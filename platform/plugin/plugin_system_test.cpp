// The plug-in host against real libraries: the fixture plug-ins that the test tree builds, copied
// into a temporary folder, mapped with dlopen. The fixtures log their load and unload through the
// log of the context they are given, and note in the environment when they are mapped and released.

#include "platform/plugin/plugin_system.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <optional>

#include "foundation/task/task_system.h"
#include "foundation/task/testing/test_tasks.h"
#include "io/testing/log_capture.h"
#include "platform/plugin/testing/plugin_fixtures.h"

namespace kesta {
namespace {

using testing::FixtureFolder;
using testing::FixtureTrace;
using testing::IsMapped;
using Lines = std::vector<std::string>;

// Sets or clears an environment variable for the length of a test.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const char* value) : name_(name)
    {
        if (const char* before = std::getenv(name))
            before_ = before;
        if (value)
            ::setenv(name, value, 1);
        else
            ::unsetenv(name);
    }
    ~ScopedEnvironment()
    {
        if (before_)
            ::setenv(name_, before_->c_str(), 1);
        else
            ::unsetenv(name_);
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    const char* name_;
    std::optional<std::string> before_;
};

// What the host hands its plug-ins here: the log, through which the fixtures report.
PluginContext test_context()
{
    PluginContext context{};
    context.log_system = g_log_system;
    return context;
}

class PluginSystemTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        testing::ResetFixtureTrace();
        SetSharedLibraryPath("");
    }
    void TearDown() override { SetSharedLibraryPath(""); }

    std::string scanning(const FixtureFolder& scanned) const
    {
        return ": Scanning for plugin in '" + scanned.path() + "/'...";
    }

    testing::LogCapture capture;
    FixtureFolder folder;
    // Declared last: destroyed first, while the log and the folder are still there.
    PluginSystem plugins{&test_context};
};

TEST_F(PluginSystemTest, FolderWithoutLibrariesLogsTheScanAndZero)
{
    folder.AddFile("readme.txt", "not a plug-in");
    folder.AddFile("folder.so/inside.txt", "a folder is not a library");
    EXPECT_EQ(plugins.LoadPluginsFromPath(folder.path()), 0u);
    EXPECT_EQ(capture.Lines(), (Lines{scanning(folder), ": 0 plugin(s) loaded"}));
    EXPECT_TRUE(plugins.plugins().empty());
}

TEST_F(PluginSystemTest, AcceptedPluginGetsTheContextAndStaysMappedUntilUnload)
{
    folder.Add("good");
    EXPECT_EQ(plugins.LoadPluginsFromPath(folder.path() + "/./"), 1u);
    EXPECT_EQ(capture.Lines(), (Lines{scanning(folder), ": good.so loaded",
                                      ":  - Plugin Fixture [Fixture good] version 1.2.3", ": 1 plugin(s) loaded"}));
    // The scan leaves the folder in force for bare names.
    EXPECT_EQ(GetSharedLibraryPath(), folder.path() + "/");

    ASSERT_EQ(plugins.plugins().size(), 1u);
    const PluginRecord& record = *plugins.plugins().front();
    EXPECT_EQ(record.path, "good.so");
    EXPECT_TRUE(record.library);
    EXPECT_EQ(record.description.api_version, 1);
    EXPECT_STREQ(record.description.name, "Fixture");
    EXPECT_STREQ(record.description.version, "1.2.3");
    EXPECT_STREQ(record.description.toolchain, "test");
    EXPECT_TRUE(IsMapped(folder.File("good.so")));

    capture.Clear();
    plugins.UnloadPlugins();
    EXPECT_EQ(capture.Lines(), (Lines{"debug: Unloading plugin Fixture [Fixture good]", ": good.so unloaded"}));
    EXPECT_TRUE(plugins.plugins().empty());
    EXPECT_FALSE(IsMapped(folder.File("good.so")));
    EXPECT_EQ(FixtureTrace(), "good.so mapped;good.so released;");
}

TEST_F(PluginSystemTest, ScanChecksEachLibraryInNameOrderWithTheExactMessages)
{
    const std::vector<std::string> variants{"no_unload",     "good",           "api_version_2",
                                            "no_load",       "host_version_2", "build_flags_1",
                                            "build_flags_3", "load_fails",     "no_description"};
    for (const std::string& variant : variants)
        folder.Add(variant);
    folder.AddFile("not_a_library.so", std::string(256, 'x'));
    folder.AddFile("notes.txt", "");
    ASSERT_EQ(dlopen(folder.File("not_a_library.so").c_str(), RTLD_NOW | RTLD_LOCAL), nullptr);
    const std::string reason = dlerror();

    EXPECT_EQ(plugins.LoadPluginsFromPath(folder.path()), 2u);
    EXPECT_EQ(capture.Lines(), (Lines{
                                   scanning(folder),
                                   "debug: Incompatible plugin API version ('api_version_2.so')",
                                   "debug: Incompatible plugin build environment ('build_flags_1.so')",
                                   ": build_flags_3.so loaded",
                                   ":  - Plugin Fixture [Fixture build_flags_3] version 1.2.3",
                                   ": good.so loaded",
                                   ":  - Plugin Fixture [Fixture good] version 1.2.3",
                                   "debug: Incompatible plugin host version ('host_version_2.so')",
                                   ": load_fails.so loaded",
                                   "debug: Plugin failed while initializing ('load_fails.so')",
                                   "debug: Plugin description missing ('no_description.so')",
                                   "debug: Plugin load entry point missing ('no_load.so')",
                                   "debug: Plugin unload entry point missing ('no_unload.so')",
                                   "error: LoadSharedLibrary('not_a_library.so') failed, reason: " + reason,
                                   "debug: Plugin shared library load error ('not_a_library.so')",
                                   ": 2 plugin(s) loaded",
                               }));

    // Two libraries that both call themselves "Fixture" both load: their names are different text.
    ASSERT_EQ(plugins.plugins().size(), 2u);
    EXPECT_EQ(plugins.plugins()[0]->path, "build_flags_3.so");
    EXPECT_EQ(plugins.plugins()[1]->path, "good.so");
    // Every refused library was mapped, so its initialisers ran, and was released again.
    EXPECT_EQ(FixtureTrace(),
              "api_version_2.so mapped;api_version_2.so released;"
              "build_flags_1.so mapped;build_flags_1.so released;"
              "build_flags_3.so mapped;"
              "good.so mapped;"
              "host_version_2.so mapped;host_version_2.so released;"
              "load_fails.so mapped;load_fails.so released;"
              "no_description.so mapped;no_description.so released;"
              "no_load.so mapped;no_load.so released;"
              "no_unload.so mapped;no_unload.so released;");
    for (const std::string& variant : variants)
        EXPECT_EQ(IsMapped(folder.File(variant + ".so")), variant == "good" || variant == "build_flags_3") << variant;
}

TEST_F(PluginSystemTest, BlacklistedLibraryIsNeverMapped)
{
    folder.Add("good");
    folder.Add("build_flags_3");
    plugins.AddPluginsBlacklist({"*.dll", "go?d.so"});
    plugins.AddPluginsBlacklist({"*"});
    EXPECT_EQ(plugins.blacklist(), (Lines{"*.dll", "go?d.so", "*"}));

    EXPECT_EQ(plugins.LoadPluginsFromPath(folder.path()), 0u);
    // The first matching pattern is named; the pattern sees the bare file name.
    EXPECT_EQ(
        capture.Lines(),
        (Lines{scanning(folder), "debug: Ignoring blacklisted plugin ('build_flags_3.so') (matched against '*')",
               "debug: Ignoring blacklisted plugin ('good.so') (matched against 'go?d.so')", ": 0 plugin(s) loaded"}));
    EXPECT_EQ(FixtureTrace(), "");
    EXPECT_FALSE(IsMapped(folder.File("good.so")));
}

TEST_F(PluginSystemTest, ScanningTwiceRefusesEachLibraryAndKeepsTheCountRight)
{
    folder.Add("good");
    folder.Add("build_flags_3");
    ASSERT_EQ(plugins.LoadPluginsFromPath(folder.path()), 2u);
    capture.Clear();

    EXPECT_EQ(plugins.LoadPluginsFromPath(folder.path()), 0u);
    // The second open hands back the same module: PluginLoad is not called again.
    EXPECT_EQ(capture.Lines(), (Lines{scanning(folder), "debug: Plugin already loaded ('build_flags_3.so')",
                                      "debug: Plugin already loaded ('good.so')", ": 0 plugin(s) loaded"}));
    EXPECT_EQ(plugins.plugins().size(), 2u);
    // The refused records let go of their own reference only.
    EXPECT_TRUE(IsMapped(folder.File("good.so")));
    EXPECT_TRUE(IsMapped(folder.File("build_flags_3.so")));
    EXPECT_EQ(FixtureTrace(), "build_flags_3.so mapped;good.so mapped;");

    plugins.UnloadPlugins();
    EXPECT_FALSE(IsMapped(folder.File("good.so")));
    EXPECT_FALSE(IsMapped(folder.File("build_flags_3.so")));
}

TEST_F(PluginSystemTest, UnloadFollowsLoadOrderOnce)
{
    folder.Add("good");
    folder.Add("build_flags_3");
    // Against name order, by full path, which the record keeps as given.
    ASSERT_TRUE(plugins.LoadPlugin(folder.File("good.so")));
    ASSERT_TRUE(plugins.LoadPlugin(folder.File("build_flags_3.so")));
    EXPECT_EQ(plugins.plugins()[0]->path, folder.File("good.so"));
    capture.Clear();
    testing::ResetFixtureTrace();

    plugins.UnloadPlugins();
    EXPECT_EQ(capture.Lines(),
              (Lines{"debug: Unloading plugin Fixture [Fixture good]", ": good.so unloaded",
                     "debug: Unloading plugin Fixture [Fixture build_flags_3]", ": build_flags_3.so unloaded"}));
    EXPECT_EQ(FixtureTrace(), "good.so released;build_flags_3.so released;");

    capture.Clear();
    plugins.UnloadPlugins();
    EXPECT_TRUE(capture.Lines().empty());
}

TEST_F(PluginSystemTest, DestroyingTheSystemUnloadsWhatIsLoaded)
{
    folder.Add("good");
    {
        PluginSystem scoped(&test_context);
        ASSERT_TRUE(scoped.LoadPlugin(folder.File("good.so")));
        capture.Clear();
    }
    EXPECT_EQ(capture.Lines(), (Lines{"debug: Unloading plugin Fixture [Fixture good]", ": good.so unloaded"}));
    EXPECT_FALSE(IsMapped(folder.File("good.so")));
}

TEST_F(PluginSystemTest, UnloadWaitsForQueuedTasks)
{
    folder.Add("good");
    ASSERT_TRUE(plugins.LoadPlugin(folder.File("good.so")));
    task_system tasks;
    ASSERT_TRUE(tasks.start(1));
    task_system* const previous = g_task_system;
    g_task_system = &tasks;
    capture.Clear();

    // The only worker is held until the queued task runs, and nothing else runs that task unless
    // the unload waits for the task system: a waiting caller takes queued work itself.
    testing::Blocker blocker;
    blocker.occupy(tasks);
    tasks.run_task(testing::make_task([&] {
                       log("task finished");
                       blocker.release.open();
                   }),
                   nullptr, task::kAnyWorker, 0);
    plugins.UnloadPlugins();
    blocker.release.open();
    tasks.wait_for_all();
    EXPECT_EQ(capture.Lines(),
              (Lines{": task finished", "debug: Unloading plugin Fixture [Fixture good]", ": good.so unloaded"}));
    g_task_system = previous;
    tasks.stop();
}

TEST_F(PluginSystemTest, SearchPathsAreTheAbsoluteInstallPathThenTheEnvironmentVariable)
{
    {
        ScopedEnvironment unset(kPluginsPathVariable, nullptr);
        plugins.SetDefaultSearchPaths("/opt/norvane/bin/../plugins");
        EXPECT_EQ(plugins.search_paths(), Lines{"/opt/norvane/plugins/"});
        char current[4096];
        ASSERT_NE(::getcwd(current, sizeof current), nullptr);
        plugins.SetDefaultSearchPaths("relative/plugins/");
        EXPECT_EQ(plugins.search_paths(), Lines{std::string(current) + "/relative/plugins/"});
    }
    {
        ScopedEnvironment set(kPluginsPathVariable, "more//plugins");
        plugins.SetDefaultSearchPaths("/opt/norvane/plugins");
        EXPECT_EQ(plugins.search_paths(), (Lines{"/opt/norvane/plugins/", "more//plugins"}));
    }
}

TEST_F(PluginSystemTest, LoadPluginsScansEverySearchPathAndCountsTheTotal)
{
    FixtureFolder extra;
    folder.Add("good");
    extra.Add("build_flags_3");
    ScopedEnvironment set(kPluginsPathVariable, extra.path().c_str());
    plugins.SetDefaultSearchPaths(folder.path());

    EXPECT_EQ(plugins.LoadPlugins(), 2u);
    EXPECT_EQ(capture.Lines(),
              (Lines{": Load plugins from 2 default paths", scanning(folder), ": good.so loaded",
                     ":  - Plugin Fixture [Fixture good] version 1.2.3", ": 1 plugin(s) loaded", scanning(extra),
                     ": build_flags_3.so loaded", ":  - Plugin Fixture [Fixture build_flags_3] version 1.2.3",
                     ": 1 plugin(s) loaded", ": 2 plugin(s) loaded"}));
}

}  // namespace
}  // namespace kesta
