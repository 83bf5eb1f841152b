// The simulated runtime's frame pacing, on a scripted clock: the tests do not depend on how fast the
// machine runs.

#include "plugins/vr/simulator/frame_pacer.h"

#include <gtest/gtest.h>

#include <vector>

namespace kesta::vrsim {
namespace {

using Clock = FramePacer::Clock;
using std::chrono::milliseconds;

// A clock that stands still until the test moves it; a sleep moves it to the wake-up time and is
// recorded.
struct ScriptedClock {
    Clock::time_point now{Clock::duration(1'000'000'000)};
    std::vector<Clock::time_point> sleeps;

    FramePacer::TimeSource Source()
    {
        return {[this] { return now; },
                [this](Clock::time_point until) {
                    sleeps.push_back(until);
                    if (until > now)
                        now = until;
                }};
    }
};

TEST(FramePacer, WaitsForTheNextVsyncOnTheGridAfterAMissedFrame)
{
    ScriptedClock clock;
    const Clock::time_point start = clock.now;
    FramePacer pacer(100.0, true, clock.Source());  // 10 ms period
    ASSERT_EQ(pacer.period(), milliseconds(10));

    // On time: 3 ms into the frame, the wait ends at the next vsync.
    clock.now = start + milliseconds(3);
    pacer.WaitForNextFrame();
    ASSERT_EQ(clock.sleeps.size(), 1u);
    EXPECT_EQ(clock.sleeps.back(), start + milliseconds(10));
    EXPECT_EQ(pacer.last_vsync(), start + milliseconds(10));

    // The application took 25 ms: the vsyncs at 20 and 30 are past, the one at 40 is next. Neither a
    // past vsync nor 25 + 10 ms off the grid.
    clock.now = start + milliseconds(35);
    pacer.WaitForNextFrame();
    EXPECT_EQ(clock.sleeps.back(), start + milliseconds(40));
    EXPECT_EQ(pacer.last_vsync(), start + milliseconds(40));

    // Pacing goes on from there on the same grid.
    clock.now = start + milliseconds(41);
    pacer.WaitForNextFrame();
    EXPECT_EQ(clock.sleeps.back(), start + milliseconds(50));
}

TEST(FramePacer, ArrivingExactlyOnALaterVsyncTakesThatVsync)
{
    ScriptedClock clock;
    const Clock::time_point start = clock.now;
    FramePacer pacer(100.0, true, clock.Source());
    clock.now = start + milliseconds(30);
    pacer.WaitForNextFrame();
    EXPECT_EQ(clock.sleeps.back(), start + milliseconds(30));
    EXPECT_EQ(pacer.last_vsync(), start + milliseconds(30));
}

TEST(FramePacer, RemainingTimeCountsDownToTheNextVsync)
{
    ScriptedClock clock;
    const Clock::time_point start = clock.now;
    FramePacer pacer(100.0, true, clock.Source());
    clock.now = start + milliseconds(4);
    EXPECT_NEAR(pacer.SecondsRemaining(), 0.006, 1e-9);
    clock.now = start + milliseconds(12);
    EXPECT_EQ(pacer.SecondsRemaining(), 0.0);
}

TEST(FramePacer, UnpacedNeverSleepsAndTakesTheCurrentTimeAsVsync)
{
    ScriptedClock clock;
    FramePacer pacer(90.0, false, clock.Source());
    clock.now += milliseconds(123);
    pacer.WaitForNextFrame();
    EXPECT_TRUE(clock.sleeps.empty());
    EXPECT_EQ(pacer.last_vsync(), clock.now);
    EXPECT_EQ(pacer.SecondsRemaining(), 0.0);
}

}  // namespace
}  // namespace kesta::vrsim
