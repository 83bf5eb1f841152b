#pragma once
// Small tasks and a gate for tests of the task system.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "foundation/task/task.h"
#include "foundation/task/task_system.h"

namespace kesta::testing {

class function_task : public task {
public:
    explicit function_task(std::function<void()> f) : function_(std::move(f)) {}
    void run() override
    {
        runner_ = std::this_thread::get_id();
        runs_.fetch_add(1);
        function_();
    }
    int runs() const { return runs_.load(); }
    std::thread::id runner() const { return runner_; }

private:
    std::function<void()> function_;
    std::atomic<int> runs_{0};
    std::thread::id runner_;
};

inline std::shared_ptr<function_task> make_task(std::function<void()> f = [] {})
{
    return std::make_shared<function_task>(std::move(f));
}

// A one-way door: wait() blocks until open().
class Gate {
public:
    void open()
    {
        {
            std::lock_guard lock(mutex_);
            open_ = true;
        }
        cv_.notify_all();
    }
    void wait()
    {
        std::unique_lock lock(mutex_);
        cv_.wait(lock, [this] { return open_; });
    }
    bool is_open()
    {
        std::lock_guard lock(mutex_);
        return open_;
    }

private:
    std::mutex mutex_;
    std::condition_variable cv_;
    bool open_ = false;
};

// A task that holds its worker until released, so that work can pile up behind it.
struct Blocker {
    Gate started;
    Gate release;
    std::shared_ptr<function_task> task = make_task([this] {
        started.open();
        release.wait();
    });

    // Runs the blocking task on worker 0 under `set` and returns once it occupies that worker.
    void occupy(task_system& system, const std::shared_ptr<task_set>& set = nullptr)
    {
        system.run_task(task, set, 0, 0);
        started.wait();
    }
};

// Polls `condition` until it holds; the limit only keeps a broken build from hanging.
inline bool eventually(const std::function<bool()>& condition, std::chrono::seconds limit = std::chrono::seconds(30))
{
    const auto until = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > until)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace kesta::testing
