#pragma once

namespace kesta {

// The registry of input devices and their providers.
class InputSystem;

// The process-wide instance; the host sets it, a plug-in adopts the host's.
extern InputSystem* g_input_system;

}  // namespace kesta
