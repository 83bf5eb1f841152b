#pragma once
// Anything the render system can draw: it says where it is, whether a view sees it, and adds its
// primitives to the frame's lists.

#include <cstdint>

#include "foundation/math/matrix4.h"
#include "foundation/math/minmax.h"

namespace kesta {

struct Frustum;
class PrimitiveLists;

class Renderable {
public:
    virtual ~Renderable() = default;
    // The world bounds.
    virtual MinMax GetMinMax() = 0;
    // 0 outside the frustum, 1 inside, 2 crossing it (the values of Frustum::Visibility).
    virtual int Cull(const Frustum& frustum) = 0;
    // Adds what is seen through `frustum` from the camera `view` (its world matrix) to `lists`.
    // `flags` is 0 for the main view.
    virtual void GetRenderPrimitives(const Frustum& frustum, const Matrix4& view, PrimitiveLists& lists,
                                     std::uint32_t flags) = 0;
};

}  // namespace kesta
