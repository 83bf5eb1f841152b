#include "foundation/task/call_queue.h"

namespace kesta {

void call_queue_mt::push(std::function<void()> call)
{
    std::lock_guard lock(lock_);
    calls_.push_back(std::move(call));
}

void call_queue_mt::perform()
{
    std::vector<std::function<void()>> calls;
    {
        std::lock_guard lock(lock_);
        calls.swap(calls_);
    }
    for (auto& call : calls)
        call();
}

std::size_t call_queue_mt::size() const
{
    std::lock_guard lock(lock_);
    return calls_.size();
}

}  // namespace kesta
