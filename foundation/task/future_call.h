#pragma once
// Deferred calls: a bound function handed to a chosen worker as an ordinary task, with a future
// when the caller wants the result. This is how other threads reach the render worker.

#include <functional>
#include <future>
#include <memory>
#include <typeinfo>
#include <utility>

#include "foundation/task/task.h"
#include "foundation/task/task_system.h"

namespace kesta {

class future_call_base {
public:
    virtual ~future_call_base() = default;
    virtual void call() = 0;
};

template <typename R>
class future_call : public future_call_base {
public:
    explicit future_call(std::function<R()> f) : function(std::move(f)) {}
    // An empty function raises std::bad_function_call.
    void call() override { function(); }

    std::function<R()> function;
};

template <typename R>
class future_call_with_return_value_base : public future_call_base {
public:
    virtual std::future<R> get_future() = 0;
};

template <typename R>
class future_call_with_return_value : public future_call_with_return_value_base<R> {
public:
    explicit future_call_with_return_value(std::function<R()> f) : function(std::move(f)) {}

    // The function's own exceptions are not caught: they end the worker like any task's.
    void call() override { run(false); }
    // As call(), but the function and what it captured are released before the waiter is woken,
    // as run_call's are: the task form calls this, since the call runs once there.
    void call_and_release() { run(true); }
    std::future<R> get_future() override { return promise.get_future(); }

    std::function<R()> function;
    std::promise<R> promise;

private:
    void run(bool release)
    {
        if constexpr (std::is_void_v<R>) {
            function();
            if (release)
                function = nullptr;
            promise.set_value();
        } else {
            R result = function();
            if (release)
                function = nullptr;
            promise.set_value(std::move(result));
        }
    }
};

template <typename R>
class future_call_task : public task {
public:
    explicit future_call_task(std::function<R()> f) : function(std::move(f)) {}

    // The bound function and what it captured die with the call, not whenever the worker gets round
    // to releasing the finished task: whoever waits for the call's end may count on them being gone.
    void run() override
    {
        function();
        function = nullptr;
    }
    // The type of the bound function, which makes deferred calls readable in the task view.
    const char* get_name() override { return function ? function.target_type().name() : typeid(void).name(); }

    std::function<R()> function;
};

template <typename R>
class future_call_task_with_return_value : public task {
public:
    explicit future_call_task_with_return_value(std::function<R()> f) : call_object(std::move(f)) {}

    void run() override { call_object.call_and_release(); }

    future_call_with_return_value<R> call_object;
};

// Runs `function` as a task under `set` (may be empty) on the worker `affinity`, or on any worker
// for 255.
template <typename R>
void run_call(task_system& system, std::function<R()> function, const std::shared_ptr<task_set>& set,
              std::uint8_t affinity = task::kAnyWorker, std::int8_t priority = 0)
{
    auto call = std::make_shared<future_call_task<R>>(std::move(function));
    system.schedule_task(call, set, affinity, priority);
    system.dispatch_task(call);
}

// Runs `function` on the worker `affinity` and returns the future of its result. A call from that
// very worker runs at once. A call dropped by a stopping system leaves a broken promise.
template <typename R>
std::future<R> run_call_with_return_value(task_system& system, std::function<R()> function, std::uint8_t affinity = 0,
                                          std::int8_t priority = 0)
{
    auto call = std::make_shared<future_call_task_with_return_value<R>>(std::move(function));
    std::future<R> result = call->call_object.get_future();
    system.schedule_task(call, nullptr, affinity, priority);
    system.dispatch_task(call);
    return result;
}

}  // namespace kesta
