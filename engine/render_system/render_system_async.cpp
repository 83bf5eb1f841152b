#include "engine/render_system/render_system_async.h"

#include <utility>

#include "engine/renderer/renderer.h"
#include "foundation/task/future_call.h"
#include "foundation/task/task_system.h"

namespace kesta {

namespace {

// The render worker: the only worker that touches the GPU.
constexpr std::uint8_t kRenderWorker = 0;

}  // namespace

RenderSystemAsync::RenderSystemAsync(RenderSystem& render_system, task_system& tasks)
    : render_system_(render_system), tasks_(tasks)
{
}

template <typename R, typename F>
static std::future<R> Queue(task_system& tasks, F&& function)
{
    return run_call_with_return_value<R>(tasks, std::function<R()>(std::forward<F>(function)), kRenderWorker);
}

template <typename F>
static void Post(task_system& tasks, F&& function)
{
    run_call<void>(tasks, std::function<void()>(std::forward<F>(function)), nullptr, kRenderWorker);
}

std::future<bool> RenderSystemAsync::Initialize(std::shared_ptr<Renderer> renderer, bool create_3d_resources)
{
    return Queue<bool>(tasks_, [&rs = render_system_, renderer = std::move(renderer), create_3d_resources] {
        return rs.Initialize(renderer, create_3d_resources);
    });
}

std::future<void> RenderSystemAsync::Free()
{
    return Queue<void>(tasks_, [&rs = render_system_] { rs.Free(); });
}

std::future<void> RenderSystemAsync::Reload()
{
    return Queue<void>(tasks_, [&rs = render_system_] { rs.Reload(); });
}

std::future<void> RenderSystemAsync::SetInternalResolution(int width, int height)
{
    return Queue<void>(tasks_, [&rs = render_system_, width, height] { rs.SetInternalResolution(width, height); });
}

std::future<void> RenderSystemAsync::SetRenderTechnique(RenderTechnique technique, bool hdr)
{
    return Queue<void>(tasks_, [&rs = render_system_, technique, hdr] { rs.SetRenderTechnique(technique, hdr); });
}

std::future<void> RenderSystemAsync::SetShadowMapSize(std::uint16_t size)
{
    return Queue<void>(tasks_, [&rs = render_system_, size] { rs.SetShadowMapSize(size); });
}

std::future<void> RenderSystemAsync::SetMultisampleCount(int count)
{
    return Queue<void>(tasks_, [&rs = render_system_, count] { rs.SetMultisampleCount(count); });
}

std::future<void> RenderSystemAsync::Sync()
{
    return Queue<void>(tasks_, [] {});
}

void RenderSystemAsync::SetView(const Matrix4& view, const Matrix4& previous_view, const Matrix44& projection,
                                std::uint8_t eye)
{
    Post(tasks_, [&rs = render_system_, view, previous_view, projection, eye] {
        rs.SetView(view, previous_view, projection, eye);
    });
}

void RenderSystemAsync::BeginDrawFrame()
{
    Post(tasks_, [&rs = render_system_] { rs.BeginDrawFrame(); });
}

void RenderSystemAsync::DrawRenderables(std::vector<std::shared_ptr<Renderable>> renderables)
{
    Post(tasks_,
         [&rs = render_system_, renderables = std::move(renderables)]() mutable { rs.DrawRenderables(renderables); });
}

void RenderSystemAsync::DrawRenderPassShader(std::vector<std::shared_ptr<Renderable>> renderables,
                                             std::uint8_t pass_shader)
{
    Post(tasks_, [&rs = render_system_, renderables = std::move(renderables), pass_shader]() mutable {
        rs.DrawRenderPassShader(renderables, pass_shader);
    });
}

void RenderSystemAsync::DrawRenderablesPicking(std::vector<std::shared_ptr<Renderable>> renderables,
                                               std::shared_ptr<RenderTarget> target)
{
    Post(tasks_, [&rs = render_system_, renderables = std::move(renderables), target = std::move(target)]() mutable {
        rs.DrawRenderablesPicking(renderables, target);
    });
}

void RenderSystemAsync::ResolveMultisample()
{
    Post(tasks_, [&rs = render_system_] { rs.ResolveMultisample(); });
}

void RenderSystemAsync::ApplyPostProcesses(std::vector<std::shared_ptr<Component>> post_processes)
{
    Post(tasks_, [&rs = render_system_, post_processes = std::move(post_processes)]() mutable {
        rs.ApplyPostProcesses(post_processes);
    });
}

void RenderSystemAsync::EndDrawFrame()
{
    Post(tasks_, [&rs = render_system_] { rs.EndDrawFrame(); });
}

}  // namespace kesta
