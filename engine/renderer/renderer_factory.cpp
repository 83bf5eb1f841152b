#include "engine/renderer/renderer_factory.h"

namespace kesta {

RendererFactoryTable* g_renderer_factory_table = nullptr;

}  // namespace kesta
