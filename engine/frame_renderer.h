#pragma once
// A frame renderer decides how one scene frame becomes pixels: the renderable system collects
// what is to be drawn and makes exactly one RenderFrame call; the frame renderer calls the steps
// of the render system in the order that suits it (once, once per eye, ...).

#include <memory>
#include <string>
#include <vector>

namespace kesta {

class RenderSystem;
class LightSystem;
class Renderable;
class Component;

class FrameRenderer {
public:
    virtual ~FrameRenderer() = default;
    // Called by the application before installing the frame renderer; true when ready.
    virtual bool Initialize(RenderSystem& render_system) = 0;
    virtual void RenderFrame(RenderSystem& render_system, LightSystem& lights,
                             std::vector<std::shared_ptr<Renderable>>& renderables,
                             std::vector<std::shared_ptr<Component>>& post_processes) = 0;
    virtual void Shutdown(RenderSystem& render_system) = 0;
    virtual bool SetConfiguration(const std::string& key, const std::string& value);
    virtual std::string GetConfiguration(const std::string& key);
};

}  // namespace kesta
