#pragma once
// What the module adds to the host's process-wide registries while it is loaded: the headset, two
// controllers and two trackers as input devices, and the frame renderer under "VR" and "OpenVR".

namespace kesta {

// Called from PluginLoad once the host's objects are adopted. A device name already taken keeps
// the device that holds it; a frame renderer name already taken is overwritten.
void RegisterModule();

// Called from PluginUnload: removes the names again, in reverse order. Frame renderers made from
// the factory must be gone before: their code is the module's.
void UnregisterModule();

}  // namespace kesta
