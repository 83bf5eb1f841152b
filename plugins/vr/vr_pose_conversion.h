#pragma once
// OpenVR is right-handed and the engine left-handed: poses and projections change handedness by
// mirroring z.

#include "foundation/math/matrix4.h"
#include "foundation/math/matrix44.h"
#include "plugins/vr/openvr/openvr.h"

namespace kesta {

// ZFlip * m * ZFlip: negates entries (0, 2), (1, 2), (2, 0), (2, 1) and (2, 3).
Matrix4 ConvertPose(const vr::HmdMatrix34_t& m);
// m * ZFlip: negates column 2.
Matrix44 ConvertProjection(const vr::HmdMatrix44_t& m);

struct DepthRange {
    float znear = 0;
    float zfar = 0;
};

// The near and far planes a perspective projection was made with.
DepthRange DepthRangeOf(const Matrix44& projection);

}  // namespace kesta
