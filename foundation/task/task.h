#pragma once
// The unit of work of the task system, and the set that counts open work.

#include <atomic>
#include <cstdint>
#include <memory>

namespace kesta {

// A counter of open work. Its identity is the pointer; it is active while the task system lists it.
class task_set {
public:
    std::atomic<std::int32_t> counter{0};
};

// Anything that can be scheduled. Always held by std::shared_ptr.
class task {
public:
    static constexpr std::uint8_t kAnyWorker = 255;

    task() = default;
    virtual ~task();
    task(const task&) = delete;
    task& operator=(const task&) = delete;

    virtual void run() = 0;
    // A display text for the debugger. The default writes "task @<address>" into one buffer shared
    // by the whole process, so the text is only valid until the next call from any thread.
    virtual const char* get_name();

    std::shared_ptr<task_set> set;       // the set this task counts against, may be empty
    std::uint8_t affinity = kAnyWorker;  // index of the worker that must run it, 255 for any
    std::int8_t priority = 0;            // queue order, higher first
    std::uint64_t scheduled_cycle = 0;   // the system's cycle when the task was scheduled
    std::uint64_t last_raise_cycle = 0;  // the cycle when ageing last raised its priority
};

}  // namespace kesta
