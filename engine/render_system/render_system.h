#pragma once
// The engine's drawing front end. Only the frame steps that frame renderers call are declared so
// far; the class itself is built with the render system.

#include <cstdint>
#include <memory>
#include <vector>

namespace kesta {

class LightSystem;
class Renderable;
class Component;

class RenderSystem {
public:
    void BeginDrawFrame();
    void DrawRenderables(std::vector<std::shared_ptr<Renderable>>& renderables, LightSystem& lights);
    void DrawRenderPassShader(std::vector<std::shared_ptr<Renderable>>& renderables, std::uint8_t pass_shader);
    void ResolveMultisample();
    void ApplyPostProcesses(std::vector<std::shared_ptr<Component>>& post_processes);
    void EndDrawFrame();
};

}  // namespace kesta
