#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace kesta {

class Renderer;

// Named constructors of renderers. A back-end plug-in adds its own when loaded; the host asks for
// a renderer by name. Each returns a new renderer (already passed through AdoptRenderer).
class RendererFactoryTable : public std::map<std::string, std::function<std::shared_ptr<Renderer>()>> {};

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern RendererFactoryTable* g_renderer_factory_table;

}  // namespace kesta
