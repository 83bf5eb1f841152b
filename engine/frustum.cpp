#include "engine/frustum.h"

#include <cmath>

namespace kesta {

namespace {

Vector4 Row(const Matrix44& m, int row) { return {m(row, 0), m(row, 1), m(row, 2), m(row, 3)}; }

Vector4 Normalized(const Vector4& plane)
{
    const float length = std::sqrt(plane.x * plane.x + plane.y * plane.y + plane.z * plane.z);
    // A degenerate projection gives a zero plane; it then accepts every point rather than none.
    return length > 0 ? plane * (1.0f / length) : Vector4{0, 0, 0, 1};
}

}  // namespace

Frustum Frustum::FromWorldToClip(const Matrix44& m)
{
    // A point is inside when -w <= x, y, z <= w in clip space; each inequality is a plane
    // made of the fourth row plus or minus one of the others.
    const Vector4 w = Row(m, 3);
    Frustum frustum;
    frustum.planes[kLeft] = Normalized(w + Row(m, 0));
    frustum.planes[kRight] = Normalized(w - Row(m, 0));
    frustum.planes[kBottom] = Normalized(w + Row(m, 1));
    frustum.planes[kTop] = Normalized(w - Row(m, 1));
    frustum.planes[kNear] = Normalized(w + Row(m, 2));
    frustum.planes[kFar] = Normalized(w - Row(m, 2));
    return frustum;
}

Frustum Frustum::FromView(const Matrix4& camera_world, const Matrix44& projection)
{
    return FromWorldToClip(projection * Matrix44::FromMatrix4(camera_world.Inverse()));
}

float Frustum::DistanceTo(Plane plane, const Vector3& p) const
{
    const Vector4& q = planes[plane];
    return q.x * p.x + q.y * p.y + q.z * p.z + q.w;
}

bool Frustum::Contains(const Vector3& point) const
{
    for (int i = 0; i < kPlaneCount; ++i)
        if (DistanceTo(static_cast<Plane>(i), point) < 0)
            return false;
    return true;
}

Frustum::Visibility Frustum::Classify(const MinMax& box) const
{
    Visibility result = kInside;
    for (const Vector4& q : planes) {
        // The corner farthest along the normal decides "outside", the nearest one "crossing".
        const Vector3 far{q.x >= 0 ? box.max.x : box.min.x, q.y >= 0 ? box.max.y : box.min.y,
                          q.z >= 0 ? box.max.z : box.min.z};
        const Vector3 near{q.x >= 0 ? box.min.x : box.max.x, q.y >= 0 ? box.min.y : box.max.y,
                           q.z >= 0 ? box.min.z : box.max.z};
        if (q.x * far.x + q.y * far.y + q.z * far.z + q.w < 0)
            return kOutside;
        if (q.x * near.x + q.y * near.y + q.z * near.z + q.w < 0)
            result = kCrossing;
    }
    return result;
}

}  // namespace kesta
