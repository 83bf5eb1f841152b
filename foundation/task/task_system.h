#pragma once
// The engine's one thread pool. All queues are vectors of shared tasks under one mutex, kept in
// priority order by insertion. A task pinned to a worker is only ever run by that worker; unpinned
// tasks wait in one shared queue that every worker, and every thread that waits, takes from. With
// no worker started, every task runs at once on the calling thread.

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "foundation/task/task.h"

namespace kesta {

class task_system {
public:
    task_system();
    ~task_system();
    task_system(const task_system&) = delete;
    task_system& operator=(const task_system&) = delete;

    // Starts `count` workers, as many as logical processors for 0. False when already running.
    bool start(std::uint64_t count);
    // Lets the workers drain their queues and the shared queue, joins them and drops whatever is
    // still waiting for a dependency. Tasks dispatched meanwhile are dropped.
    void stop();

    std::uint64_t get_worker_count() const { return worker_count_.load(); }
    // False once a stop has begun: dispatched tasks are then dropped.
    bool accepts_work() const;

    // schedule_task and then dispatch_task.
    void run_task(const std::shared_ptr<task>& t, const std::shared_ptr<task_set>& set,
                  std::uint8_t affinity = task::kAnyWorker, std::int8_t priority = 0);
    // Stamps the task and counts it against its set; queues nothing.
    void schedule_task(const std::shared_ptr<task>& t, const std::shared_ptr<task_set>& set, std::uint8_t affinity,
                       std::int8_t priority);
    // Queues a stamped task, or runs it at once: with no workers, or when the task is pinned to the
    // calling worker.
    void dispatch_task(const std::shared_ptr<task>& t);

    // Runs `t` when `dependency` finishes, counting against the set of `dependency`; at once, under
    // `set`, when `dependency` is not pending.
    void run_task_after_task(const std::shared_ptr<task>& t, const std::shared_ptr<task>& dependency,
                             const std::shared_ptr<task_set>& set, std::uint8_t affinity = task::kAnyWorker,
                             std::int8_t priority = 0);
    // Runs `t` under `set` when `dependency` closes; at once when `dependency` is not active.
    void run_task_after_set(const std::shared_ptr<task>& t, const std::shared_ptr<task_set>& dependency,
                            const std::shared_ptr<task_set>& set, std::uint8_t affinity = task::kAnyWorker,
                            std::int8_t priority = 0);
    // When `dependency` closes, `dependent` is closed one step: the caller retains `dependent` once
    // for the link. If `dependency` is not active, that step is taken at once.
    void link_sets(const std::shared_ptr<task_set>& dependent, const std::shared_ptr<task_set>& dependency);
    void retain_set(const std::shared_ptr<task_set>& set);
    void close_set(const std::shared_ptr<task_set>& set);

    bool is_task_pending(const std::shared_ptr<task>& t);
    bool is_set_active(const std::shared_ptr<task_set>& set);

    // The waits run unpinned tasks on the waiting thread while they wait.
    void wait_for_task(const std::shared_ptr<task>& t);
    void wait_for_task_set(const std::shared_ptr<task_set>& set);
    void wait_for_all();

    // Raises by one level up to `count` pinned tasks (0: all) of a worker that waited more than two
    // cycles, taken from the front of its queue.
    void age_worker_queue(std::uint64_t count, std::uint64_t worker_index);
    void age_all_queues(std::uint64_t count);
    // The clock of ageing, raised once per engine frame.
    void advance_cycle() { cycle_.fetch_add(1); }
    std::uint64_t get_cycle() const { return cycle_.load(); }

private:
    using task_list = std::vector<std::shared_ptr<task>>;

    struct task_continuation {
        std::shared_ptr<task> dependency;
        std::uint8_t affinity;
        std::int8_t priority;
        std::shared_ptr<task> continuation;
    };
    struct set_continuation {
        std::shared_ptr<task_set> dependency;
        std::shared_ptr<task_set> set;
        std::uint8_t affinity;
        std::int8_t priority;
        std::shared_ptr<task> continuation;
    };
    struct set_link {
        std::shared_ptr<task_set> dependent;
        std::shared_ptr<task_set> dependency;
    };

    class worker {
    public:
        void entry();

        std::uint64_t index = 0;
        task_system* system = nullptr;
        std::thread thread;
        std::atomic<std::int32_t> state{0};  // 0 stopped, 1 running, 2 stop requested
        std::mutex pop_lock;
        task_list queue;
    };

    // The worker's loop: runs pinned and shared tasks until a stop finds both queues empty.
    void work(worker& w);
    std::shared_ptr<task> take_next_locked(worker& w);
    void run_at_once(const std::shared_ptr<task>& t);
    // Runs the task and goes through its end: continuations, set, waking the waiters.
    void finish(const std::shared_ptr<task>& t);
    // The end of a task that ran, entered and left with `held` locked. True when waiters are to wake.
    bool finish_locked(const std::shared_ptr<task>& t, std::unique_lock<std::mutex>& held);
    void close_set_locked(const std::shared_ptr<task_set>& set, std::unique_lock<std::mutex>& held);
    bool is_task_pending_locked(const std::shared_ptr<task>& t);
    bool is_set_active_locked(const std::shared_ptr<task_set>& set) const;
    // Moves `t` from the shared queue to running_tasks, runs it here, and takes `held` again.
    void help_with(task_list::iterator it, std::unique_lock<std::mutex>& held);
    // Sleeps on task_finished, counted in `sleepers` so that finishing tasks know whom to wake.
    void sleep_until_task_finished(std::unique_lock<std::mutex>& held, std::size_t& sleepers);
    struct wake_plan {
        bool worker = false;   // one sleeping worker, for new shared work
        bool waiters = false;  // every sleeping waiter
    };
    // Under the lock: puts an unpinned task in the shared queue and says whom to wake.
    wake_plan queue_shared_locked(const std::shared_ptr<task>& t);
    // Without the lock: sends the signals of the plan.
    void wake(wake_plan plan);
    // Under the lock: whether to signal one more sleeping worker for new shared work.
    bool claim_worker_wake();
    // Briefly waits, without the lock and without sleeping, for new work. True if some came.
    bool linger_for_work(worker& w, std::unique_lock<std::mutex>& held);
    // Drops a worker's last finished task outside the lock and lets wait_for_all see it gone.
    void release_finished(std::shared_ptr<task>& finished, std::unique_lock<std::mutex>& held);
    static void insert_by_priority(task_list& queue, std::shared_ptr<task> t);

    mutable std::mutex lock_;
    std::condition_variable work_available_;
    std::condition_variable task_finished_;
    task_list shared_queue_;
    task_list running_tasks_;
    std::vector<std::shared_ptr<task_set>> active_sets_;
    std::vector<set_continuation> set_continuations_;
    std::vector<task_continuation> task_continuations_;
    std::vector<set_link> set_links_;
    std::atomic<std::uint64_t> work_epoch_{0};  // raised on every insertion into a queue
    std::size_t sleeping_workers_ = 0;          // in the wait for work
    std::size_t wakes_pending_ = 0;             // signals sent to sleeping workers, not yet taken
    std::size_t sleeping_task_waiters_ = 0;     // in wait_for_task or wait_for_all
    std::size_t sleeping_set_waiters_ = 0;      // in wait_for_task_set
    std::uint64_t closed_sets_ = 0;             // sets that left active_sets so far
    // Finished tasks a worker still holds, to release outside the lock. wait_for_all counts them:
    // a task's destructor may be code of a plug-in that is unloaded once the wait returns.
    std::size_t unreleased_tasks_ = 0;
    std::atomic<std::uint64_t> worker_count_{0};
    std::unique_ptr<worker[]> workers_;
    std::atomic<std::uint64_t> cycle_{0};
};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern task_system* g_task_system;

}  // namespace kesta
