#pragma once
// What the engine's frame code does for the foundation at the end of every frame.

namespace kesta {

class task_system;
class Profiler;

// Raises the task system's cycle by one and ages worker 0's queue by one task, so that pinned work
// waiting behind a busy render worker rises in priority frame by frame; then ends the profiler's
// frame, which copies the frame's sections to its last-frame record.
void EndEngineFrame(task_system& tasks, Profiler& profiler);

}  // namespace kesta
