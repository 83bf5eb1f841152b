#include "engine/frame_renderer_factory.h"

namespace kesta {

FrameRendererFactory* g_frame_renderer_factory = nullptr;

}  // namespace kesta
