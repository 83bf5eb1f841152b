#pragma once

#include "foundation/math/vector.h"

namespace kesta {

// 3 by 3 matrix stored row by row, acting on column vectors; a rotation's columns are its axes.
struct Matrix3 {
    float m[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

    static constexpr Matrix3 Identity() { return {}; }
    static Matrix3 RotationX(float radians);
    static Matrix3 RotationY(float radians);
    static Matrix3 RotationZ(float radians);
    static Matrix3 Scale(const Vector3& scale);

    constexpr float operator()(int row, int column) const { return m[row * 3 + column]; }
    float& operator()(int row, int column) { return m[row * 3 + column]; }
    friend bool operator==(const Matrix3&, const Matrix3&) = default;

    Vector3 Column(int column) const { return {m[column], m[3 + column], m[6 + column]}; }
    Matrix3 Transposed() const;
    float Determinant() const;
    // The inverse; a singular matrix gives the identity.
    Matrix3 Inverse() const;
};

Matrix3 operator*(const Matrix3& a, const Matrix3& b);
Vector3 operator*(const Matrix3& a, const Vector3& v);

}  // namespace kesta
