#pragma once

namespace kesta {

// Worker threads and the scheduler of tasks.
class task_system;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern task_system* g_task_system;

}  // namespace kesta
