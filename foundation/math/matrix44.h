#pragma once

#include "foundation/math/matrix4.h"
#include "foundation/math/vector.h"

namespace kesta {

// Full 4 by 4 matrix, row by row, acting on column vectors: the form of projections.
struct Matrix44 {
    float m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

    static constexpr Matrix44 Identity() { return {}; }
    // The affine transform with the implied fourth row (0, 0, 0, 1).
    static Matrix44 FromMatrix4(const Matrix4& transform);

    constexpr float operator()(int row, int column) const { return m[row * 4 + column]; }
    float& operator()(int row, int column) { return m[row * 4 + column]; }
    friend bool operator==(const Matrix44&, const Matrix44&) = default;

    Matrix44 Transposed() const;
    // The general inverse; a singular matrix gives the identity.
    Matrix44 Inverse() const;
    // The first three rows; exact for affine matrices.
    Matrix4 ToMatrix4() const;
};

Matrix44 operator*(const Matrix44& a, const Matrix44& b);
Vector4 operator*(const Matrix44& a, const Vector4& v);

}  // namespace kesta
