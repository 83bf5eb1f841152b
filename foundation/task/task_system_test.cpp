#include "foundation/task/task_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "foundation/log/log.h"
#include "foundation/task/testing/test_tasks.h"
#include "foundation/thread/processor_info.h"
#include "foundation/thread/thread_name.h"

namespace kesta {
namespace {

using testing::Blocker;
using ::testing::ElementsAre;
using testing::eventually;
using testing::Gate;
using testing::make_task;

// Records the order in which tasks ran.
class RunOrder {
public:
    std::shared_ptr<testing::function_task> task(std::string name)
    {
        return make_task([this, name] {
            std::lock_guard lock(mutex_);
            names_.push_back(name);
        });
    }
    std::vector<std::string> names()
    {
        std::lock_guard lock(mutex_);
        return names_;
    }

private:
    std::mutex mutex_;
    std::vector<std::string> names_;
};

// ---- Without workers everything runs on the calling thread ----

TEST(TaskSystemInline, RunTaskRunsBeforeReturningOnTheCallingThread)
{
    task_system system;
    auto set = std::make_shared<task_set>();
    auto t = make_task();
    system.run_task(t, set, 3, 0);
    EXPECT_EQ(t->runs(), 1);
    EXPECT_EQ(t->runner(), std::this_thread::get_id());
    EXPECT_FALSE(system.is_set_active(set));
    EXPECT_EQ(set->counter.load(), 0);
    EXPECT_EQ(t->affinity, 3) << "no pool, so nothing to clamp against";
}

TEST(TaskSystemInline, ContinuationOfAFinishedTaskRunsAtOnceUnderTheGivenSet)
{
    task_system system;
    auto set = std::make_shared<task_set>();
    auto other = std::make_shared<task_set>();
    RunOrder order;
    auto first = order.task("first");
    system.run_task(first, set);
    auto continuation = order.task("continuation");
    system.run_task_after_task(continuation, first, other);
    EXPECT_THAT(order.names(), ElementsAre("first", "continuation"));
    EXPECT_EQ(continuation->set, other);
    EXPECT_FALSE(system.is_set_active(other));
}

TEST(TaskSystemInline, ContinuationInheritsTheSetOfTheTaskItWaitedFor)
{
    task_system system;
    auto set = std::make_shared<task_set>();
    auto unrelated = std::make_shared<task_set>();
    std::shared_ptr<testing::function_task> self;
    bool set_open_in_continuation = false;
    auto continuation = make_task([&] { set_open_in_continuation = system.is_set_active(set); });
    self = make_task([&] {
        // Still running, hence pending: the continuation waits for the end of this run.
        system.run_task_after_task(continuation, self, unrelated);
        EXPECT_EQ(continuation->runs(), 0);
    });
    system.run_task(self, set);
    EXPECT_EQ(continuation->runs(), 1);
    EXPECT_EQ(continuation->set, set);
    EXPECT_TRUE(set_open_in_continuation) << "the continuation counts before the finished task closes the set";
    EXPECT_FALSE(system.is_set_active(set));
    EXPECT_FALSE(system.is_set_active(unrelated));
}

// ---- Queue order ----

TEST(TaskSystemOrder, EqualPrioritiesRunFirstInFirstOutAndHigherOnesGoAhead)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    Blocker blocker;
    blocker.occupy(system);
    RunOrder order;
    auto set = std::make_shared<task_set>();
    system.run_task(order.task("a0"), set, 0, 0);
    system.run_task(order.task("b0"), set, 0, 0);
    system.run_task(order.task("c5"), set, 0, 5);
    system.run_task(order.task("d-3"), set, 0, -3);
    system.run_task(order.task("e5"), set, 0, 5);
    system.run_task(order.task("f0"), set, 0, 0);
    blocker.release.open();
    system.wait_for_task_set(set);
    EXPECT_THAT(order.names(), ElementsAre("c5", "e5", "a0", "b0", "f0", "d-3"));
    system.stop();
}

TEST(TaskSystemOrder, PinnedWorkGoesBeforeSharedWorkWhateverThePriority)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    Blocker blocker;
    blocker.occupy(system);
    RunOrder order;
    system.run_task(order.task("shared high"), nullptr, task::kAnyWorker, 100);
    system.run_task(order.task("pinned low"), nullptr, 0, -100);
    blocker.release.open();
    // Nobody helps here, so the worker takes both: its own queue first.
    ASSERT_TRUE(eventually([&] { return order.names().size() == 2; }));
    EXPECT_THAT(order.names(), ElementsAre("pinned low", "shared high"));
    system.stop();
}

TEST(TaskSystemOrder, TaskPinnedToTheCallingWorkerRunsNestedInsideTheCaller)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    RunOrder order;
    auto inner = order.task("inner");
    auto outer = make_task([&] {
        system.run_task(inner, nullptr, 1, 0);
        EXPECT_EQ(inner->runs(), 1) << "ran before run_task returned";
        order.task("outer end")->run();
    });
    system.run_task(outer, nullptr, 1, 0);
    system.wait_for_task(outer);
    EXPECT_THAT(order.names(), ElementsAre("inner", "outer end"));
    EXPECT_EQ(inner->runner(), outer->runner());
    EXPECT_EQ(get_thread_name(outer->runner()), "Task worker #1");
    system.stop();
}

// ---- Affinity clamping ----

TEST(TaskSystemAffinity, AffinitiesBeyondThePoolLandOnTheLastWorker)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    for (int affinity : {1, 2, 7, 127, 128, 200, 254}) {
        auto t = make_task();
        system.run_task(t, nullptr, static_cast<std::uint8_t>(affinity), 0);
        system.wait_for_task(t);
        EXPECT_EQ(t->affinity, 1) << affinity;
        EXPECT_EQ(get_thread_name(t->runner()), "Task worker #1") << affinity;
    }
    auto any = make_task();
    system.run_task(any, nullptr, task::kAnyWorker, 0);
    system.wait_for_task(any);
    EXPECT_EQ(any->affinity, task::kAnyWorker);
    system.stop();
}

TEST(TaskSystemAffinity, WithOneWorkerEveryAffinityMapsToWorkerZero)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    for (int affinity : {0, 1, 5, 128, 254}) {
        auto t = make_task();
        system.run_task(t, nullptr, static_cast<std::uint8_t>(affinity), 0);
        system.wait_for_task(t);
        EXPECT_EQ(t->affinity, 0) << affinity;
        EXPECT_EQ(get_thread_name(t->runner()), "Task worker #0") << affinity;
    }
    system.stop();
}

// ---- Ageing ----

TEST(TaskSystemAgeing, AWaitingPinnedTaskRisesOneLevelPerFrameAfterThreeFrames)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    Blocker blocker;
    blocker.occupy(system);
    RunOrder order;
    auto set = std::make_shared<task_set>();
    auto old = order.task("old");
    system.run_task(old, set, 0, 0);  // cycle 0
    for (int frame = 0; frame < 3; ++frame) {
        system.advance_cycle();
        system.age_worker_queue(1, 0);
        if (frame < 2) {
            EXPECT_EQ(old->priority, 0) << "not older than two cycles at frame " << frame + 1;
        }
    }
    EXPECT_EQ(old->priority, 1);
    EXPECT_EQ(old->last_raise_cycle, 3u);
    EXPECT_EQ(old->scheduled_cycle, 0u);

    // Young tasks at levels 0 and 2 arrive; two more frames lift `old` past the level-2 one.
    system.run_task(order.task("young0"), set, 0, 0);
    system.run_task(order.task("young2"), set, 0, 2);
    system.advance_cycle();
    system.age_worker_queue(1, 0);
    EXPECT_EQ(old->priority, 2);
    system.advance_cycle();
    system.age_worker_queue(1, 0);
    EXPECT_EQ(old->priority, 3);
    EXPECT_EQ(old->last_raise_cycle, 5u);
    blocker.release.open();
    system.wait_for_task_set(set);
    EXPECT_THAT(order.names(), ElementsAre("old", "young2", "young0"));
    system.stop();
}

TEST(TaskSystemAgeing, CountLimitsTheRaisesAndZeroMeansAll)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    Blocker blocker;
    blocker.occupy(system);
    auto a = make_task();
    auto b = make_task();
    auto c = make_task();
    auto shared = make_task();
    system.run_task(a, nullptr, 0, 0);
    system.run_task(b, nullptr, 0, 0);
    system.run_task(c, nullptr, 0, 0);
    system.run_task(shared, nullptr, task::kAnyWorker, 0);
    for (int i = 0; i < 3; ++i)
        system.advance_cycle();
    system.age_worker_queue(1, 0);
    EXPECT_EQ(a->priority, 1);
    EXPECT_EQ(b->priority, 0);
    EXPECT_EQ(c->priority, 0);
    system.age_all_queues(0);
    EXPECT_EQ(a->priority, 2);
    EXPECT_EQ(b->priority, 1);
    EXPECT_EQ(c->priority, 1);
    EXPECT_EQ(shared->priority, 0) << "the shared queue does not age";
    system.age_worker_queue(0, 5);  // no such worker: nothing happens
    blocker.release.open();
    system.wait_for_all();
    system.stop();
}

TEST(TaskSystemAgeing, PriorityWrapsAroundAtEightBits)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    Blocker blocker;
    blocker.occupy(system);
    auto top = make_task();
    system.run_task(top, nullptr, 0, 127);
    for (int i = 0; i < 3; ++i)
        system.advance_cycle();
    system.age_worker_queue(1, 0);
    EXPECT_EQ(top->priority, -128);
    blocker.release.open();
    system.wait_for_all();
    system.stop();
}

// ---- Sets, links and set continuations ----

TEST(TaskSystemSets, ContinuationOfAQueuedTaskKeepsTheWaitedSetOpen)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    Blocker blocker;
    auto set = std::make_shared<task_set>();
    auto other = std::make_shared<task_set>();
    blocker.occupy(system, set);
    auto continuation = make_task();
    system.run_task_after_task(continuation, blocker.task, other, 0, 0);
    EXPECT_TRUE(system.is_task_pending(continuation));
    EXPECT_FALSE(system.is_set_active(other));
    std::thread release([&] { blocker.release.open(); });
    system.wait_for_task_set(set);
    EXPECT_EQ(continuation->runs(), 1) << "the set closed only after the continuation";
    EXPECT_EQ(continuation->set, set);
    release.join();
    system.stop();
}

TEST(TaskSystemSets, TaskAfterSetStartsWhenTheSetClosesAndCountsUnderItsOwnSet)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    Blocker blocker;
    auto first = std::make_shared<task_set>();
    auto second = std::make_shared<task_set>();
    blocker.occupy(system, first);
    RunOrder order;
    auto after = order.task("after");
    system.run_task_after_set(after, first, second, task::kAnyWorker, 0);
    EXPECT_TRUE(system.is_task_pending(after));
    EXPECT_EQ(after->runs(), 0);
    blocker.release.open();
    system.wait_for_task_set(first);
    system.wait_for_task_set(second);
    EXPECT_EQ(after->runs(), 1);
    EXPECT_EQ(after->set, second);

    // A set that is not active will not close again: the task starts at once.
    auto late = make_task();
    auto third = std::make_shared<task_set>();
    system.run_task_after_set(late, first, third, task::kAnyWorker, 0);
    system.wait_for_task_set(third);
    EXPECT_EQ(late->runs(), 1);
    system.stop();
}

TEST(TaskSystemSets, LinkedSetStaysOpenUntilTheSubTasksOfItsTaskEnd)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    auto own = std::make_shared<task_set>();
    std::atomic<int> sub_tasks_done{0};
    Gate sub_release;
    std::shared_ptr<testing::function_task> barrier;
    barrier = make_task([&] {
        auto children = std::make_shared<task_set>();
        system.retain_set(children);
        system.retain_set(own);
        system.link_sets(own, children);
        for (int i = 0; i < 4; ++i) {
            system.run_task(make_task([&] {
                                sub_release.wait();
                                sub_tasks_done.fetch_add(1);
                            }),
                            children, task::kAnyWorker, 0);
        }
        system.close_set(children);
    });
    system.run_task(barrier, own, task::kAnyWorker, 0);
    // Polled rather than waited for: a waiter would help with the held sub-tasks and block.
    ASSERT_TRUE(eventually([&] { return barrier->runs() == 1 && !system.is_task_pending(barrier); }));
    EXPECT_TRUE(system.is_set_active(own)) << "the sub-tasks are still held";
    std::thread release([&] { sub_release.open(); });
    system.wait_for_task_set(own);
    EXPECT_EQ(sub_tasks_done.load(), 4);
    release.join();
    system.stop();
}

TEST(TaskSystemSets, LinkToAClosedSetReleasesTheDependentAtOnce)
{
    task_system system;
    auto dependent = std::make_shared<task_set>();
    auto closed = std::make_shared<task_set>();
    system.retain_set(dependent);
    system.link_sets(dependent, closed);
    EXPECT_FALSE(system.is_set_active(dependent));
    system.wait_for_task_set(dependent);
}

TEST(TaskSystemSets, RetainAndCloseCountOpenWork)
{
    task_system system;
    auto set = std::make_shared<task_set>();
    system.retain_set(set);
    system.retain_set(set);
    EXPECT_EQ(set->counter.load(), 2);
    system.close_set(set);
    EXPECT_TRUE(system.is_set_active(set));
    system.close_set(set);
    EXPECT_FALSE(system.is_set_active(set));
    system.retain_set(nullptr);
    system.close_set(nullptr);
}

// ---- Waits ----

TEST(TaskSystemWait, WaitsOnNothingReturnAtOnce)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    system.wait_for_task_set(nullptr);
    system.wait_for_task_set(std::make_shared<task_set>());
    auto set = std::make_shared<task_set>();
    auto t = make_task();
    system.run_task(t, set, task::kAnyWorker, 0);
    ASSERT_TRUE(eventually([&] { return !system.is_set_active(set); }));
    system.wait_for_task_set(set);  // ended before the wait
    system.wait_for_task(t);
    system.wait_for_task(make_task());  // never scheduled
    system.wait_for_all();
    system.stop();
}

TEST(TaskSystemWait, WaiterRunsSharedWorkItselfAndPrefersItsOwnSet)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    Blocker blocker;
    blocker.occupy(system);
    auto mine = std::make_shared<task_set>();
    auto theirs = std::make_shared<task_set>();
    RunOrder order;
    auto their_task = order.task("theirs");
    auto my_task = order.task("mine");
    system.run_task(their_task, theirs, task::kAnyWorker, 0);
    system.run_task(my_task, mine, task::kAnyWorker, 0);
    system.wait_for_task_set(mine);
    EXPECT_THAT(order.names(), ElementsAre("mine"));
    EXPECT_EQ(my_task->runner(), std::this_thread::get_id());
    EXPECT_TRUE(system.is_set_active(theirs));

    // With none of its own left, a waiter takes any shared work.
    system.wait_for_task(their_task);
    EXPECT_EQ(their_task->runner(), std::this_thread::get_id());
    blocker.release.open();
    system.stop();
}

TEST(TaskSystemWait, SleepingWaiterWakesToRunSharedWorkQueuedLater)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    Blocker blocker;
    blocker.occupy(system);
    auto set = std::make_shared<task_set>();
    system.retain_set(set);
    auto late = make_task();
    std::thread producer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        system.run_task(late, set, task::kAnyWorker, 0);
        system.close_set(set);
    });
    // The only worker is held: the waiter itself must take the task that arrives while it sleeps.
    system.wait_for_task_set(set);
    EXPECT_EQ(late->runs(), 1);
    EXPECT_EQ(late->runner(), std::this_thread::get_id());
    producer.join();
    blocker.release.open();
    system.stop();
}

TEST(TaskSystemWait, WaitForTaskReturnsOnlyAfterThePinnedTaskRan)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    Gate release;
    std::atomic<bool> done{false};
    auto t = make_task([&] {
        release.wait();
        done = true;
    });
    system.run_task(t, nullptr, 1, 0);
    std::thread opener([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        release.open();
    });
    system.wait_for_task(t);
    EXPECT_TRUE(done.load());
    EXPECT_FALSE(system.is_task_pending(t));
    opener.join();
    system.stop();
}

TEST(TaskSystemWait, WaitForAllCoversQueuesRunningTasksAndContinuations)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    Blocker blocker;
    blocker.occupy(system);
    std::atomic<int> runs{0};
    auto counted = [&] { return make_task([&] { runs.fetch_add(1); }); };
    system.run_task(counted(), nullptr, 0, 0);
    system.run_task(counted(), nullptr, 1, 0);
    system.run_task(counted(), nullptr, task::kAnyWorker, 0);
    system.run_task_after_task(counted(), blocker.task, nullptr, task::kAnyWorker, 0);
    std::thread opener([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        blocker.release.open();
    });
    system.wait_for_all();
    EXPECT_EQ(runs.load(), 4);
    opener.join();
    system.stop();
}

// A task whose destructor takes a while, as one from a plug-in that must be gone before the
// plug-in is unloaded.
class SlowToDestroyTask : public task {
public:
    explicit SlowToDestroyTask(std::atomic<bool>& destroyed) : destroyed_(destroyed) {}
    ~SlowToDestroyTask() override
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        destroyed_.store(true);
    }
    void run() override {}

private:
    std::atomic<bool>& destroyed_;
};

TEST(TaskSystemWait, WaitForAllReturnsOnlyOnceTheWorkersReleasedTheirFinishedTasks)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    for (std::uint8_t worker = 0; worker < 2; ++worker) {
        std::atomic<bool> destroyed{false};
        system.run_task(std::make_shared<SlowToDestroyTask>(destroyed), nullptr, worker, 0);
        system.wait_for_all();
        EXPECT_TRUE(destroyed.load()) << "worker " << int{worker};
    }
    system.stop();
}

// ---- Start and stop ----

class TaskSystemLifecycle : public ::testing::Test {
protected:
    void SetUp() override
    {
        log_.SetOutputFunction([](const std::string&, const std::string&, const std::string&, std::uint32_t, bool) {});
        g_log_system = &log_;
    }
    void TearDown() override { g_log_system = nullptr; }

    LogSystem log_;
};

TEST_F(TaskSystemLifecycle, SecondStartLogsTheRequestAndLeavesTheWorkersAlone)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    EXPECT_FALSE(system.start(3));
    EXPECT_EQ(system.get_worker_count(), 2u);
    EXPECT_EQ(log_.GetTail(),
              "Task system startup: 2 worker requested\nTask system started: 2 worker created\n"
              "Task system startup: 3 worker requested\n");
    system.stop();
    EXPECT_EQ(system.get_worker_count(), 0u);
    ASSERT_TRUE(system.start(1)) << "a stopped system starts again";
    EXPECT_EQ(system.get_worker_count(), 1u);
}

TEST_F(TaskSystemLifecycle, ZeroWorkersMeansOnePerLogicalProcessor)
{
    task_system system;
    ASSERT_TRUE(system.start(0));
    EXPECT_EQ(system.get_worker_count(), processor_counts().logical);
    EXPECT_THAT(log_.GetTail(), ::testing::HasSubstr("Task system startup: 0 worker requested\n"));
}

TEST_F(TaskSystemLifecycle, StopRunsQueuedWorkAndDropsWorkDispatchedWhileStopping)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    Blocker blocker;
    auto late_set = std::make_shared<task_set>();
    auto late = make_task();
    std::atomic<int> queued_runs{0};
    auto stopping_observer = make_task([&] {
        blocker.started.wait();
        blocker.release.open();
        // Once the stop has begun, new work is dropped rather than queued or run.
        while (system.accepts_work())
            std::this_thread::yield();
        system.run_task(late, late_set, task::kAnyWorker, 0);
    });
    blocker.occupy(system);
    for (int i = 0; i < 5; ++i) {
        system.run_task(make_task([&] { queued_runs.fetch_add(1); }), nullptr, 0, 0);
        system.run_task(make_task([&] { queued_runs.fetch_add(1); }), nullptr, task::kAnyWorker, 0);
    }
    system.run_task(stopping_observer, nullptr, 1, 0);
    system.stop();
    EXPECT_EQ(queued_runs.load(), 10);
    EXPECT_EQ(stopping_observer->runs(), 1);
    EXPECT_EQ(late->runs(), 0);
    EXPECT_TRUE(system.is_set_active(late_set)) << "the dropped task's set stays open";
}

TEST_F(TaskSystemLifecycle, StopReleasesContinuationsThatNeverBecameDue)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    auto never_closed = std::make_shared<task_set>();
    system.retain_set(never_closed);
    auto waiting = make_task();
    std::weak_ptr<task> watched = waiting;
    system.run_task_after_set(waiting, never_closed, nullptr, task::kAnyWorker, 0);
    waiting.reset();
    EXPECT_FALSE(watched.expired());
    system.stop();
    EXPECT_TRUE(watched.expired());
}

// ---- Names ----

TEST(TaskName, DefaultNameIsTheAddressInOneSharedBuffer)
{
    auto a = make_task();
    auto b = make_task();
    const char* name_a = a->get_name();
    char expected[64];
    std::snprintf(expected, sizeof expected, "task @%p", static_cast<void*>(a.get()));
    EXPECT_STREQ(name_a, expected);
    EXPECT_EQ(b->get_name(), name_a) << "one buffer for the whole process";
    EXPECT_STRNE(name_a, expected);
}

}  // namespace
}  // namespace kesta
