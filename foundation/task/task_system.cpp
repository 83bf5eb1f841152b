#include "foundation/task/task_system.h"

#include <pthread.h>

#include <algorithm>
#include <chrono>

#include "foundation/format.h"
#include "foundation/log/log.h"
#include "foundation/thread/processor_info.h"
#include "foundation/thread/thread_name.h"

namespace kesta {

task_system* g_task_system = nullptr;

namespace {

template <typename List, typename Predicate>
List take_matching(List& list, Predicate matches)
{
    List taken;
    for (auto it = list.begin(); it != list.end();) {
        if (matches(*it)) {
            taken.push_back(std::move(*it));
            it = list.erase(it);
        } else {
            ++it;
        }
    }
    return taken;
}

template <typename List, typename Value>
bool contains(const List& list, const Value& value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

template <typename List, typename Value>
void erase_first(List& list, const Value& value)
{
    const auto found = std::find(list.begin(), list.end(), value);
    if (found != list.end())
        list.erase(found);
}

}  // namespace

task_system::task_system()
{
    // The lock guards short sections that every thread enters once or twice per task. An adaptive
    // mutex spins briefly before sleeping in the kernel, which is much cheaper for such sections.
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ADAPTIVE_NP);
    pthread_mutex_init(lock_.native_handle(), &attributes);
    pthread_mutexattr_destroy(&attributes);
}

task_system::~task_system() { stop(); }

bool task_system::start(std::uint64_t count)
{
    debug((format("Task system startup: %1 worker requested") << count).str());
    if (worker_count_.load() != 0)
        return false;
    if (count == 0)
        count = processor_counts().logical;
    {
        std::lock_guard lock(lock_);
        workers_ = std::make_unique<worker[]>(count);
        worker_count_.store(count);
    }
    // One after the other: no worker's queue is used before that worker runs.
    for (std::uint64_t i = 0; i < count; ++i) {
        worker& w = workers_[i];
        w.system = this;
        w.index = i;
        w.thread = std::thread([&w] { w.entry(); });
        while (w.state.load() == 0)
            std::this_thread::yield();
    }
    log((format("Task system started: %1 worker created") << count).str());
    return true;
}

void task_system::stop()
{
    const std::uint64_t count = worker_count_.load();
    if (count == 0)
        return;
    for (std::uint64_t i = 0; i < count; ++i)
        workers_[i].state.store(2);
    // Repeated, since a worker may be between its test of the state and its wait.
    for (;;) {
        work_available_.notify_all();
        bool running = false;
        for (std::uint64_t i = 0; i < count; ++i)
            running = running || workers_[i].state.load() != 0;
        if (!running)
            break;
        std::this_thread::yield();
    }
    for (std::uint64_t i = 0; i < count; ++i)
        workers_[i].thread.join();

    // Whatever still waits is released without running, after the lock is gone, since a task's
    // destructor may reach back into the system.
    std::vector<set_continuation> set_continuations;
    std::vector<task_continuation> task_continuations;
    std::vector<set_link> set_links;
    std::vector<task_list> queues;
    std::unique_ptr<worker[]> workers;
    {
        std::lock_guard lock(lock_);
        set_continuations.swap(set_continuations_);
        task_continuations.swap(task_continuations_);
        set_links.swap(set_links_);
        queues.emplace_back().swap(shared_queue_);
        for (std::uint64_t i = 0; i < count; ++i) {
            std::lock_guard pop_lock(workers_[i].pop_lock);
            queues.emplace_back().swap(workers_[i].queue);
        }
        worker_count_.store(0);
        workers = std::move(workers_);
    }
}

bool task_system::accepts_work() const
{
    std::lock_guard lock(lock_);
    return worker_count_.load() == 0 || workers_[0].state.load() == 1;
}

void task_system::worker::entry()
{
    set_current_thread_name((format("Task worker #%1") << index).str());
    state.store(1);
    system->work(*this);
    state.store(0);
}

std::shared_ptr<task> task_system::take_next_locked(worker& w)
{
    std::shared_ptr<task> t;
    {
        // The own queue goes first, whatever the priorities in the shared queue.
        std::lock_guard pop_lock(w.pop_lock);
        if (!w.queue.empty()) {
            t = std::move(w.queue.front());
            w.queue.erase(w.queue.begin());
        }
    }
    if (!t && !shared_queue_.empty()) {
        t = std::move(shared_queue_.front());
        shared_queue_.erase(shared_queue_.begin());
    }
    if (t)
        running_tasks_.push_back(t);
    return t;
}

void task_system::work(worker& w)
{
    // The lock is held between tasks, so that finishing one and taking the next cost one
    // acquisition. A finished task is released outside the lock, since its destructor may reach
    // back into the system.
    std::shared_ptr<task> finished;
    std::unique_lock lock(lock_);
    for (;;) {
        const bool has_work = !shared_queue_.empty() || !w.queue.empty();
        if (!has_work && w.state.load() == 1) {
            if (finished) {
                release_finished(finished, lock);
                continue;
            }
            if (linger_for_work(w, lock))
                continue;
            while (shared_queue_.empty() && w.queue.empty() && w.state.load() == 1) {
                ++sleeping_workers_;
                work_available_.wait(lock);
                --sleeping_workers_;
                if (wakes_pending_ > 0)
                    --wakes_pending_;
            }
        }
        std::shared_ptr<task> t = take_next_locked(w);
        // A worker leaves only when both its queues are empty: a stop drains pending work.
        if (!t && w.state.load() != 1)
            break;
        if (!t)
            continue;
        lock.unlock();
        const bool released = finished != nullptr;
        finished.reset();
        t->run();
        lock.lock();
        if (released)
            --unreleased_tasks_;
        if (finish_locked(t, lock))
            task_finished_.notify_all();
        finished = std::move(t);
        ++unreleased_tasks_;
    }
    if (finished)
        release_finished(finished, lock);
}

void task_system::release_finished(std::shared_ptr<task>& finished, std::unique_lock<std::mutex>& held)
{
    held.unlock();
    finished.reset();
    held.lock();
    // The last reference may have been the one that kept wait_for_all waiting.
    if (--unreleased_tasks_ == 0 && sleeping_task_waiters_ > 0)
        task_finished_.notify_all();
}

void task_system::insert_by_priority(task_list& queue, std::shared_ptr<task> t)
{
    // Behind the last task of equal or higher priority: equal priorities keep their order.
    auto at = queue.end();
    while (at != queue.begin() && t->priority > (*(at - 1))->priority)
        --at;
    queue.insert(at, std::move(t));
}

void task_system::run_task(const std::shared_ptr<task>& t, const std::shared_ptr<task_set>& set, std::uint8_t affinity,
                           std::int8_t priority)
{
    // The common case, unpinned work on running workers, takes the lock once for both steps.
    if (affinity != task::kAnyWorker || worker_count_.load() == 0) {
        schedule_task(t, set, affinity, priority);
        dispatch_task(t);
        return;
    }
    t->affinity = affinity;
    t->priority = priority;
    t->scheduled_cycle = cycle_.load();
    t->set = set;
    wake_plan wakes;
    {
        std::lock_guard lock(lock_);
        if (set) {
            if (!is_set_active_locked(set))
                active_sets_.push_back(set);
            set->counter.fetch_add(1);
        }
        // Stopping: the task is dropped, and its set stays open.
        if (workers_[0].state.load() != 1)
            return;
        wakes = queue_shared_locked(t);
    }
    wake(wakes);
}

task_system::wake_plan task_system::queue_shared_locked(const std::shared_ptr<task>& t)
{
    insert_by_priority(shared_queue_, t);
    work_epoch_.fetch_add(1, std::memory_order_relaxed);
    // Waiting threads help with unpinned work: sleeping ones are woken to see it.
    return {claim_worker_wake(), sleeping_task_waiters_ + sleeping_set_waiters_ > 0};
}

void task_system::wake(wake_plan plan)
{
    if (plan.worker)
        work_available_.notify_one();
    if (plan.waiters)
        task_finished_.notify_all();
}

bool task_system::linger_for_work(worker& w, std::unique_lock<std::mutex>& held)
{
    // Work tends to come in bursts a few microseconds apart (a batch, its wait, the next batch).
    // Yielding for a moment before sleeping catches the next burst without a wake-up, which costs
    // far more than the yields on a virtualised machine.
    constexpr auto kLinger = std::chrono::microseconds(50);
    const std::uint64_t seen = work_epoch_.load(std::memory_order_relaxed);
    held.unlock();
    const auto until = std::chrono::steady_clock::now() + kLinger;
    bool more = false;
    while (!(more = work_epoch_.load(std::memory_order_relaxed) != seen) && w.state.load() == 1 &&
           std::chrono::steady_clock::now() < until)
        std::this_thread::yield();
    held.lock();
    return more;
}

bool task_system::claim_worker_wake()
{
    // One wake per sleeping worker: a worker that was signalled but has not run yet needs no second
    // signal, and a burst of tasks then costs a few wake-ups instead of one each.
    if (sleeping_workers_ <= wakes_pending_)
        return false;
    ++wakes_pending_;
    return true;
}

void task_system::schedule_task(const std::shared_ptr<task>& t, const std::shared_ptr<task_set>& set,
                                std::uint8_t affinity, std::int8_t priority)
{
    const std::uint64_t count = worker_count_.load();
    // Read as a signed byte: 128 to 254 become very large indices and land on the last worker too.
    const auto index = static_cast<std::uint64_t>(static_cast<std::int64_t>(static_cast<std::int8_t>(affinity)));
    if (count != 0 && affinity != task::kAnyWorker && count <= index)
        affinity = static_cast<std::uint8_t>(count - 1);
    t->affinity = affinity;
    t->priority = priority;
    t->scheduled_cycle = cycle_.load();
    t->set = set;
    if (set) {
        // Counted now, so that the set can be waited for before the task is queued.
        std::lock_guard lock(lock_);
        if (!is_set_active_locked(set))
            active_sets_.push_back(set);
        set->counter.fetch_add(1);
    }
}

void task_system::dispatch_task(const std::shared_ptr<task>& t)
{
    const std::uint64_t count = worker_count_.load();
    if (count == 0) {
        run_at_once(t);
        return;
    }
    // Stopping: the task is dropped, and its set stays open.
    if (workers_[0].state.load() != 1)
        return;
    if (t->affinity == task::kAnyWorker) {
        wake_plan wakes;
        {
            std::lock_guard lock(lock_);
            wakes = queue_shared_locked(t);
        }
        wake(wakes);
        return;
    }
    auto index = static_cast<std::uint64_t>(static_cast<std::int64_t>(static_cast<std::int8_t>(t->affinity)));
    if (index >= count)
        index = count - 1;
    worker& w = workers_[index];
    // The addressed worker itself runs it at once: it neither queues behind others nor deadlocks a
    // wait on this worker.
    if (w.thread.get_id() == std::this_thread::get_id()) {
        run_at_once(t);
        return;
    }
    bool workers_asleep = false;
    {
        std::lock_guard lock(lock_);
        insert_by_priority(w.queue, t);
        work_epoch_.fetch_add(1, std::memory_order_relaxed);
        workers_asleep = sleeping_workers_ > 0;
    }
    // Every worker wakes: only the addressed one may take the task, and all share one condition.
    if (workers_asleep)
        work_available_.notify_all();
}

void task_system::run_at_once(const std::shared_ptr<task>& t)
{
    {
        std::lock_guard lock(lock_);
        running_tasks_.push_back(t);
    }
    finish(t);
}

void task_system::finish(const std::shared_ptr<task>& t)
{
    t->run();
    std::unique_lock lock(lock_);
    const bool wake = finish_locked(t, lock);
    lock.unlock();
    if (wake)
        task_finished_.notify_all();
}

bool task_system::finish_locked(const std::shared_ptr<task>& t, std::unique_lock<std::mutex>& held)
{
    erase_first(running_tasks_, t);
    const std::uint64_t closed_before = closed_sets_;
    auto continuations =
        take_matching(task_continuations_, [&](const task_continuation& c) { return c.dependency == t; });
    if (!continuations.empty()) {
        held.unlock();
        // Scheduled under the finished task's set before that set is closed, so it stays open.
        for (const task_continuation& c : continuations) {
            schedule_task(c.continuation, t->set, c.affinity, c.priority);
            dispatch_task(c.continuation);
        }
        held.lock();
    }
    if (t->set)
        close_set_locked(t->set, held);
    // Waiters for tasks care about every end, waiters for sets only about a set that closed; the
    // others sleep on, which spares a wake-up per task in the common batch-and-wait pattern.
    return sleeping_task_waiters_ > 0 || (sleeping_set_waiters_ > 0 && closed_sets_ != closed_before);
}

void task_system::close_set_locked(const std::shared_ptr<task_set>& set, std::unique_lock<std::mutex>& held)
{
    if (set->counter.fetch_sub(1) != 1)
        return;
    auto continuations =
        take_matching(set_continuations_, [&](const set_continuation& c) { return c.dependency == set; });
    if (!continuations.empty()) {
        held.unlock();
        for (const set_continuation& c : continuations) {
            schedule_task(c.continuation, c.set, c.affinity, c.priority);
            dispatch_task(c.continuation);
        }
        held.lock();
    }
    auto links = take_matching(set_links_, [&](const set_link& l) { return l.dependency == set; });
    for (const set_link& l : links)
        close_set_locked(l.dependent, held);
    erase_first(active_sets_, set);
    ++closed_sets_;
}

void task_system::run_task_after_task(const std::shared_ptr<task>& t, const std::shared_ptr<task>& dependency,
                                      const std::shared_ptr<task_set>& set, std::uint8_t affinity, std::int8_t priority)
{
    std::unique_lock lock(lock_);
    if (!is_task_pending_locked(dependency)) {
        lock.unlock();
        run_task(t, set, affinity, priority);
        return;
    }
    task_continuations_.push_back({dependency, affinity, priority, t});
}

void task_system::run_task_after_set(const std::shared_ptr<task>& t, const std::shared_ptr<task_set>& dependency,
                                     const std::shared_ptr<task_set>& set, std::uint8_t affinity, std::int8_t priority)
{
    std::unique_lock lock(lock_);
    // A set that is not active would never close again: the task is due now.
    if (!dependency || !is_set_active_locked(dependency)) {
        lock.unlock();
        run_task(t, set, affinity, priority);
        return;
    }
    set_continuations_.push_back({dependency, set, affinity, priority, t});
}

void task_system::link_sets(const std::shared_ptr<task_set>& dependent, const std::shared_ptr<task_set>& dependency)
{
    if (!dependent)
        return;
    std::unique_lock lock(lock_);
    if (dependency && is_set_active_locked(dependency)) {
        set_links_.push_back({dependent, dependency});
        return;
    }
    close_set_locked(dependent, lock);
    lock.unlock();
    task_finished_.notify_all();
}

void task_system::retain_set(const std::shared_ptr<task_set>& set)
{
    if (!set)
        return;
    std::lock_guard lock(lock_);
    if (!is_set_active_locked(set))
        active_sets_.push_back(set);
    set->counter.fetch_add(1);
}

void task_system::close_set(const std::shared_ptr<task_set>& set)
{
    if (!set)
        return;
    std::unique_lock lock(lock_);
    close_set_locked(set, lock);
    lock.unlock();
    // A set closed outside a task's end would otherwise leave its waiters asleep.
    task_finished_.notify_all();
}

bool task_system::is_set_active_locked(const std::shared_ptr<task_set>& set) const
{
    return contains(active_sets_, set);
}

bool task_system::is_set_active(const std::shared_ptr<task_set>& set)
{
    std::lock_guard lock(lock_);
    return is_set_active_locked(set);
}

bool task_system::is_task_pending_locked(const std::shared_ptr<task>& t)
{
    if (contains(shared_queue_, t) || contains(running_tasks_, t))
        return true;
    for (const task_continuation& c : task_continuations_) {
        if (c.continuation == t)
            return true;
    }
    for (const set_continuation& c : set_continuations_) {
        if (c.continuation == t)
            return true;
    }
    const std::uint64_t count = worker_count_.load();
    for (std::uint64_t i = 0; i < count; ++i) {
        std::lock_guard pop_lock(workers_[i].pop_lock);
        if (contains(workers_[i].queue, t))
            return true;
    }
    return false;
}

bool task_system::is_task_pending(const std::shared_ptr<task>& t)
{
    std::lock_guard lock(lock_);
    return is_task_pending_locked(t);
}

void task_system::help_with(task_list::iterator it, std::unique_lock<std::mutex>& held)
{
    std::shared_ptr<task> t = std::move(*it);
    shared_queue_.erase(it);
    running_tasks_.push_back(t);
    held.unlock();
    t->run();
    held.lock();
    if (finish_locked(t, held))
        task_finished_.notify_all();
    // Released outside the lock: the destructor may reach back into the system.
    held.unlock();
    t.reset();
    held.lock();
}

void task_system::wait_for_task(const std::shared_ptr<task>& t)
{
    std::unique_lock lock(lock_);
    while (is_task_pending_locked(t)) {
        if (shared_queue_.empty())
            sleep_until_task_finished(lock, sleeping_task_waiters_);
        else
            help_with(shared_queue_.begin(), lock);
    }
}

void task_system::wait_for_task_set(const std::shared_ptr<task_set>& set)
{
    std::unique_lock lock(lock_);
    while (is_set_active_locked(set)) {
        if (shared_queue_.empty()) {
            sleep_until_task_finished(lock, sleeping_set_waiters_);
            continue;
        }
        // The set's own work first, otherwise any unpinned work.
        auto chosen = std::find_if(shared_queue_.begin(), shared_queue_.end(),
                                   [&](const std::shared_ptr<task>& queued) { return queued->set == set; });
        if (chosen == shared_queue_.end())
            chosen = shared_queue_.begin();
        help_with(chosen, lock);
    }
}

void task_system::wait_for_all()
{
    std::unique_lock lock(lock_);
    for (;;) {
        std::size_t open = task_continuations_.size() + set_continuations_.size() + running_tasks_.size() +
                           shared_queue_.size() + unreleased_tasks_;
        const std::uint64_t count = worker_count_.load();
        for (std::uint64_t i = 0; i < count; ++i) {
            std::lock_guard pop_lock(workers_[i].pop_lock);
            open += workers_[i].queue.size();
        }
        if (open == 0)
            return;
        if (shared_queue_.empty())
            sleep_until_task_finished(lock, sleeping_task_waiters_);
        else
            help_with(shared_queue_.begin(), lock);
    }
}

void task_system::sleep_until_task_finished(std::unique_lock<std::mutex>& held, std::size_t& sleepers)
{
    ++sleepers;
    task_finished_.wait(held);
    --sleepers;
}

void task_system::age_worker_queue(std::uint64_t count, std::uint64_t worker_index)
{
    if (worker_count_.load() == 0)
        return;
    std::lock_guard lock(lock_);
    if (worker_index >= worker_count_.load())
        return;
    worker& w = workers_[worker_index];
    const std::uint64_t now = cycle_.load();
    std::lock_guard pop_lock(w.pop_lock);
    task_list raised;
    for (auto it = w.queue.begin(); it != w.queue.end();) {
        if (now - (*it)->scheduled_cycle > 2) {
            raised.push_back(std::move(*it));
            it = w.queue.erase(it);
            // Lowered before the test: a count of 0 means no limit.
            if (--count == 0)
                break;
        } else {
            ++it;
        }
    }
    for (std::shared_ptr<task>& t : raised) {
        t->last_raise_cycle = now;
        // In front of the level it comes from, which keeps the queue sorted.
        const auto same_level = std::find_if(
            w.queue.begin(), w.queue.end(), [&](const std::shared_ptr<task>& q) { return q->priority == t->priority; });
        t->priority = static_cast<std::int8_t>(static_cast<std::uint8_t>(t->priority) + 1);
        w.queue.insert(same_level, std::move(t));
    }
}

void task_system::age_all_queues(std::uint64_t count)
{
    const std::uint64_t workers = worker_count_.load();
    for (std::uint64_t i = 0; i < workers; ++i)
        age_worker_queue(count, i);
}

}  // namespace kesta
