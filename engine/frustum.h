#pragma once
// The six planes of a view volume in world space, for culling. A plane is (normal, distance) with
// the normal pointing inwards and of unit length: a point p is inside when dot(normal, p) + distance
// is not negative for all six.

#include <array>

#include "foundation/math/matrix4.h"
#include "foundation/math/matrix44.h"
#include "foundation/math/minmax.h"
#include "foundation/math/vector.h"

namespace kesta {

struct Frustum {
    enum Plane { kLeft = 0, kRight, kBottom, kTop, kNear, kFar, kPlaneCount };
    // What Classify answers; the values are those of Renderable::Cull.
    enum Visibility { kOutside = 0, kInside = 1, kCrossing = 2 };

    std::array<Vector4, kPlaneCount> planes{};

    // From the matrix that takes world space to clip space (depth -1..1).
    static Frustum FromWorldToClip(const Matrix44& world_to_clip);
    // From a camera's world matrix and its projection: the world-to-view matrix is its inverse.
    static Frustum FromView(const Matrix4& camera_world, const Matrix44& projection);

    float DistanceTo(Plane plane, const Vector3& point) const;
    bool Contains(const Vector3& point) const;
    Visibility Classify(const MinMax& box) const;
};

}  // namespace kesta
