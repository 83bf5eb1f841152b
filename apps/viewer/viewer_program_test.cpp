// The viewer program as a person runs it: against the simulated headset, unpaced, for a few frames,
// with the pictures it writes looked at, and its refusals when something it needs is missing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <regex>

#include "apps/viewer/picture_shrink.h"
#include "apps/viewer/testing/program_run.h"
#include "plugins/gl/testing/golden_image.h"

namespace kesta {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using testing::ProgramRun;
using testing::RunProgram;

using Environment = std::map<std::string, std::optional<std::string>>;

// A fresh folder for one test's output, kept under the build tree for a person to look at.
fs::path OutputFolder(const std::string& name)
{
    const fs::path folder = fs::path(NORVANE_VIEWER_TEST_OUTPUT) / name;
    fs::remove_all(folder);
    fs::create_directories(folder);
    return folder;
}

// No runtime named by the user: no VR_* variable, and HOME and XDG_CONFIG_HOME without a registry.
Environment WithoutUserRuntime(const fs::path& home)
{
    return {{"HOME", home.string()},
            {"XDG_CONFIG_HOME", (home / "config").string()},
            {"VR_OVERRIDE", std::nullopt},
            {"VR_CONFIG_PATH", std::nullopt},
            {"VR_LOG_PATH", std::nullopt},
            {"NORVANE_VRSIM_CONFIG", std::nullopt},
            {"NORVANE_PLUGINS_PATH", std::nullopt}};
}

// The user names the build's simulated runtime with a configuration of the test's own.
Environment WithSimulatedRuntime(const fs::path& folder, const std::string& config_json,
                                 const std::string& runtime = NORVANE_VRSIM_DIR)
{
    Environment environment = WithoutUserRuntime(folder);
    const fs::path config = folder / "test_vrsim.json";
    std::ofstream(config) << config_json;
    environment["VR_OVERRIDE"] = runtime;
    environment["VR_CONFIG_PATH"] = folder.string();
    environment["VR_LOG_PATH"] = folder.string();
    environment["NORVANE_VRSIM_CONFIG"] = config.string();
    return environment;
}

Picture LoadPicture(const fs::path& path)
{
    Picture picture;
    EXPECT_TRUE(testing::ReadPng(path.string(), picture)) << path;
    return picture;
}

double MeanDifference(const Picture& a, const Picture& b)
{
    EXPECT_EQ(a.data.size(), b.data.size());
    double sum = 0;
    for (std::size_t i = 0; i < std::min(a.data.size(), b.data.size()); ++i)
        sum += std::abs(int{a.data[i]} - int{b.data[i]});
    return a.data.empty() ? 0.0 : sum / static_cast<double>(a.data.size());
}

// Share of pixels whose colour differs from the top-left pixel's, the clear colour of the sky.
double ShareNotCleared(const Picture& picture)
{
    std::size_t different = 0;
    const std::size_t pixels = picture.data.size() / 4;
    for (std::size_t i = 0; i < pixels; ++i) {
        for (int c = 0; c < 3; ++c) {
            if (std::abs(int{picture.data[i * 4 + c]} - int{picture.data[c]}) > 8) {
                ++different;
                break;
            }
        }
    }
    return pixels == 0 ? 0.0 : static_cast<double>(different) / static_cast<double>(pixels);
}

// Mean column of the pixels in the first controller's marker colour (orange, any shade); -1 if none.
double MarkerColumn(const Picture& picture)
{
    double sum = 0;
    std::size_t count = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const std::uint8_t* p = &picture.data[static_cast<std::size_t>((y * picture.width + x) * 4)];
            const double r = p[0], g = p[1], b = p[2];
            if (r > 60 && g > 0.4 * r && g < 0.7 * r && b < 0.25 * r) {
                sum += x;
                ++count;
            }
        }
    }
    return count == 0 ? -1.0 : sum / static_cast<double>(count);
}

class ViewerProgramTest : public ::testing::Test {
protected:
    ProgramRun Run(const std::vector<std::string>& arguments, const Environment& environment)
    {
        ProgramRun run = RunProgram(NORVANE_VIEWER_PATH, arguments, environment);
        EXPECT_TRUE(run.started);
        // Whatever happens, the program ends by itself and never by a crash.
        EXPECT_TRUE(run.exited) << "ended by signal " << run.signal << "\n" << run.err;
        return run;
    }
};

TEST_F(ViewerProgramTest, ShowsTheDemoInBothEyesAndTheMirrorAndSummarisesTheRun)
{
    const fs::path out = OutputFolder("demo");
    const ProgramRun run = Run({"--frames", "6", "--unpaced", "--out", out.string()}, WithoutUserRuntime(out));
    ASSERT_EQ(run.exit_code, 0) << run.out << run.err;

    EXPECT_THAT(run.out, HasSubstr("VR runtime: the simulated headset in " NORVANE_VRSIM_DIR ", because no OpenVR "
                                   "runtime is named by VR_OVERRIDE or "));
    EXPECT_THAT(run.out, HasSubstr("  headset        serial VRSIM-HMD-0001 (norvane_vrsim)\n"));
    EXPECT_THAT(run.out,
                HasSubstr("  render size    1512 x 1680 per eye; mirror 1280 x 720, both eyes side by side\n"));
    EXPECT_THAT(run.out, HasSubstr("  frames         6, unpaced\n"));
    EXPECT_THAT(run.out, ::testing::ContainsRegex("frame time     mean [0-9.]+ ms \\([0-9.]+ frames per second\\), "
                                                  "99th percentile [0-9.]+ ms"));
    // Two controllers and a tracker, at the demo's places with the engine's handedness.
    EXPECT_THAT(run.out, HasSubstr("  device         VR Controller 0 at (-0.35, 1.20, -0.60)\n"));
    EXPECT_THAT(run.out, HasSubstr("  device         VR Controller 1 at (0.35, 1.20, -0.60)\n"));
    EXPECT_THAT(run.out, HasSubstr("  device         VR Tracker 0 at (0.00, 0.90, 0.70)\n"));
    // The demo presses the first controller's trigger on frames 3 and 4: the press is answered
    // with one pulse, which the next frame sends.
    std::smatch pulses;
    ASSERT_TRUE(std::regex_search(run.out, pulses,
                                  std::regex("haptic pulses  1 asked for on a trigger press; the simulated runtime "
                                             "recorded 1, at frames ([0-9]+)\n")))
        << run.out;
    EXPECT_GT(std::stoi(pulses[1]), 3);
    for (const char* file : {"frame_6_left.png", "frame_6_right.png", "mirror.png", "profile.txt"})
        EXPECT_THAT(run.out, HasSubstr((out / file).string())) << file;

    const Picture left = LoadPicture(out / "frame_6_left.png");
    const Picture right = LoadPicture(out / "frame_6_right.png");
    const Picture mirror = LoadPicture(out / "mirror.png");
    ASSERT_EQ(left.width, 1512);
    ASSERT_EQ(left.height, 1680);
    ASSERT_EQ(right.width, 1512);
    ASSERT_EQ(mirror.width, 1280);
    ASSERT_EQ(mirror.height, 720);
    // Each eye shows the scene, not just the clear colour.
    EXPECT_GT(ShareNotCleared(left), 0.05);
    EXPECT_GT(ShareNotCleared(right), 0.05);
    // The eyes see from 63 mm apart: the pictures differ.
    const Picture small_left = ShrinkPicture(left, 0, left.width, 64, 72);
    const Picture small_right = ShrinkPicture(right, 0, right.width, 64, 72);
    const double between_eyes = MeanDifference(small_left, small_right);
    EXPECT_GT(between_eyes, 1.0);
    // The mirror holds the left eye in its left half and the right eye in its right half.
    const Picture mirror_left = ShrinkPicture(mirror, 0, 640, 64, 72);
    const Picture mirror_right = ShrinkPicture(mirror, 640, 640, 64, 72);
    EXPECT_LT(MeanDifference(mirror_left, small_left), between_eyes / 2);
    EXPECT_LT(MeanDifference(mirror_right, small_right), between_eyes / 2);
    EXPECT_TRUE(testing::MatchesGolden(ShrinkPicture(mirror, 0, 1280, 320, 180), NORVANE_VIEWER_GOLDEN_DIR,
                                       out.string(), "demo_mirror", {12, 0.02}));

    std::ifstream profile(out / "profile.txt");
    const std::string profile_text((std::istreambuf_iterator<char>(profile)), std::istreambuf_iterator<char>());
    EXPECT_THAT(profile_text, HasSubstr("Profile of the last 6 frames"));
    for (const char* section :
         {"OpenVRFrameRenderer.RenderFrame", "OpenVRFrameRenderer.WaitGetPoses",
          "OpenVRFrameRenderer.RenderFrame.RenderLeftEye", "OpenVRFrameRenderer.RenderFrame.RenderRightEye",
          "OpenVRFrameRenderer.RenderFrame.SubmitToCompositor", "RenderSystem.BeginDrawFrame"})
        EXPECT_THAT(profile_text, HasSubstr(section));
}

TEST_F(ViewerProgramTest, TheControllerMarkerFollowsTheScriptedController)
{
    // A still head looking down the runtime's -z; the controller a metre ahead, left or right.
    double columns[2] = {};
    const char* places[2] = {"-0.25", "0.25"};
    for (int i = 0; i < 2; ++i) {
        const fs::path out = OutputFolder(std::string("marker_") + (i == 0 ? "left" : "right"));
        const std::string config =
            std::string(R"({"paced": false, "render_width": 320, "render_height": 352, "head": {"path": "static",
                "position": [0, 1.2, 0]}, "capture": {"png_folder": ")") +
            out.string() + R"(", "png_frames": [2]}, "devices": [{"class": "controller", "position": [)" + places[i] +
            ", 1.2, -1.0]}]}";
        const ProgramRun run =
            Run({"--frames", "2", "--unpaced", "--out", out.string()}, WithSimulatedRuntime(out, config));
        ASSERT_EQ(run.exit_code, 0) << run.out << run.err;
        EXPECT_THAT(run.out, HasSubstr("VR runtime: " NORVANE_VRSIM_DIR ", because VR_OVERRIDE names it\n"));
        EXPECT_THAT(run.out, HasSubstr(std::string("VR Controller 0 at (") + places[i] + ", 1.20, 1.00)"));
        columns[i] = MarkerColumn(LoadPicture(out / "frame_2_left.png"));
        ASSERT_GE(columns[i], 0.0) << "no marker in " << out;
    }
    // Half a metre to the right at a metre's distance moves the marker well right in the picture.
    EXPECT_GT(columns[1], columns[0] + 40.0);
}

TEST_F(ViewerProgramTest, AMissingRuntimeEndsWithAClearMessage)
{
    const fs::path out = OutputFolder("no_runtime");
    const ProgramRun run = Run({"--frames", "2", "--out", out.string()},
                               WithSimulatedRuntime(out, "{}", (out / "no_such_runtime").string()));
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_THAT(run.out, HasSubstr("VR runtime: " + (out / "no_such_runtime").string() + ", because VR_OVERRIDE"));
    EXPECT_THAT(run.out, HasSubstr("error: OpenVR initialization failed"));
    EXPECT_THAT(run.err, HasSubstr("norvane_viewer: the VR output could not open a session with the OpenVR runtime"));
    EXPECT_THAT(run.out, ::testing::Not(HasSubstr("Summary")));
}

TEST_F(ViewerProgramTest, ARuntimeThatRefusesToStartEndsWithAClearMessage)
{
    const fs::path out = OutputFolder("no_headset");
    const ProgramRun run =
        Run({"--frames", "2", "--out", out.string()}, WithSimulatedRuntime(out, R"({"hmd_present": false})"));
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_THAT(run.err, HasSubstr("norvane_viewer: the VR output could not open a session with the OpenVR runtime"));
}

TEST_F(ViewerProgramTest, AMissingModuleEndsWithAClearMessage)
{
    // A copy of the build tree's layout whose module folder lacks the VR module.
    const fs::path tree = OutputFolder("no_vr_module");
    fs::create_directories(tree / "apps");
    fs::create_directories(tree / "plugins");
    fs::copy_file(NORVANE_VIEWER_PATH, tree / "apps/norvane_viewer");
    fs::copy_file(fs::path(NORVANE_VIEWER_PATH).parent_path() / "viewer_demo_vrsim.json",
                  tree / "apps/viewer_demo_vrsim.json");
    fs::create_symlink(NORVANE_GL_MODULE_PATH, tree / "plugins/norvane_gl.so");
    fs::create_directory_symlink(NORVANE_VRSIM_DIR, tree / "vrsim");
    const ProgramRun run =
        RunProgram((tree / "apps/norvane_viewer").string(), {"--frames", "2", "--unpaced"}, WithoutUserRuntime(tree));
    ASSERT_TRUE(run.exited) << run.err;
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_THAT(run.err, HasSubstr("norvane_viewer: no frame renderer \"VR\" is registered: the VR module was not "
                                   "loaded (is its module in " +
                                   (tree / "plugins").string() + "?)"));
}

TEST_F(ViewerProgramTest, BadOptionsExitWithTwoAndSayWhatIsWrong)
{
    const ProgramRun run = Run({"--frames", "many"}, {});
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_EQ(run.err,
              "norvane_viewer: --frames needs a whole number from 1 to 1000000, not 'many'\n"
              "Try 'norvane_viewer --help'.\n");
    EXPECT_TRUE(run.out.empty());
    const ProgramRun help = Run({"--help"}, {});
    EXPECT_EQ(help.exit_code, 0);
    EXPECT_THAT(help.out, HasSubstr("Usage: norvane_viewer [options]"));
}

}  // namespace
}  // namespace kesta
