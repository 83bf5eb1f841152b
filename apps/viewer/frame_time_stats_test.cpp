// Mean and nearest-rank percentiles of frame durations.
#include <gtest/gtest.h>

#include "apps/viewer/frame_time_stats.h"

namespace kesta {
namespace {

TEST(FrameTimeStatsTest, NoFrameGivesZeros)
{
    FrameTimeStats stats;
    EXPECT_EQ(stats.Count(), 0u);
    EXPECT_EQ(stats.Mean(), 0);
    EXPECT_EQ(stats.Percentile(99.0), 0);
}

TEST(FrameTimeStatsTest, NinetyNinthPercentileOfAHundredFramesIsTheSecondLongest)
{
    FrameTimeStats stats;
    // Added out of order: the percentile must not depend on the order of arrival.
    for (int i = 100; i >= 1; --i)
        stats.Add(i * 1000);
    EXPECT_EQ(stats.Count(), 100u);
    EXPECT_EQ(stats.Mean(), 50500);
    EXPECT_EQ(stats.Percentile(99.0), 99000);
    EXPECT_EQ(stats.Percentile(100.0), 100000);
    EXPECT_EQ(stats.Percentile(50.0), 50000);
    EXPECT_EQ(stats.Percentile(0.0), 1000);
}

TEST(FrameTimeStatsTest, FewFramesTakeTheLongestAndOutOfRangePercentsAreClamped)
{
    FrameTimeStats stats;
    stats.Add(3);
    stats.Add(10);
    stats.Add(4);
    EXPECT_EQ(stats.Mean(), 6);  // 17 / 3, rounded
    EXPECT_EQ(stats.Percentile(99.0), 10);
    EXPECT_EQ(stats.Percentile(250.0), 10);
    EXPECT_EQ(stats.Percentile(-5.0), 3);
}

}  // namespace
}  // namespace kesta
