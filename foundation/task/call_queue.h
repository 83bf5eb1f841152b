#pragma once
// Deferred mutations of a scene or a system: calls pushed from any thread, performed in the order
// of pushing by one owner. A call may push further calls; they wait for the next perform.

#include <functional>
#include <mutex>
#include <vector>

namespace kesta {

class call_queue_mt {
public:
    void push(std::function<void()> call);
    // Runs the calls pushed so far, outside the lock.
    void perform();
    std::size_t size() const;

private:
    mutable std::mutex lock_;
    std::vector<std::function<void()>> calls_;
};

}  // namespace kesta
