#include "overlay/imgui_shared_state.h"

namespace kesta {

ImGuiSharedState* g_imgui_shared_state = nullptr;

}  // namespace kesta
