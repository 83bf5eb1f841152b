#pragma once

#include "foundation/math/matrix3.h"
#include "foundation/math/vector.h"

namespace kesta {

// Axis-aligned box.
struct MinMax {
    Vector3 min;
    Vector3 max;

    friend constexpr bool operator==(const MinMax&, const MinMax&) = default;

    // Outcode bits of a point outside the box, one per side.
    enum Outcode : unsigned {
        kAboveMaxX = 1,
        kBelowMinX = 2,
        kAboveMaxY = 4,
        kBelowMinY = 8,
        kBelowMinZ = 16,
        kAboveMaxZ = 32,
    };
    unsigned OutcodeOf(const Vector3& point) const;

    // Whether the ray from `origin` along `direction` meets the box. An origin inside (or on the
    // surface) hits at once with a zero normal; otherwise the normal is the outward axis of the face
    // entered, and the hit point the place where the ray enters it.
    bool IntersectRay(const Vector3& origin, const Vector3& direction, Vector3* normal = nullptr,
                      Vector3* hit_point = nullptr) const;
};

// Oriented box: a position, a rotation and a scale (the half extents along the rotated axes).
struct OBB {
    Vector3 position;
    Matrix3 rotation;
    Vector3 scale;
};

}  // namespace kesta
