#include "engine/renderer/gpu_resource.h"

#include <mutex>
#include <unordered_map>
#include <vector>

#include "engine/renderer/gpu_resource_registry.h"

namespace kesta {

GpuResourceRegistry* g_gpu_resource_registry = nullptr;

namespace {

// Used while no host has published a registry (a process that never set one up).
GpuResourceRegistry& registry()
{
    static GpuResourceRegistry fallback;
    return g_gpu_resource_registry ? *g_gpu_resource_registry : fallback;
}

}  // namespace

void GpuResourceRegistry::Add(const GpuResource* resource, std::function<void()> callback)
{
    std::lock_guard lock(mutex_);
    continuations_[resource].push_back(std::move(callback));
}

std::vector<std::function<void()>> GpuResourceRegistry::Take(const GpuResource* resource)
{
    std::lock_guard lock(mutex_);
    const auto it = continuations_.find(resource);
    if (it == continuations_.end())
        return {};
    std::vector<std::function<void()>> callbacks = std::move(it->second);
    continuations_.erase(it);
    return callbacks;
}

std::size_t GpuResourceRegistry::PendingCount() const
{
    std::lock_guard lock(mutex_);
    std::size_t count = 0;
    for (const auto& [resource, callbacks] : continuations_)
        count += callbacks.size();
    return count;
}

GpuResource::~GpuResource() { registry().Take(this); }

void GpuResource::SetReady() { SetStateAndFire(kReady); }

void GpuResource::SetFailed() { SetStateAndFire(kFailed); }

GpuResource::State GpuResource::ResetState() { return state_.exchange(kPending); }

void GpuResource::SetStateAndFire(State state)
{
    state_.store(state);
    for (auto& callback : registry().Take(this))
        callback();
}

void GpuResource::ConnectOnReady(std::function<void()> callback)
{
    if (IsReadyOrFailed()) {
        callback();
        return;
    }
    registry().Add(this, std::move(callback));
    // The state may have changed between the test and the filing: fire what a concurrent
    // SetReady could no longer see.
    if (IsReadyOrFailed())
        for (auto& pending : registry().Take(this))
            pending();
}

}  // namespace kesta
