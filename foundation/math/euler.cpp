#include "foundation/math/euler.h"

#include <algorithm>
#include <cmath>

namespace kesta {

namespace {

// The axes of an order: first, second, third applied, and whether (first, second, third) is an
// even permutation of (X, Y, Z), which fixes the signs of the extraction.
struct AxisSequence {
    int first, second, third;
    bool even;
};

AxisSequence sequence_of(RotationOrder order)
{
    switch (order) {
        case RotationOrder::YXZ:
            return {1, 0, 2, false};
        case RotationOrder::XZY:
            return {0, 2, 1, false};
        case RotationOrder::ZXY:
            return {2, 0, 1, true};
        case RotationOrder::YZX:
            return {1, 2, 0, true};
        case RotationOrder::ZYX:
            return {2, 1, 0, false};
        case RotationOrder::Default:
        case RotationOrder::XY:
        case RotationOrder::XYZ:
            break;
    }
    return {0, 1, 2, true};
}

Matrix3 rotation_about(int axis, float radians)
{
    switch (axis) {
        case 0:
            return Matrix3::RotationX(radians);
        case 1:
            return Matrix3::RotationY(radians);
        default:
            return Matrix3::RotationZ(radians);
    }
}

}  // namespace

Matrix3 MatrixFromEuler(const Vector3& radians, RotationOrder order)
{
    if (order == RotationOrder::XY)
        return Matrix3::RotationY(radians.y) * Matrix3::RotationX(radians.x);
    const AxisSequence s = sequence_of(order);
    // Column vectors: the first rotation stands rightmost.
    return rotation_about(s.third, radians[s.third]) * rotation_about(s.second, radians[s.second]) *
           rotation_about(s.first, radians[s.first]);
}

Vector3 EulerFromMatrix(const Matrix3& r, RotationOrder order)
{
    if (order == RotationOrder::XY) {
        // Ry * Rx: column 0 holds Y alone, row 1 holds X alone.
        return {std::atan2(-r(1, 2), r(1, 1)), std::atan2(-r(2, 0), r(0, 0)), 0.0f};
    }
    const AxisSequence s = sequence_of(order);
    const int i = s.first, j = s.second, k = s.third;
    const float sign = s.even ? 1.0f : -1.0f;
    Vector3 angles;
    const float sine = std::clamp(-sign * r(k, i), -1.0f, 1.0f);
    angles[j] = std::asin(sine);
    if (std::abs(sine) < 0.99999f) {
        angles[i] = std::atan2(sign * r(k, j), r(k, k));
        angles[k] = std::atan2(sign * r(j, i), r(i, i));
    } else {
        // Gimbal lock: first and third axes coincide; put the whole turn on the first.
        angles[i] = std::atan2(-sign * r(j, k), r(j, j));
        angles[k] = 0.0f;
    }
    return angles;
}

Quaternion QuaternionFromEuler(const Vector3& radians, RotationOrder order)
{
    return Quaternion::FromMatrix(MatrixFromEuler(radians, order));
}

Vector3 EulerFromQuaternion(const Quaternion& rotation, RotationOrder order)
{
    return EulerFromMatrix(rotation.ToMatrix(), order);
}

}  // namespace kesta
