// Sections summed over frames from real profiler records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/viewer/profile_summary.h"

namespace kesta {
namespace {

using ::testing::HasSubstr;

// A frame record with the given sections and durations, as the profiler builds it.
ProfileFrame MakeFrame(std::initializer_list<std::pair<const char*, time_ns>> sections)
{
    ProfileFrame frame;
    for (const auto& [name, duration] : sections)
        frame.sections.push_back({name, duration, {frame.events.size()}});
    return frame;
}

TEST(ProfileSummaryTest, MeansArePerAddedFrameAndTheLongestFrameIsKept)
{
    ProfileSummary summary;
    summary.Add(MakeFrame({{"OpenVRFrameRenderer.RenderFrame", 4000000}, {"RenderSystem.BeginDrawFrame", 1000000}}));
    summary.Add(MakeFrame({{"OpenVRFrameRenderer.RenderFrame", 8000000}}));
    EXPECT_EQ(summary.Frames(), 2u);
    const auto& frame = summary.Sections().at("OpenVRFrameRenderer.RenderFrame");
    EXPECT_EQ(frame.frames, 2u);
    EXPECT_EQ(frame.total, 12000000);
    EXPECT_EQ(frame.longest_frame, 8000000);
    const std::string text = summary.Format();
    EXPECT_THAT(text, HasSubstr("last 2 frames"));
    // 12 ms over two frames, 8 ms the longest; 0.5 ms mean for the section seen in one frame.
    EXPECT_THAT(text, ::testing::ContainsRegex("OpenVRFrameRenderer.RenderFrame +6.000 +8.000 +1.00"));
    EXPECT_THAT(text, ::testing::ContainsRegex("RenderSystem.BeginDrawFrame +0.500 +1.000 +0.50"));
}

TEST(ProfileSummaryTest, SectionsOfTheRealProfilerCountEveryOpening)
{
    Profiler profiler;
    for (int frame = 0; frame < 3; ++frame) {
        profiler.EndSection(profiler.BeginSection("Eye"));
        profiler.EndSection(profiler.BeginSection("Eye"));
        profiler.EndFrame();
    }
    ProfileSummary summary;
    summary.Add(profiler.GetLastFrame());
    EXPECT_EQ(summary.Sections().at("Eye").events, 2u);
    EXPECT_THAT(summary.Format(), ::testing::ContainsRegex("Eye +[0-9.]+ +[0-9.]+ +2.00"));
}

TEST(ProfileSummaryTest, NothingAddedGivesOnlyTheHeader)
{
    const std::string text = ProfileSummary().Format();
    EXPECT_THAT(text, HasSubstr("last 0 frames"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
}

}  // namespace
}  // namespace kesta
