#include "foundation/time/timer_thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <vector>

#include "foundation/task/testing/test_tasks.h"
#include "foundation/thread/thread_name.h"

namespace kesta {
namespace {

using testing::eventually;

TEST(Clock, StartsNearZeroAndNeverGoesBack)
{
    const time_ns first = time_now();
    EXPECT_GE(first, 0);
    time_ns previous = first;
    for (int i = 0; i < 1000; ++i) {
        const time_ns now = time_now();
        ASSERT_GE(now, previous);
        previous = now;
    }
}

TEST(TimerThread, OneShotWithoutDelayRunsOnTheNextTickOnTheNamedThread)
{
    timer_thread timer("Timer");
    std::atomic<bool> ran{false};
    std::string thread_name;
    std::mutex name_lock;
    timer.run_once(
        [&] {
            std::lock_guard lock(name_lock);
            thread_name = get_thread_name(std::this_thread::get_id());
            ran = true;
        },
        0);
    timer.start(5);
    ASSERT_TRUE(eventually([&] { return ran.load(); }));
    EXPECT_EQ(timer.one_shot_count(), 0u);
    std::lock_guard lock(name_lock);
    EXPECT_EQ(thread_name, "Timer");
}

TEST(TimerThread, RunOnceReturnsTheIndexAtAppending)
{
    timer_thread timer;
    EXPECT_EQ(timer.run_once([] {}, 1), 0u);
    EXPECT_EQ(timer.run_once([] {}, 1), 1u);
    EXPECT_EQ(timer.run_once([] {}, 1), 2u);
    EXPECT_EQ(timer.one_shot_count(), 3u);
}

TEST(TimerThread, StopDiscardsPendingOneShotsWithoutCallingThem)
{
    timer_thread timer;
    std::atomic<int> calls{0};
    timer.run_once([&] { calls.fetch_add(1); }, 3'600'000'000'000);
    ASSERT_TRUE(timer.run_every([&] { calls.fetch_add(1); }, 3'600'000'000'000));
    timer.start(1);
    EXPECT_TRUE(timer.is_running());
    timer.stop();
    EXPECT_FALSE(timer.is_running());
    EXPECT_EQ(calls.load(), 0);
    EXPECT_EQ(timer.one_shot_count(), 0u);
    EXPECT_EQ(timer.periodic_count(), 0u);
}

TEST(TimerThread, PeriodicCatchesUpEveryMissedPeriodWithinOneTick)
{
    // A 1 ms period under a 40 ms tick: each tick calls the function about forty times in a row.
    timer_thread timer;
    std::mutex lock;
    std::vector<time_ns> calls;
    ASSERT_TRUE(timer.run_every(
        [&] {
            std::lock_guard guard(lock);
            calls.push_back(time_now());
        },
        1'000'000));
    timer.start(40);
    ASSERT_TRUE(eventually([&] {
        std::lock_guard guard(lock);
        return calls.size() >= 150;
    }));
    timer.stop();
    std::lock_guard guard(lock);
    std::size_t bursts = 1;
    for (std::size_t i = 1; i < calls.size(); ++i) {
        if (calls[i] - calls[i - 1] > 10'000'000)
            ++bursts;
    }
    EXPECT_LT(bursts * 10, calls.size()) << calls.size() << " calls in " << bursts << " ticks";
}

TEST(TimerThread, RefusesAPeriodBelowOneNanosecond)
{
    timer_thread timer;
    EXPECT_FALSE(timer.run_every([] {}, 0));
    EXPECT_FALSE(timer.run_every([] {}, -5));
    EXPECT_EQ(timer.periodic_count(), 0u);
}

TEST(TimerThread, FunctionMayScheduleAnotherThatRunsOnALaterTick)
{
    timer_thread timer;
    std::atomic<int> stage{0};
    timer.run_once(
        [&] {
            stage = 1;
            timer.run_once([&] { stage = 2; }, 0);
            EXPECT_EQ(stage.load(), 1) << "not run within the same walk";
        },
        0);
    timer.start(1);
    ASSERT_TRUE(eventually([&] { return stage.load() == 2; }));
    timer.stop();
}

TEST(TimerThread, StartTwiceKeepsOneThread)
{
    timer_thread timer;
    timer.start(1);
    timer.start(1);
    std::atomic<int> calls{0};
    timer.run_once([&] { calls.fetch_add(1); }, 0);
    ASSERT_TRUE(eventually([&] { return calls.load() == 1; }));
    timer.stop();
    EXPECT_EQ(calls.load(), 1);
}

}  // namespace
}  // namespace kesta
