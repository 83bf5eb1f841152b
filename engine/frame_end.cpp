#include "engine/frame_end.h"

#include "foundation/profiler/profiler.h"
#include "foundation/task/task_system.h"

namespace kesta {

void EndEngineFrame(task_system& tasks, Profiler& profiler)
{
    tasks.advance_cycle();
    tasks.age_worker_queue(1, 0);
    profiler.EndFrame();
}

}  // namespace kesta
