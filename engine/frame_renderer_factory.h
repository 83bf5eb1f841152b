#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "engine/frame_renderer.h"

namespace kesta {

// Named constructors of frame renderers, ordered by name. Plug-ins add their names on load and
// take them out on unload; the application makes a frame renderer by name.
class FrameRendererFactory : public std::map<std::string, std::function<std::shared_ptr<FrameRenderer>()>> {};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern FrameRendererFactory* g_frame_renderer_factory;

}  // namespace kesta
