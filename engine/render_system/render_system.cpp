#include "engine/render_system/render_system.h"

#include "foundation/assert/assertion.h"

namespace kesta {

RenderSystem* g_render_system = nullptr;

RenderSystem::RenderSystem()
{
    if (g_render_system)
        assertion_failed(__FILE__, __LINE__, "kesta::RenderSystem::RenderSystem", "!g_render_system", nullptr);
    g_render_system = this;
    default_vertex_layout_.AddAttribute(0, 3, VertexLayout::kFloat, false);
    default_vertex_layout_.AddAttribute(6, 4, VertexLayout::kUnsignedByte, true);
    default_vertex_layout_.AddAttribute(2, 2, VertexLayout::kUnsignedShort, true);
    default_vertex_layout_.End();
}

RenderSystem::~RenderSystem()
{
    if (g_render_system == this)
        g_render_system = nullptr;
}

}  // namespace kesta
