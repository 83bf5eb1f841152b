#pragma once
// Base of every GPU object that becomes usable later: returned at once as pending, then marked
// ready or failed by the code that finishes it. Code tests readiness and skips a draw rather than
// waiting; or it files a continuation with ConnectOnReady.

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace kesta {

class GpuResource : public std::enable_shared_from_this<GpuResource> {
public:
    enum State : std::int32_t { kPending = 0, kReady = 1, kFailed = 2 };

    explicit GpuResource(std::string name = {}) : name_(std::move(name)) {}
    // Takes the resource's continuations out of the process-wide table without running them.
    virtual ~GpuResource();
    GpuResource(const GpuResource&) = delete;
    GpuResource& operator=(const GpuResource&) = delete;

    virtual bool IsReadyOrFailed() const { return state_.load() != kPending; }
    virtual bool IsFailed() const { return state_.load() == kFailed; }
    virtual bool IsReady() const { return state_.load() == kReady; }

    // Set the state, then run every continuation filed for this resource, once, outside any lock.
    void SetReady();
    void SetFailed();
    // Back to pending (a reload); gives the state it had.
    State ResetState();
    State GetState() const { return state_.load(); }

    // Runs `callback` at once when the resource is ready or failed; otherwise when it becomes so.
    void ConnectOnReady(std::function<void()> callback);

    const std::string& GetName() const { return name_; }
    void SetName(std::string name) { name_ = std::move(name); }

private:
    void SetStateAndFire(State state);

    std::atomic<State> state_{kPending};
    std::string name_;
};

}  // namespace kesta
