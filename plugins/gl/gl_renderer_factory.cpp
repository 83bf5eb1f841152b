#include "plugins/gl/gl_renderer_factory.h"

#include "plugins/gl/gl_renderer.h"

namespace kesta {

std::shared_ptr<Renderer> MakeGLRenderer(int output_width, int output_height)
{
    auto renderer = std::make_shared<GLRenderer>();
    renderer->SetOutputSize(output_width, output_height);
    return AdoptRenderer(renderer);
}

}  // namespace kesta
