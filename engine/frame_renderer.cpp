#include "engine/frame_renderer.h"

namespace kesta {

bool FrameRenderer::SetConfiguration(const std::string&, const std::string&) { return false; }

std::string FrameRenderer::GetConfiguration(const std::string&) { return {}; }

}  // namespace kesta
