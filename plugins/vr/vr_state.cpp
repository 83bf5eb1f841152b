#include "plugins/vr/vr_state.h"

#include "engine/renderer/gpu_objects.h"

namespace kesta {

VRState g_vr_state;

}  // namespace kesta
