#pragma once

#include <cstdint>

#include "engine/frame_renderer.h"

namespace kesta {

// Draws the frame once: the renderables, multisample resolve and the post-process chain, or, with a
// pass shader in force, only the renderables in that pass.
class DefaultFrameRenderer : public FrameRenderer {
public:
    static constexpr std::uint8_t kNoPassShader = 14;

    bool Initialize(RenderSystem& render_system) override;
    void RenderFrame(RenderSystem& render_system, LightSystem& lights,
                     std::vector<std::shared_ptr<Renderable>>& renderables,
                     std::vector<std::shared_ptr<Component>>& post_processes) override;
    void Shutdown(RenderSystem& render_system) override;

    std::uint8_t pass_shader = kNoPassShader;
};

}  // namespace kesta
