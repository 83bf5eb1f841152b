#include "foundation/math/matrix3.h"

#include <cmath>

namespace kesta {

Matrix3 Matrix3::RotationX(float radians)
{
    const float c = std::cos(radians), s = std::sin(radians);
    return {{1, 0, 0, 0, c, -s, 0, s, c}};
}

Matrix3 Matrix3::RotationY(float radians)
{
    const float c = std::cos(radians), s = std::sin(radians);
    return {{c, 0, s, 0, 1, 0, -s, 0, c}};
}

Matrix3 Matrix3::RotationZ(float radians)
{
    const float c = std::cos(radians), s = std::sin(radians);
    return {{c, -s, 0, s, c, 0, 0, 0, 1}};
}

Matrix3 Matrix3::Scale(const Vector3& scale) { return {{scale.x, 0, 0, 0, scale.y, 0, 0, 0, scale.z}}; }

Matrix3 Matrix3::Transposed() const { return {{m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]}}; }

float Matrix3::Determinant() const
{
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
}

Matrix3 Matrix3::Inverse() const
{
    const float det = Determinant();
    if (det == 0.0f)
        return Identity();
    const float inv = 1.0f / det;
    return {{(m[4] * m[8] - m[5] * m[7]) * inv, (m[2] * m[7] - m[1] * m[8]) * inv, (m[1] * m[5] - m[2] * m[4]) * inv,
             (m[5] * m[6] - m[3] * m[8]) * inv, (m[0] * m[8] - m[2] * m[6]) * inv, (m[2] * m[3] - m[0] * m[5]) * inv,
             (m[3] * m[7] - m[4] * m[6]) * inv, (m[1] * m[6] - m[0] * m[7]) * inv, (m[0] * m[4] - m[1] * m[3]) * inv}};
}

Matrix3 operator*(const Matrix3& a, const Matrix3& b)
{
    Matrix3 r;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r(i, j) = a(i, 0) * b(0, j) + a(i, 1) * b(1, j) + a(i, 2) * b(2, j);
    return r;
}

Vector3 operator*(const Matrix3& a, const Vector3& v)
{
    return {a(0, 0) * v.x + a(0, 1) * v.y + a(0, 2) * v.z, a(1, 0) * v.x + a(1, 1) * v.y + a(1, 2) * v.z,
            a(2, 0) * v.x + a(2, 1) * v.y + a(2, 2) * v.z};
}

}  // namespace kesta
