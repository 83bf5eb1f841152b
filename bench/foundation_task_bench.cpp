// Task throughput in the engine's pattern (coarse batches waited as a set) against a plain
// mutex-and-counter pool, and the round trip of a deferred call to the render worker.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "foundation/task/future_call.h"
#include "foundation/task/task_system.h"

namespace {

using kesta::task;
using kesta::task_set;
using kesta::task_system;

constexpr int kTasks = 100'000;
constexpr int kBatch = 64;

class empty_task : public task {
public:
    void run() override { benchmark::ClobberMemory(); }
};

void BM_TaskSystemBatches(benchmark::State& state)
{
    task_system system;
    system.start(2);
    for (auto _ : state) {
        for (int done = 0; done < kTasks; done += kBatch) {
            auto set = std::make_shared<task_set>();
            const int count = std::min(kBatch, kTasks - done);
            for (int i = 0; i < count; ++i)
                system.run_task(std::make_shared<empty_task>(), set, task::kAnyWorker, 0);
            system.wait_for_task_set(set);
        }
    }
    state.counters["tasks_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kTasks, benchmark::Counter::kIsRate);
    system.stop();
}
BENCHMARK(BM_TaskSystemBatches)->Unit(benchmark::kMillisecond)->UseRealTime();

// The baseline: two threads take tasks from one mutex-guarded queue; a counter says when a batch
// is done.
class PlainPool {
public:
    PlainPool()
    {
        for (int i = 0; i < 2; ++i)
            threads_.emplace_back([this] { work(); });
    }
    ~PlainPool()
    {
        {
            std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        work_.notify_all();
        for (auto& thread : threads_)
            thread.join();
    }
    void run_batch(int count)
    {
        {
            std::lock_guard lock(mutex_);
            for (int i = 0; i < count; ++i)
                queue_.push_back(std::make_shared<empty_task>());
            open_ += count;
        }
        work_.notify_all();
        std::unique_lock lock(mutex_);
        done_.wait(lock, [this] { return open_ == 0; });
    }

private:
    void work()
    {
        std::unique_lock lock(mutex_);
        for (;;) {
            work_.wait(lock, [this] { return stopping_ || !queue_.empty(); });
            if (queue_.empty())
                return;
            std::shared_ptr<task> t = std::move(queue_.front());
            queue_.pop_front();
            lock.unlock();
            t->run();
            t.reset();
            lock.lock();
            if (--open_ == 0)
                done_.notify_all();
        }
    }

    std::mutex mutex_;
    std::condition_variable work_;
    std::condition_variable done_;
    std::deque<std::shared_ptr<task>> queue_;
    int open_ = 0;
    bool stopping_ = false;
    std::vector<std::thread> threads_;
};

void BM_PlainPoolBatches(benchmark::State& state)
{
    PlainPool pool;
    for (auto _ : state) {
        for (int done = 0; done < kTasks; done += kBatch)
            pool.run_batch(std::min(kBatch, kTasks - done));
    }
    state.counters["tasks_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kTasks, benchmark::Counter::kIsRate);
}
BENCHMARK(BM_PlainPoolBatches)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_RunCallRoundTrip(benchmark::State& state)
{
    task_system system;
    system.start(2);
    std::vector<double> microseconds;
    microseconds.reserve(1 << 16);
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        std::future<bool> result = kesta::run_call_with_return_value<bool>(
            system, [] { return true; }, 0, 0);
        benchmark::DoNotOptimize(result.get());
        const auto end = std::chrono::steady_clock::now();
        if (microseconds.size() < microseconds.capacity())
            microseconds.push_back(std::chrono::duration<double, std::micro>(end - begin).count());
    }
    std::sort(microseconds.begin(), microseconds.end());
    if (!microseconds.empty())
        state.counters["median_us"] = microseconds[microseconds.size() / 2];
    system.stop();
}
BENCHMARK(BM_RunCallRoundTrip)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
