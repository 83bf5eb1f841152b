// The cost of one log call on the calling thread, with one listener fed by the timer thread.

#include <benchmark/benchmark.h>

#include <atomic>

#include "foundation/log/log.h"
#include "foundation/time/timer_thread.h"

namespace {

void BM_LogWithOneListener(benchmark::State& state)
{
    kesta::timer_thread timer;
    timer.start(5);
    std::atomic<std::size_t> heard{0};
    {
        kesta::LogSystem system;
        system.SetFlushTimer(&timer);
        // Normal lines are masked out of the console by default, as in the running engine.
        system.Connect([&](const std::vector<kesta::LogMessage>& batch) { heard.fetch_add(batch.size()); });
        for (auto _ : state)
            system.Log("Frame rendered in the expected time", "");
        state.counters["delivered"] = static_cast<double>(heard.load());
    }
    timer.stop();
}
BENCHMARK(BM_LogWithOneListener);

}  // namespace

BENCHMARK_MAIN();
