#pragma once
// Euler angles in radians, one angle an axis (x about X, and so on), applied in a RotationOrder.

#include "foundation/math/matrix3.h"
#include "foundation/math/quaternion.h"
#include "foundation/math/rotation_order.h"
#include "foundation/math/vector.h"

namespace kesta {

Matrix3 MatrixFromEuler(const Vector3& radians, RotationOrder order);
// Angles that rebuild the rotation in the given order. The middle angle lies in [-pi/2, pi/2];
// at gimbal lock the last angle is 0. With RotationOrder::XY the Z angle is 0.
Vector3 EulerFromMatrix(const Matrix3& rotation, RotationOrder order);

Quaternion QuaternionFromEuler(const Vector3& radians, RotationOrder order);
Vector3 EulerFromQuaternion(const Quaternion& rotation, RotationOrder order);

constexpr float kPi = 3.14159265358979323846f;
constexpr float DegreesToRadians(float degrees) { return degrees * (kPi / 180.0f); }
constexpr float RadiansToDegrees(float radians) { return radians * (180.0f / kPi); }

}  // namespace kesta
