#pragma once
// A single thread that runs small functions after a delay or at a fixed period, away from the
// callers' threads. The log's timed flush is its first user.

#include <atomic>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "foundation/time/clock.h"

namespace kesta {

class timer_thread {
public:
    explicit timer_thread(std::string name = "Timer");
    ~timer_thread();
    timer_thread(const timer_thread&) = delete;
    timer_thread& operator=(const timer_thread&) = delete;

    // Starts the thread unless it runs; `tick_ms` is the sleep between two ticks in milliseconds.
    void start(std::int64_t tick_ms);
    // Stops and joins the thread; functions not due yet are discarded without being called.
    void stop();
    bool is_running() const { return state_.load() == 1; }

    // Calls `function` once, on the first tick after `delay` has passed. The result is the record's
    // index at the time of appending. Functions run with the timer's lock held; they may schedule
    // again from inside.
    std::size_t run_once(std::function<void()> function, time_ns delay);
    // Calls `function` every `period`; a tick that comes late calls it once for each period it
    // missed. A period below 1 is refused.
    bool run_every(std::function<void()> function, time_ns period);

    std::size_t one_shot_count() const;
    std::size_t periodic_count() const;

private:
    struct one_shot {
        std::function<void()> function;
        time_ns remaining;
    };
    struct periodic {
        std::function<void()> function;
        time_ns period;
        time_ns remaining;
    };

    void loop();
    void run_due(time_ns elapsed);

    std::string name_;
    std::thread thread_;
    std::atomic<std::int32_t> state_{0};  // 1 running, 0 stop requested
    // Recursive so that a function may schedule another one from the timer thread.
    mutable std::recursive_mutex lock_;
    std::int64_t tick_ms_ = 0;
    std::vector<one_shot> one_shots_;
    std::vector<periodic> periodics_;
};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern timer_thread* g_timer_thread;

}  // namespace kesta
