#include "plugins/vr/openvr_hmd_device.h"

#include "foundation/log/log.h"
#include "plugins/vr/vr_state.h"

namespace kesta {

Matrix4 OpenVRHMDDevice::GetMatrix(int matrix)
{
    if (matrix == 0)
        return g_vr_state.head_matrix;
    warn(format("OpenVRHMDDevice: Unsupported matrix code %1") << matrix);
    return Matrix4::Identity();
}

}  // namespace kesta
