#include "engine/renderer/render_thread.h"

#include "foundation/task/future_call.h"
#include "foundation/task/task_system.h"

namespace kesta {

namespace {
constexpr std::uint8_t kRenderWorker = 0;
}

void RunOnRenderThread(std::function<void()> call)
{
    if (!g_task_system) {
        call();
        return;
    }
    run_call<void>(*g_task_system, std::move(call), nullptr, kRenderWorker);
}

void RunOnRenderThreadAndWait(std::function<void()> call)
{
    if (!g_task_system) {
        call();
        return;
    }
    std::future<void> done = run_call_with_return_value<void>(*g_task_system, std::move(call), kRenderWorker);
    // A stopping task system drops the call and breaks the promise: nothing ran, nothing to wait for.
    try {
        done.get();
    } catch (const std::future_error&) {
    }
}

void RunOnWorker(std::function<void()> call)
{
    if (!g_task_system) {
        call();
        return;
    }
    run_call<void>(*g_task_system, std::move(call), nullptr, task::kAnyWorker);
}

}  // namespace kesta
