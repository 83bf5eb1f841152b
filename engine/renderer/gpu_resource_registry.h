#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace kesta {

class GpuResource;

// The process-wide table of continuations waiting for GPU resources, keyed by resource address and
// guarded by one mutex. Callbacks are taken out under the mutex and run outside it.
class GpuResourceRegistry {
public:
    void Add(const GpuResource* resource, std::function<void()> callback);
    // Removes and returns every callback filed for `resource`.
    std::vector<std::function<void()>> Take(const GpuResource* resource);
    std::size_t PendingCount() const;

private:
    mutable std::mutex mutex_;
    std::unordered_map<const GpuResource*, std::vector<std::function<void()>>> continuations_;
};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern GpuResourceRegistry* g_gpu_resource_registry;

}  // namespace kesta
