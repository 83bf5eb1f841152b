#include "foundation/math/matrix44.h"

#include <cmath>

namespace kesta {

Matrix44 Matrix44::FromMatrix4(const Matrix4& t)
{
    Matrix44 r;
    for (int i = 0; i < 12; ++i)
        r.m[i] = t.m[i];
    return r;
}

Matrix44 Matrix44::Transposed() const
{
    Matrix44 r;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            r(i, j) = (*this)(j, i);
    return r;
}

Matrix4 Matrix44::ToMatrix4() const
{
    Matrix4 r;
    for (int i = 0; i < 12; ++i)
        r.m[i] = m[i];
    return r;
}

Matrix44 Matrix44::Inverse() const
{
    // Cofactor expansion by 2 by 2 sub-determinants of the top and bottom row pairs.
    const float* a = m;
    const float s0 = a[0] * a[5] - a[4] * a[1];
    const float s1 = a[0] * a[6] - a[4] * a[2];
    const float s2 = a[0] * a[7] - a[4] * a[3];
    const float s3 = a[1] * a[6] - a[5] * a[2];
    const float s4 = a[1] * a[7] - a[5] * a[3];
    const float s5 = a[2] * a[7] - a[6] * a[3];
    const float c5 = a[10] * a[15] - a[14] * a[11];
    const float c4 = a[9] * a[15] - a[13] * a[11];
    const float c3 = a[9] * a[14] - a[13] * a[10];
    const float c2 = a[8] * a[15] - a[12] * a[11];
    const float c1 = a[8] * a[14] - a[12] * a[10];
    const float c0 = a[8] * a[13] - a[12] * a[9];
    const float det = s0 * c5 - s1 * c4 + s2 * c3 + s3 * c2 - s4 * c1 + s5 * c0;
    if (det == 0.0f || !std::isfinite(det))
        return Identity();
    const float inv = 1.0f / det;
    Matrix44 r;
    float* b = r.m;
    b[0] = (a[5] * c5 - a[6] * c4 + a[7] * c3) * inv;
    b[1] = (-a[1] * c5 + a[2] * c4 - a[3] * c3) * inv;
    b[2] = (a[13] * s5 - a[14] * s4 + a[15] * s3) * inv;
    b[3] = (-a[9] * s5 + a[10] * s4 - a[11] * s3) * inv;
    b[4] = (-a[4] * c5 + a[6] * c2 - a[7] * c1) * inv;
    b[5] = (a[0] * c5 - a[2] * c2 + a[3] * c1) * inv;
    b[6] = (-a[12] * s5 + a[14] * s2 - a[15] * s1) * inv;
    b[7] = (a[8] * s5 - a[10] * s2 + a[11] * s1) * inv;
    b[8] = (a[4] * c4 - a[5] * c2 + a[7] * c0) * inv;
    b[9] = (-a[0] * c4 + a[1] * c2 - a[3] * c0) * inv;
    b[10] = (a[12] * s4 - a[13] * s2 + a[15] * s0) * inv;
    b[11] = (-a[8] * s4 + a[9] * s2 - a[11] * s0) * inv;
    b[12] = (-a[4] * c3 + a[5] * c1 - a[6] * c0) * inv;
    b[13] = (a[0] * c3 - a[1] * c1 + a[2] * c0) * inv;
    b[14] = (-a[12] * s3 + a[13] * s1 - a[14] * s0) * inv;
    b[15] = (a[8] * s3 - a[9] * s1 + a[10] * s0) * inv;
    return r;
}

Matrix44 operator*(const Matrix44& a, const Matrix44& b)
{
    Matrix44 r;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            r(i, j) = a(i, 0) * b(0, j) + a(i, 1) * b(1, j) + a(i, 2) * b(2, j) + a(i, 3) * b(3, j);
    return r;
}

Vector4 operator*(const Matrix44& a, const Vector4& v)
{
    return {a(0, 0) * v.x + a(0, 1) * v.y + a(0, 2) * v.z + a(0, 3) * v.w,
            a(1, 0) * v.x + a(1, 1) * v.y + a(1, 2) * v.z + a(1, 3) * v.w,
            a(2, 0) * v.x + a(2, 1) * v.y + a(2, 2) * v.z + a(2, 3) * v.w,
            a(3, 0) * v.x + a(3, 1) * v.y + a(3, 2) * v.z + a(3, 3) * v.w};
}

}  // namespace kesta
