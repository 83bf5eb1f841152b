#pragma once

#include <cstdint>

namespace kesta {

// Order in which Euler angles are applied; "XYZ" turns about X first, then Y, then Z.
// Default is the same as XYZ; XY ignores the Z angle.
enum class RotationOrder : std::uint8_t { Default, XY, XYZ, YXZ, XZY, ZXY, YZX, ZYX };

// Degrees of freedom of an input or a constraint: three translations, three rotations.
enum Axis { AxisX, AxisY, AxisZ, AxisRotX, AxisRotY, AxisRotZ, AxisLast };

}  // namespace kesta
