#include "foundation/time/timer_thread.h"

#include <chrono>

#include "foundation/format.h"
#include "foundation/log/log.h"
#include "foundation/thread/thread_name.h"

namespace kesta {

timer_thread* g_timer_thread = nullptr;

timer_thread::timer_thread(std::string name) : name_(std::move(name)) {}

timer_thread::~timer_thread() { stop(); }

void timer_thread::start(std::int64_t tick_ms)
{
    if (thread_.joinable())
        return;
    {
        std::lock_guard lock(lock_);
        tick_ms_ = tick_ms;
    }
    // Running before the thread exists, so that a stop right after start cannot be overwritten.
    state_.store(1);
    thread_ = std::thread([this] { loop(); });
}

void timer_thread::stop()
{
    state_.store(0);
    if (thread_.joinable())
        thread_.join();
}

std::size_t timer_thread::run_once(std::function<void()> function, time_ns delay)
{
    std::lock_guard lock(lock_);
    one_shots_.push_back({std::move(function), delay});
    return one_shots_.size() - 1;
}

bool timer_thread::run_every(std::function<void()> function, time_ns period)
{
    if (period < 1) {
        error((format("Timer period of %1 ns refused: it must be at least 1 ns") << period).str());
        return false;
    }
    std::lock_guard lock(lock_);
    periodics_.push_back({std::move(function), period, period});
    return true;
}

std::size_t timer_thread::one_shot_count() const
{
    std::lock_guard lock(lock_);
    return one_shots_.size();
}

std::size_t timer_thread::periodic_count() const
{
    std::lock_guard lock(lock_);
    return periodics_.size();
}

void timer_thread::run_due(time_ns elapsed)
{
    // Only the records that existed when the walk began are visited: one appended by a function
    // of this tick starts counting on the next tick.
    std::size_t count = one_shots_.size();
    for (std::size_t i = 0; i < count;) {
        one_shots_[i].remaining -= elapsed;
        if (one_shots_[i].remaining < 1) {
            std::function<void()> function = std::move(one_shots_[i].function);
            one_shots_.erase(one_shots_.begin() + static_cast<std::ptrdiff_t>(i));
            --count;
            function();
        } else {
            ++i;
        }
    }
    count = periodics_.size();
    for (std::size_t i = 0; i < count; ++i) {
        periodics_[i].remaining -= elapsed;
        while (periodics_[i].remaining < 1) {
            // A copy, since the function may append to the list and move the records.
            std::function<void()> function = periodics_[i].function;
            function();
            periodics_[i].remaining += periodics_[i].period;
        }
    }
}

void timer_thread::loop()
{
    set_current_thread_name(name_);
    time_ns previous = time_now();
    time_ns elapsed = 0;
    while (state_.load() == 1) {
        std::int64_t tick_ms = 0;
        {
            std::lock_guard lock(lock_);
            run_due(elapsed);
            const time_ns now = time_now();
            elapsed = now - previous > 0 ? now - previous : 0;
            previous = now;
            tick_ms = tick_ms_;
        }
        if (tick_ms > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(tick_ms));
    }
    std::lock_guard lock(lock_);
    one_shots_.clear();
    periodics_.clear();
}

}  // namespace kesta
