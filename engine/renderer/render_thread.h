#pragma once
// How engine code reaches the render worker (worker 0, the only thread that touches the GPU) and
// the other workers. Without a task system, or without started workers, calls run at once.

#include <functional>

namespace kesta {

// Queues `call` for the render worker; runs it at once when called from the render worker.
void RunOnRenderThread(std::function<void()> call);
// Runs `call` on the render worker and waits for it.
void RunOnRenderThreadAndWait(std::function<void()> call);
// Runs `call` on any worker.
void RunOnWorker(std::function<void()> call);

}  // namespace kesta
