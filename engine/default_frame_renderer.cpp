#include "engine/default_frame_renderer.h"

#include "engine/render_system/render_system.h"

namespace kesta {

bool DefaultFrameRenderer::Initialize(RenderSystem&) { return true; }

void DefaultFrameRenderer::RenderFrame(RenderSystem& rs, LightSystem& lights,
                                       std::vector<std::shared_ptr<Renderable>>& renderables,
                                       std::vector<std::shared_ptr<Component>>& post_processes)
{
    rs.BeginDrawFrame();
    if (pass_shader == kNoPassShader) {
        rs.DrawRenderables(renderables, lights);
        rs.ResolveMultisample();
        rs.ApplyPostProcesses(post_processes);
    } else {
        // A pass shader replaces the whole look of the frame: post-processes would be meaningless.
        rs.DrawRenderPassShader(renderables, pass_shader);
        rs.ResolveMultisample();
    }
    rs.EndDrawFrame();
}

void DefaultFrameRenderer::Shutdown(RenderSystem&) {}

}  // namespace kesta
