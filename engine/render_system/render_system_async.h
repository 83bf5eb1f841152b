#pragma once
// The thread-safe twin of RenderSystem: each operation is queued to the render worker (worker 0 of
// the task system) and runs there in the order queued, whatever thread queued it. Operations whose
// caller may want to wait return a future; frame operations return nothing. Arguments are copied
// into the queued call. A call made on the render worker itself runs at once, like any deferred
// call pinned to the calling worker.

#include <cstdint>
#include <future>
#include <memory>
#include <vector>

#include "engine/render_system/render_system.h"

namespace kesta {

class task_system;

class RenderSystemAsync {
public:
    // Both must outlive every queued call.
    RenderSystemAsync(RenderSystem& render_system, task_system& tasks);

    std::future<bool> Initialize(std::shared_ptr<Renderer> renderer, bool create_3d_resources);
    std::future<void> Free();
    std::future<void> Reload();
    std::future<void> SetInternalResolution(int width, int height);
    std::future<void> SetRenderTechnique(RenderTechnique technique, bool hdr = false);
    std::future<void> SetShadowMapSize(std::uint16_t size);
    std::future<void> SetMultisampleCount(int count);
    // Completes when every call queued before it has run.
    std::future<void> Sync();

    void SetView(const Matrix4& view, const Matrix4& previous_view, const Matrix44& projection, std::uint8_t eye);
    void BeginDrawFrame();
    void DrawRenderables(std::vector<std::shared_ptr<Renderable>> renderables);
    void DrawRenderPassShader(std::vector<std::shared_ptr<Renderable>> renderables, std::uint8_t pass_shader);
    void DrawRenderablesPicking(std::vector<std::shared_ptr<Renderable>> renderables,
                                std::shared_ptr<RenderTarget> target);
    void ResolveMultisample();
    void ApplyPostProcesses(std::vector<std::shared_ptr<Component>> post_processes);
    void EndDrawFrame();

    RenderSystem& GetRenderSystem() { return render_system_; }

private:
    RenderSystem& render_system_;
    task_system& tasks_;
};

}  // namespace kesta
