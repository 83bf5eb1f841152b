#include "plugins/vr/vr_pose_conversion.h"

namespace kesta {

Matrix4 ConvertPose(const vr::HmdMatrix34_t& m)
{
    Matrix4 result;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column) {
            // Mirroring z on both sides flips the sign wherever exactly one of row and column is z.
            const bool flips = (row == 2) != (column == 2);
            result(row, column) = flips ? -m.m[row][column] : m.m[row][column];
        }
    return result;
}

Matrix44 ConvertProjection(const vr::HmdMatrix44_t& m)
{
    Matrix44 result;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            result(row, column) = column == 2 ? -m.m[row][column] : m.m[row][column];
    return result;
}

DepthRange DepthRangeOf(const Matrix44& projection)
{
    DepthRange range;
    range.znear = -projection(2, 3) / projection(2, 2);
    range.zfar = range.znear * projection(2, 2) / (projection(2, 2) - 1.0f);
    return range;
}

}  // namespace kesta
