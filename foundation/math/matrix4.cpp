#include "foundation/math/matrix4.h"

namespace kesta {

Matrix4 Matrix4::FromPosition(const Vector3& position)
{
    Matrix4 r;
    r.SetTranslation(position);
    return r;
}

Matrix4 Matrix4::FromScale(const Vector3& scale) { return {{scale.x, 0, 0, 0, 0, scale.y, 0, 0, 0, 0, scale.z, 0}}; }

Matrix4 Matrix4::FromPositionRotationScale(const Vector3& position, const Matrix3& rotation, const Vector3& scale)
{
    Matrix4 r;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            r(i, j) = rotation(i, j) * scale[j];
        r(i, 3) = position[i];
    }
    return r;
}

Matrix4 Matrix4::FromRotation(const Matrix3& rotation, const Vector3& position)
{
    return FromPositionRotationScale(position, rotation, {1, 1, 1});
}

void Matrix4::SetTranslation(const Vector3& t)
{
    m[3] = t.x;
    m[7] = t.y;
    m[11] = t.z;
}

Matrix3 Matrix4::Linear() const { return {{m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10]}}; }

Vector3 Matrix4::TransformPoint(const Vector3& p) const { return TransformVector(p) + Translation(); }

Vector3 Matrix4::TransformVector(const Vector3& v) const
{
    return {m[0] * v.x + m[1] * v.y + m[2] * v.z, m[4] * v.x + m[5] * v.y + m[6] * v.z,
            m[8] * v.x + m[9] * v.y + m[10] * v.z};
}

Matrix4 Matrix4::Inverse() const
{
    const Matrix3 linear = Linear();
    if (linear.Determinant() == 0.0f)
        return Identity();
    const Matrix3 inverse = linear.Inverse();
    return FromRotation(inverse, -(inverse * Translation()));
}

Matrix4 operator*(const Matrix4& a, const Matrix4& b)
{
    Matrix4 r;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 4; ++j) {
            float sum = a(i, 0) * b(0, j) + a(i, 1) * b(1, j) + a(i, 2) * b(2, j);
            if (j == 3)
                sum += a(i, 3);
            r(i, j) = sum;
        }
    }
    return r;
}

}  // namespace kesta
