#pragma once

namespace kesta {

// Process-wide bookkeeping of GPU resources and their continuations.
class GpuResourceRegistry;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern GpuResourceRegistry* g_gpu_resource_registry;

}  // namespace kesta
