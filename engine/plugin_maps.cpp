#include "engine/plugin_maps.h"

namespace kesta {

PhysicSystemFactoryTable* g_physic_system_factory_table = nullptr;
ScriptEngineFactoryTable* g_script_engine_factory_table = nullptr;
PictureRendererFactoryTable* g_picture_renderer_factory_table = nullptr;
ResourceLoaderMap* g_resource_loader_map = nullptr;

}  // namespace kesta
