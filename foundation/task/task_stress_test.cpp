// Several threads schedule work at once: plain and pinned tasks, continuations, set links, set
// continuations and waits nested inside tasks. Every task must run exactly once and nothing may be
// left pending.

#include <gtest/gtest.h>

#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include "foundation/task/task_system.h"
#include "foundation/task/testing/test_tasks.h"

namespace kesta {
namespace {

using testing::function_task;
using testing::make_task;

class TaskRegistry {
public:
    std::shared_ptr<function_task> add(std::function<void()> f = [] {})
    {
        auto t = make_task(std::move(f));
        std::lock_guard lock(mutex_);
        tasks_.push_back(t);
        return t;
    }
    std::vector<std::shared_ptr<function_task>> all()
    {
        std::lock_guard lock(mutex_);
        return tasks_;
    }

private:
    std::mutex mutex_;
    std::vector<std::shared_ptr<function_task>> tasks_;
};

void run_round(task_system& system, TaskRegistry& registry, std::vector<std::shared_ptr<task_set>>& sets)
{
    auto set = std::make_shared<task_set>();
    auto next_set = std::make_shared<task_set>();
    sets.push_back(set);
    sets.push_back(next_set);
    for (int i = 0; i < 6; ++i)
        system.run_task(registry.add(), set, task::kAnyWorker, static_cast<std::int8_t>(i % 3));
    for (int i = 0; i < 3; ++i)
        system.run_task(registry.add(), set, static_cast<std::uint8_t>(i), 0);

    auto dependency = registry.add();
    system.run_task(dependency, set, task::kAnyWorker, 0);
    system.run_task_after_task(registry.add(), dependency, nullptr, task::kAnyWorker, 0);

    // The barrier pattern: sub-tasks hold the barrier's set open through a link, and a nested wait
    // runs on whichever thread took the barrier.
    auto barrier = registry.add([&system, &registry, set] {
        auto children = std::make_shared<task_set>();
        system.retain_set(children);
        system.retain_set(set);
        system.link_sets(set, children);
        for (int k = 0; k < 3; ++k)
            system.run_task(registry.add(), children, task::kAnyWorker, 0);
        auto nested = std::make_shared<task_set>();
        std::vector<std::shared_ptr<function_task>> nested_tasks;
        for (int k = 0; k < 3; ++k) {
            nested_tasks.push_back(registry.add());
            system.run_task(nested_tasks.back(), nested, task::kAnyWorker, 1);
        }
        system.wait_for_task_set(nested);
        for (const auto& t : nested_tasks)
            EXPECT_EQ(t->runs(), 1) << "nested wait returned early";
        system.close_set(children);
    });
    system.run_task(barrier, set, task::kAnyWorker, 0);
    auto after_set = registry.add();
    system.run_task_after_set(after_set, set, next_set, task::kAnyWorker, 0);

    system.wait_for_task_set(set);
    EXPECT_FALSE(system.is_set_active(set));
    system.wait_for_task_set(next_set);
    EXPECT_EQ(after_set->runs(), 1);
}

TEST(TaskSystemStress, ConcurrentSchedulersRunEveryTaskExactlyOnce)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    TaskRegistry registry;
    constexpr int kThreads = 3;
    constexpr int kMaxRounds = 150;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    std::vector<std::vector<std::shared_ptr<task_set>>> sets(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < kMaxRounds && std::chrono::steady_clock::now() < deadline; ++round)
                run_round(system, registry, sets[static_cast<std::size_t>(t)]);
        });
    }
    for (auto& thread : threads)
        thread.join();
    system.wait_for_all();

    const auto tasks = registry.all();
    EXPECT_GT(tasks.size(), 100u);
    for (const auto& t : tasks) {
        ASSERT_EQ(t->runs(), 1);
        EXPECT_FALSE(system.is_task_pending(t));
    }
    for (const auto& thread_sets : sets) {
        for (const auto& set : thread_sets) {
            EXPECT_FALSE(system.is_set_active(set));
            EXPECT_EQ(set->counter.load(), 0);
        }
    }
    system.stop();
}

}  // namespace
}  // namespace kesta
