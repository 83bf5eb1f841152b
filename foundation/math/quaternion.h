#pragma once

#include "foundation/math/matrix3.h"
#include "foundation/math/vector.h"

namespace kesta {

// Rotation quaternion: x, y, z the vector part, w the scalar part. Identity by default.
struct Quaternion {
    float x = 0, y = 0, z = 0, w = 1;

    static constexpr Quaternion Identity() { return {}; }
    static Quaternion FromAxisAngle(const Vector3& axis, float radians);
    // The rotation part of a matrix whose columns are orthonormal.
    static Quaternion FromMatrix(const Matrix3& rotation);

    friend constexpr bool operator==(const Quaternion&, const Quaternion&) = default;

    Matrix3 ToMatrix() const;
    Quaternion Normalized() const;
    constexpr Quaternion Conjugate() const { return {-x, -y, -z, w}; }
    Vector3 Rotate(const Vector3& v) const;
};

// Composition: (a * b) rotates by b first, then by a.
Quaternion operator*(const Quaternion& a, const Quaternion& b);
constexpr float Dot(const Quaternion& a, const Quaternion& b) { return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w; }
// Spherical interpolation along the shorter arc, t from 0 (a) to 1 (b).
Quaternion Slerp(const Quaternion& a, const Quaternion& b, float t);

}  // namespace kesta
