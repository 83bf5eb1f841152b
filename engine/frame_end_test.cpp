// The frame end's duties toward the task system and the profiler.
#include <gtest/gtest.h>

#include "engine/frame_end.h"
#include "foundation/profiler/profiler.h"
#include "foundation/task/task_system.h"
#include "foundation/task/testing/test_tasks.h"

namespace kesta {
namespace {

using testing::Blocker;
using testing::make_task;

TEST(EndEngineFrameTest, AgesOnlyWorkerZerosOldestTaskOneLevelPerFrameAndEndsTheProfilerFrame)
{
    task_system tasks;
    ASSERT_TRUE(tasks.start(2));
    Profiler profiler;
    Blocker blocker;
    blocker.occupy(tasks);
    auto first = make_task();
    auto second = make_task();
    tasks.run_task(first, nullptr, 0, 0);
    tasks.run_task(second, nullptr, 0, 0);

    for (int frame = 1; frame <= 4; ++frame) {
        profiler.BeginSection("Frame");
        EndEngineFrame(tasks, profiler);
        EXPECT_EQ(tasks.get_cycle(), static_cast<std::uint64_t>(frame));
        EXPECT_EQ(profiler.GetFrame(), static_cast<std::uint64_t>(frame));
        ASSERT_EQ(profiler.GetLastFrame().sections.size(), 1u);
    }
    // Older than two cycles from frame 3 on, one task a frame: the first rose twice, the second
    // not at all, since the walk starts at the front and the raised task stays eligible.
    EXPECT_EQ(first->priority, 2);
    EXPECT_EQ(first->last_raise_cycle, 4u);
    EXPECT_EQ(second->priority, 0);
    blocker.release.open();
    tasks.wait_for_all();
    tasks.stop();
}

}  // namespace
}  // namespace kesta
