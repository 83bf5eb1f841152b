// Libraries really mapped with dlopen: the fixture plug-ins that the test tree builds.

#include "platform/plugin/shared_library.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "io/testing/log_capture.h"
#include "platform/plugin/plugin_library.h"
#include "platform/plugin/testing/plugin_fixtures.h"

namespace kesta {
namespace {

using testing::FixtureFolder;
using testing::IsMapped;

class SharedLibraryTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        SetSharedLibraryPath("");
        folder.Add("good");
    }
    void TearDown() override { SetSharedLibraryPath(""); }

    testing::LogCapture capture;
    FixtureFolder folder;
};

TEST_F(SharedLibraryTest, FindsExportsAndReleasesTheLibraryWhenDestroyed)
{
    const std::string path = folder.File("good.so");
    auto library = LoadSharedLibrary(path);
    ASSERT_TRUE(library);
    EXPECT_TRUE(IsMapped(path));
    EXPECT_NE(library->GetFunctionPointer("PluginGetDescription"), nullptr);
    EXPECT_NE(library->GetFunctionPointer("PluginLoad"), nullptr);
    // Only the entry points are exported: the fixture's static copy of the core stays hidden.
    EXPECT_EQ(library->GetFunctionPointer("_ZN5kesta12g_log_systemE"), nullptr);
    EXPECT_EQ(library->GetFunctionPointer("NoSuchFunction"), nullptr);
    EXPECT_EQ(library->GetFunctionPointer(nullptr), nullptr);
    library.reset();
    EXPECT_FALSE(IsMapped(path));
    EXPECT_TRUE(capture.Lines().empty());
}

TEST_F(SharedLibraryTest, OpeningAMappedFileAgainCountsTheSameModule)
{
    const std::string path = folder.File("good.so");
    auto first = LoadSharedLibrary(path);
    auto second = LoadSharedLibrary(path);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->GetFunctionPointer("PluginGetDescription"), second->GetFunctionPointer("PluginGetDescription"));
    first.reset();
    EXPECT_TRUE(IsMapped(path)) << "released while another owner still holds it";
    second.reset();
    EXPECT_FALSE(IsMapped(path));
}

TEST_F(SharedLibraryTest, FailureLogsThePathAsGivenAndTheLoadersReason)
{
    folder.AddFile("not_a_library.so", std::string(256, 'x'));
    for (const std::string& path : {folder.File("not_a_library.so"), folder.File("missing.so")}) {
        // The loader's own text for the same failure.
        ASSERT_EQ(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL), nullptr);
        const std::string reason = dlerror();

        capture.Clear();
        std::string reported;
        EXPECT_FALSE(LoadSharedLibrary(path, &reported));
        EXPECT_EQ(reported, reason);
        EXPECT_EQ(capture.Lines(),
                  std::vector<std::string>{"error: LoadSharedLibrary('" + path + "') failed, reason: " + reason});
    }
}

TEST_F(SharedLibraryTest, EmptyPathIsRefusedRatherThanOpeningTheProgram)
{
    std::string reported;
    EXPECT_FALSE(LoadSharedLibrary("", &reported));
    EXPECT_EQ(reported, "no file name");
    EXPECT_EQ(capture.Lines(), std::vector<std::string>{"error: LoadSharedLibrary('') failed, reason: no file name"});
}

TEST_F(SharedLibraryTest, BareNamesResolveInTheLibraryPathFolderFirst)
{
    // Without a folder a bare name goes to the system's search, which does not know the fixture.
    EXPECT_FALSE(LoadSharedLibrary("good.so"));
    EXPECT_TRUE(capture.Contains("error",
                                 "LoadSharedLibrary('good.so') failed, reason: good.so: cannot open shared "
                                 "object file: No such file or directory"));

    SetSharedLibraryPath(folder.path());
    EXPECT_EQ(GetSharedLibraryPath(), folder.path());
    auto library = LoadSharedLibrary("good.so");
    ASSERT_TRUE(library);
    EXPECT_TRUE(IsMapped(folder.File("good.so")));
    // A name that is not in the folder still reaches the system's libraries.
    EXPECT_TRUE(LoadSharedLibrary("libc.so.6"));

    SetSharedLibraryPath("");
    EXPECT_FALSE(LoadSharedLibrary("good.so"));
}

TEST_F(SharedLibraryTest, PluginLibraryFindsTheThreeEntryPointsOrRefuses)
{
    PluginLibrary library;
    ASSERT_TRUE(library.Open(folder.File("good.so"))) << library.error();
    EXPECT_STREQ(library.get_description().name, "Fixture");
    library.Close();
    EXPECT_FALSE(IsMapped(folder.File("good.so")));

    folder.Add("no_unload");
    EXPECT_FALSE(library.Open(folder.File("no_unload.so")));
    EXPECT_EQ(library.error(), "missing entry point in " + folder.File("no_unload.so"));
    EXPECT_FALSE(library.IsOpen());
    EXPECT_FALSE(IsMapped(folder.File("no_unload.so")));

    EXPECT_FALSE(library.Open(folder.File("missing.so")));
    EXPECT_NE(library.error().find("No such file"), std::string::npos) << library.error();
}

}  // namespace
}  // namespace kesta
