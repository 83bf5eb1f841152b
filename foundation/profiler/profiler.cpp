#include "foundation/profiler/profiler.h"

namespace kesta {

Profiler* g_profiler = nullptr;

}  // namespace kesta
