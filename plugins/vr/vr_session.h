#pragma once
// The link to the OpenVR runtime: starting it as a scene application, the two eye render targets,
// and tearing both down. Both functions run on the render worker, the one thread that touches
// OpenVR and the GPU context.

namespace kesta {

class RenderSystem;

// Starts the session and makes the eye targets at the runtime's recommended size, widening the
// render system's internal resolution where the eyes need more. True at once when a session is
// already running; false, with nothing made, when the runtime is absent or refuses.
bool InitOpenVR(RenderSystem& render_system);

// Frees the eye targets and ends the session. The internal resolution is not put back, and the
// device poses and states keep their last values.
void ShutdownOpenVR(RenderSystem& render_system);

}  // namespace kesta
