// The run's runtime configuration: the shipped demo with this run's pacing and capture.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include "apps/viewer/viewer_runtime_config.h"
#include "io/testing/temp_dir.h"

namespace kesta {
namespace {

using ::testing::HasSubstr;
using testing::TempDir;

TEST(ViewerRuntimeConfigTest, KeepsTheDemoAndReplacesPacingAndCapture)
{
    TempDir dir;
    dir.Write("demo.json", R"({"paced": true, "hmd_serial": "X-1", "capture": {"readback": true},
                               "devices": [{"class": "tracker"}]})");
    std::string error;
    ASSERT_TRUE(
        WriteViewerRuntimeConfig(dir.File("demo.json"), {false, "/out/pictures", 42}, dir.File("run.json"), error))
        << error;
    rapidjson::Document written;
    written.Parse(dir.Read("run.json").c_str());
    ASSERT_TRUE(written.IsObject());
    EXPECT_FALSE(written["paced"].GetBool());
    EXPECT_STREQ(written["hmd_serial"].GetString(), "X-1");
    EXPECT_EQ(written["devices"].Size(), 1u);
    const auto& capture = written["capture"];
    EXPECT_STREQ(capture["png_folder"].GetString(), "/out/pictures");
    ASSERT_EQ(capture["png_frames"].Size(), 1u);
    EXPECT_EQ(capture["png_frames"][0].GetUint64(), 42u);
    EXPECT_FALSE(capture.HasMember("readback"));
}

TEST(ViewerRuntimeConfigTest, AddsWhatTheDemoLeavesOut)
{
    TempDir dir;
    dir.Write("demo.json", "{}");
    std::string error;
    ASSERT_TRUE(WriteViewerRuntimeConfig(dir.File("demo.json"), {true, "p", 1}, dir.File("run.json"), error));
    rapidjson::Document written;
    written.Parse(dir.Read("run.json").c_str());
    EXPECT_TRUE(written["paced"].GetBool());
    EXPECT_TRUE(written.HasMember("capture"));
}

TEST(ViewerRuntimeConfigTest, RefusesAMissingOrBrokenDemoAndAnUnwritableTarget)
{
    TempDir dir;
    std::string error;
    EXPECT_FALSE(WriteViewerRuntimeConfig(dir.File("none.json"), {}, dir.File("run.json"), error));
    EXPECT_THAT(error, HasSubstr("cannot read the demo configuration"));
    dir.Write("broken.json", "{\"paced\": ");
    EXPECT_FALSE(WriteViewerRuntimeConfig(dir.File("broken.json"), {}, dir.File("run.json"), error));
    EXPECT_THAT(error, HasSubstr("broken.json: "));
    dir.Write("list.json", "[1, 2]");
    EXPECT_FALSE(WriteViewerRuntimeConfig(dir.File("list.json"), {}, dir.File("run.json"), error));
    EXPECT_THAT(error, HasSubstr("not a JSON object"));
    dir.Write("demo.json", "{}");
    EXPECT_FALSE(WriteViewerRuntimeConfig(dir.File("demo.json"), {}, dir.File("no/such/folder/run.json"), error));
    EXPECT_THAT(error, HasSubstr("cannot write"));
}

}  // namespace
}  // namespace kesta
