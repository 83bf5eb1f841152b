#include "plugins/gl/gl_objects.h"

#include "engine/renderer/render_thread.h"

namespace kesta {

void GLObjectReleaser::DeleteBuffer(GLuint name)
{
    if (on_buffer_deleted)
        on_buffer_deleted(name);
    glDeleteBuffers(1, &name);
}

GLTexture::~GLTexture()
{
    if (gl_name == 0)
        return;
    RunOnRenderThread([releaser = releaser_, name = gl_name] {
        if (auto alive = releaser.lock())
            alive->DeleteTexture(name);
    });
}

void GLTexture::SetTextureUnitConfig(const TextureUnitConfig& unit_config)
{
    config = unit_config;
    config_applied = false;
}

GLBuffer::~GLBuffer()
{
    if (gl_name == 0)
        return;
    RunOnRenderThread([releaser = releaser_, name = gl_name] {
        if (auto alive = releaser.lock())
            alive->DeleteBuffer(name);
    });
}

}  // namespace kesta
