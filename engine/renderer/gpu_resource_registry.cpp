#include "engine/renderer/gpu_resource_registry.h"

namespace kesta {

GpuResourceRegistry* g_gpu_resource_registry = nullptr;

}  // namespace kesta
