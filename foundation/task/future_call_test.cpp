#include "foundation/task/future_call.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>

#include "foundation/task/call_queue.h"
#include "foundation/task/testing/test_tasks.h"
#include "foundation/thread/thread_name.h"

namespace kesta {
namespace {

using testing::Blocker;
using testing::make_task;

bool is_ready(std::future<bool>& future)
{
    return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

std::future_errc error_of(const std::function<void()>& action)
{
    try {
        action();
    } catch (const std::future_error& e) {
        return static_cast<std::future_errc>(e.code().value());
    }
    ADD_FAILURE() << "no future_error";
    return {};
}

int add(int a, int b) { return a + b; }

// ---- Where and when the call runs ----

TEST(DeferredCall, WithoutWorkersBothFormsRunBeforeReturning)
{
    task_system system;
    bool ran = false;
    run_call<void>(
        system, [&] { ran = true; }, nullptr);
    EXPECT_TRUE(ran);
    std::future<bool> result = run_call_with_return_value<bool>(
        system, [] { return true; }, 0, 0);
    ASSERT_TRUE(is_ready(result));
    EXPECT_TRUE(result.get());
}

TEST(DeferredCall, RoundTripRunsOnTheAddressedWorker)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    std::future<bool> on_zero = run_call_with_return_value<bool>(
        system, [] { return get_thread_name(std::this_thread::get_id()) == "Task worker #0"; }, 0, 0);
    EXPECT_TRUE(on_zero.get());
    std::future<bool> beyond = run_call_with_return_value<bool>(
        system, [] { return get_thread_name(std::this_thread::get_id()) == "Task worker #1"; }, 9, 0);
    EXPECT_TRUE(beyond.get()) << "affinity beyond the pool lands on the last worker";
    system.stop();
}

TEST(DeferredCall, CapturesAreReleasedWhenTheCallIsDone)
{
    // A worker releases a finished task lazily, before it next sleeps; the captures must not wait
    // for that. Repeated, since the lazy release loses the race only now and then.
    task_system system;
    ASSERT_TRUE(system.start(2));
    for (int round = 0; round < 200; ++round) {
        auto held = std::make_shared<int>(round);
        std::weak_ptr<int> watch = held;
        run_call<void>(
            system, [held = std::move(held)] { EXPECT_GE(*held, 0); }, nullptr, 0);
        system.wait_for_all();
        ASSERT_TRUE(watch.expired()) << "round " << round;

        auto returned = std::make_shared<int>(round);
        std::weak_ptr<int> returned_watch = returned;
        std::future<int> result = run_call_with_return_value<int>(
            system, [returned = std::move(returned)] { return *returned; }, 1, 0);
        EXPECT_EQ(result.get(), round);
        ASSERT_TRUE(returned_watch.expired()) << "round " << round;
    }
    system.stop();
}

TEST(DeferredCall, RunCallBeyondThePoolRunsOnTheLastWorkerUnderItsSet)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    auto set = std::make_shared<task_set>();
    std::string name;
    run_call<void>(
        system, [&] { name = get_thread_name(std::this_thread::get_id()); }, set, 40, 0);
    system.wait_for_task_set(set);
    EXPECT_EQ(name, "Task worker #1");
    system.stop();
}

TEST(DeferredCall, CallFromTheAddressedWorkerItselfDoesNotBlock)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    std::future<bool> outer = run_call_with_return_value<bool>(
        system,
        [&] {
            std::future<bool> inner = run_call_with_return_value<bool>(
                system, [] { return true; }, 0, 0);
            return is_ready(inner) && inner.get();
        },
        0, 0);
    EXPECT_TRUE(outer.get());
    system.stop();
}

TEST(DeferredCall, CallToAnotherWorkerQueuesBehindItsPinnedWorkOfEqualPriority)
{
    task_system system;
    ASSERT_TRUE(system.start(1));
    Blocker blocker;
    blocker.occupy(system);
    std::atomic<bool> earlier_done{false};
    system.run_task(make_task([&] { earlier_done = true; }), nullptr, 0, 0);
    std::future<bool> call = run_call_with_return_value<bool>(
        system, [&] { return earlier_done.load(); }, 0, 0);
    blocker.release.open();
    EXPECT_TRUE(call.get());
    system.stop();
}

// ---- The call objects ----

TEST(DeferredCallObjects, EmptyFunctionFailsWhenRunNotWhenCreated)
{
    auto call = std::make_shared<future_call_task<void>>(std::function<void()>());
    EXPECT_THROW(call->run(), std::bad_function_call);
    future_call<void> plain{std::function<void()>()};
    EXPECT_THROW(plain.call(), std::bad_function_call);
}

TEST(DeferredCallObjects, NameIsTheTypeOfTheBoundFunction)
{
    auto bound = std::bind(&add, 1, 2);
    future_call_task<void> with_binder{std::function<void()>(bound)};
    EXPECT_STREQ(with_binder.get_name(), typeid(bound).name());
    future_call_task<bool> empty{std::function<bool()>()};
    EXPECT_STREQ(empty.get_name(), typeid(void).name());
    future_call_task_with_return_value<bool> with_value{[] { return true; }};
    char expected[64];
    std::snprintf(expected, sizeof expected, "task @%p", static_cast<void*>(&with_value));
    EXPECT_STREQ(with_value.get_name(), expected);
}

TEST(DeferredCallObjects, FutureErrorsAreTheStandardOnes)
{
    future_call_with_return_value<bool> call{[] { return true; }};
    std::future<bool> future = call.get_future();
    EXPECT_EQ(error_of([&] { call.get_future(); }), std::future_errc::future_already_retrieved);
    call.call();
    EXPECT_EQ(error_of([&] { call.call(); }), std::future_errc::promise_already_satisfied);
    EXPECT_TRUE(future.get());

    future_call_with_return_value<void> void_call{[] {}};
    std::future<void> void_future = void_call.get_future();
    void_call.call();
    EXPECT_NO_THROW(void_future.get());
}

TEST(DeferredCallObjects, CallDroppedWhileWorkersStopBreaksThePromise)
{
    task_system system;
    ASSERT_TRUE(system.start(2));
    std::future<bool> dropped;
    testing::Gate stopping_seen;
    auto observer = make_task([&] {
        while (system.accepts_work())
            std::this_thread::yield();
        dropped = run_call_with_return_value<bool>(
            system, [] { return true; }, 0, 0);
        stopping_seen.open();
    });
    system.run_task(observer, nullptr, 1, 0);
    system.stop();
    ASSERT_TRUE(stopping_seen.is_open());
    EXPECT_EQ(error_of([&] { dropped.get(); }), std::future_errc::broken_promise);
}

// ---- Deferred mutation queue ----

TEST(CallQueue, PerformsInPushOrderAndDefersCallsPushedMeanwhile)
{
    call_queue_mt queue;
    std::vector<int> order;
    queue.push([&] { order.push_back(1); });
    queue.push([&] {
        order.push_back(2);
        queue.push([&] { order.push_back(3); });
    });
    queue.perform();
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
    EXPECT_EQ(queue.size(), 1u);
    queue.perform();
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(queue.size(), 0u);
}

TEST(CallQueue, PushesFromManyThreadsAreAllPerformed)
{
    call_queue_mt queue;
    std::atomic<int> performed{0};
    std::vector<std::thread> pushers;
    for (int t = 0; t < 4; ++t) {
        pushers.emplace_back([&] {
            for (int i = 0; i < 250; ++i)
                queue.push([&] { performed.fetch_add(1); });
        });
    }
    for (auto& p : pushers)
        p.join();
    queue.perform();
    EXPECT_EQ(performed.load(), 1000);
}

}  // namespace
}  // namespace kesta
