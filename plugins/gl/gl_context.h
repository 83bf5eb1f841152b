#pragma once
// The OpenGL context a GLRenderer draws with. The renderer creates it on the render worker when it
// opens and makes it current there; everything else in the back end only needs these calls, so a
// window's context plugs in beside the headless one.

#include <functional>
#include <memory>
#include <string>

namespace kesta {

class GLContext {
public:
    virtual ~GLContext() = default;

    // Makes the context current on the calling thread, or releases it from that thread.
    virtual bool MakeCurrent() = 0;
    virtual void ReleaseCurrent() = 0;
    // Shows the default framebuffer of a window; a context without one does nothing.
    virtual void SwapBuffers() {}
};

// Makes a context for OpenGL 3.3 core, or null with the reason in `error`.
using GLContextFactory = std::function<std::unique_ptr<GLContext>(std::string& error)>;

// EGL on Mesa's surfaceless platform: no display, no window, no GPU.
std::unique_ptr<GLContext> CreateHeadlessGLContext(std::string& error);

}  // namespace kesta
