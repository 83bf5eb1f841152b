#pragma once
// Makes the OpenGL renderer without bringing GL headers to the caller.

#include <memory>

namespace kesta {

class Renderer;

// A new, closed OpenGL renderer with a headless context and an output of the given size.
std::shared_ptr<Renderer> MakeGLRenderer(int output_width, int output_height);

}  // namespace kesta
