#include "platform/input/input_system.h"

namespace kesta {

InputSystem* g_input_system = nullptr;

}  // namespace kesta
