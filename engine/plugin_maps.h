#pragma once
// Registries that other kinds of plug-ins fill (physics and script back ends, picture renderers;
// renderer back ends have engine/renderer/renderer_factory.h). The VR module only carries their
// pointers from the host; they are declared here with no more than their name until built.

namespace kesta {

class PhysicSystemFactoryTable;
class ScriptEngineFactoryTable;
class PictureRendererFactoryTable;
class ResourceLoaderMap;

extern PhysicSystemFactoryTable* g_physic_system_factory_table;
extern ScriptEngineFactoryTable* g_script_engine_factory_table;
extern PictureRendererFactoryTable* g_picture_renderer_factory_table;
extern ResourceLoaderMap* g_resource_loader_map;

}  // namespace kesta
