#include "foundation/math/quaternion.h"

#include <cmath>

namespace kesta {

Quaternion Quaternion::FromAxisAngle(const Vector3& axis, float radians)
{
    const Vector3 n = axis.Normalized();
    const float s = std::sin(radians * 0.5f);
    return {n.x * s, n.y * s, n.z * s, std::cos(radians * 0.5f)};
}

Quaternion Quaternion::FromMatrix(const Matrix3& r)
{
    // Pick the largest of the four diagonal combinations to keep the square root well away from 0.
    const float trace = r(0, 0) + r(1, 1) + r(2, 2);
    Quaternion q;
    if (trace > 0.0f) {
        const float s = std::sqrt(trace + 1.0f) * 2.0f;
        q = {(r(2, 1) - r(1, 2)) / s, (r(0, 2) - r(2, 0)) / s, (r(1, 0) - r(0, 1)) / s, 0.25f * s};
    } else if (r(0, 0) > r(1, 1) && r(0, 0) > r(2, 2)) {
        const float s = std::sqrt(1.0f + r(0, 0) - r(1, 1) - r(2, 2)) * 2.0f;
        q = {0.25f * s, (r(0, 1) + r(1, 0)) / s, (r(0, 2) + r(2, 0)) / s, (r(2, 1) - r(1, 2)) / s};
    } else if (r(1, 1) > r(2, 2)) {
        const float s = std::sqrt(1.0f + r(1, 1) - r(0, 0) - r(2, 2)) * 2.0f;
        q = {(r(0, 1) + r(1, 0)) / s, 0.25f * s, (r(1, 2) + r(2, 1)) / s, (r(0, 2) - r(2, 0)) / s};
    } else {
        const float s = std::sqrt(1.0f + r(2, 2) - r(0, 0) - r(1, 1)) * 2.0f;
        q = {(r(0, 2) + r(2, 0)) / s, (r(1, 2) + r(2, 1)) / s, 0.25f * s, (r(1, 0) - r(0, 1)) / s};
    }
    return q.Normalized();
}

Matrix3 Quaternion::ToMatrix() const
{
    const float xx = x * x, yy = y * y, zz = z * z;
    const float xy = x * y, xz = x * z, yz = y * z, wx = w * x, wy = w * y, wz = w * z;
    return {{1 - 2 * (yy + zz), 2 * (xy - wz), 2 * (xz + wy), 2 * (xy + wz), 1 - 2 * (xx + zz), 2 * (yz - wx),
             2 * (xz - wy), 2 * (yz + wx), 1 - 2 * (xx + yy)}};
}

Quaternion Quaternion::Normalized() const
{
    const float length = std::sqrt(Dot(*this, *this));
    if (length == 0.0f)
        return Identity();
    return {x / length, y / length, z / length, w / length};
}

Vector3 Quaternion::Rotate(const Vector3& v) const
{
    const Vector3 u{x, y, z};
    const Vector3 t = Cross(u, v) * 2.0f;
    return v + t * w + Cross(u, t);
}

Quaternion operator*(const Quaternion& a, const Quaternion& b)
{
    return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y, a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
            a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

Quaternion Slerp(const Quaternion& a, const Quaternion& b_in, float t)
{
    Quaternion b = b_in;
    float cosine = Dot(a, b);
    if (cosine < 0.0f) {
        b = {-b.x, -b.y, -b.z, -b.w};
        cosine = -cosine;
    }
    float wa = 1.0f - t, wb = t;
    // Nearly equal rotations: the linear blend is exact enough and avoids dividing by sin(0).
    if (cosine < 0.9995f) {
        const float angle = std::acos(cosine);
        const float s = std::sin(angle);
        wa = std::sin((1.0f - t) * angle) / s;
        wb = std::sin(t * angle) / s;
    }
    return Quaternion{a.x * wa + b.x * wb, a.y * wa + b.y * wb, a.z * wa + b.z * wb, a.w * wa + b.w * wb}.Normalized();
}

}  // namespace kesta
