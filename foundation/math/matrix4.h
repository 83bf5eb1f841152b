#pragma once

#include "foundation/math/matrix3.h"
#include "foundation/math/vector.h"

namespace kesta {

// The engine's transform: 3 rows of 4 floats, acting on column vectors, with the translation in
// the fourth column (elements 3, 7 and 11). The missing fourth row is (0, 0, 0, 1).
struct Matrix4 {
    float m[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};

    static constexpr Matrix4 Identity() { return {}; }
    static Matrix4 FromPosition(const Vector3& position);
    static Matrix4 FromScale(const Vector3& scale);
    // R times S: element (i, j) is rotation(i, j) times scale[j]; the fourth column is the position.
    static Matrix4 FromPositionRotationScale(const Vector3& position, const Matrix3& rotation, const Vector3& scale);
    static Matrix4 FromRotation(const Matrix3& rotation, const Vector3& position = {});

    constexpr float operator()(int row, int column) const { return m[row * 4 + column]; }
    float& operator()(int row, int column) { return m[row * 4 + column]; }
    friend bool operator==(const Matrix4&, const Matrix4&) = default;

    Vector3 Translation() const { return {m[3], m[7], m[11]}; }
    void SetTranslation(const Vector3& t);
    // The upper-left 3 by 3 block: rotation and scale together.
    Matrix3 Linear() const;
    Vector3 Axis(int column) const { return {m[column], m[4 + column], m[8 + column]}; }

    Vector3 TransformPoint(const Vector3& p) const;
    Vector3 TransformVector(const Vector3& v) const;
    // The inverse transform; a singular linear part gives the identity.
    Matrix4 Inverse() const;
};

// Composition: (a * b) applies b first, then a.
Matrix4 operator*(const Matrix4& a, const Matrix4& b);

}  // namespace kesta
