#pragma once
// A renderable that answers a fixed culling result, remembers how it was asked, and adds one
// triangle primitive to the opaque list when asked for its primitives.

#include <cstdint>
#include <functional>

#include "engine/frustum.h"
#include "engine/render_system/primitive_lists.h"
#include "engine/render_system/renderable.h"

namespace kesta::testing {

class FakeRenderable : public Renderable {
public:
    explicit FakeRenderable(int answer = Frustum::kInside) : cull_result(answer) {}

    MinMax GetMinMax() override { return {}; }
    int Cull(const Frustum& frustum) override
    {
        ++cull_calls;
        culled_with = frustum;
        return cull_result;
    }
    void GetRenderPrimitives(const Frustum&, const Matrix4& view, PrimitiveLists& lists, std::uint32_t flags) override
    {
        ++primitive_calls;
        seen_view = view;
        seen_flags = flags;
        if (on_primitives)
            on_primitives();
        RenderPrimitive primitive;
        primitive.index_count = 3;
        lists.Add(primitive, kRenderListOpaque);
    }

    int cull_result;
    int cull_calls = 0;
    int primitive_calls = 0;
    Frustum culled_with;
    Matrix4 seen_view;
    std::uint32_t seen_flags = 0xffffffff;
    std::function<void()> on_primitives;
};

}  // namespace kesta::testing
