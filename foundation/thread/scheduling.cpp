#include "foundation/thread/scheduling.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>

#include "foundation/log/log.h"

namespace kesta {

namespace {

// Nice values standing for idle, below normal, normal, above normal, high and real-time classes.
constexpr std::array<int, 6> kProcessNice = {19, 10, 0, -5, -10, -20};
// Relative thread priorities -15, -2, -1, 0, 1, 2, 15, as nice values (higher priority, lower nice).
constexpr std::array<int, 7> kThreadNice = {15, 2, 1, 0, -1, -2, -15};

}  // namespace

bool set_process_priority(int level)
{
    if (level < 0 || level >= static_cast<int>(kProcessNice.size()))
        return false;
    return setpriority(PRIO_PROCESS, 0, kProcessNice[static_cast<std::size_t>(level)]) == 0;
}

bool set_thread_priority(int level)
{
    if (level < 0 || level >= static_cast<int>(kThreadNice.size()))
        return false;
    // On Linux the nice value of a thread id applies to that thread alone.
    const auto thread_id = static_cast<id_t>(syscall(SYS_gettid));
    return setpriority(PRIO_PROCESS, thread_id, kThreadNice[static_cast<std::size_t>(level)]) == 0;
}

bool begin_timer_resolution() { return true; }

void end_timer_resolution() {}

void apply_engine_process_settings()
{
    if (!set_process_priority(4))
        debug("Failed to raise process priority");
    if (!begin_timer_resolution())
        debug("Failed to raise OS timer resolution");
}

void restore_engine_process_settings()
{
    end_timer_resolution();
    if (!set_process_priority(2))
        debug("Failed to restore process priority");
}

}  // namespace kesta
