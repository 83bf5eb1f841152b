#include "foundation/task/task_system.h"

namespace kesta {

task_system* g_task_system = nullptr;

}  // namespace kesta
