#include "platform/headless_gl/headless_gl_context.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstring>

namespace kesta {

namespace {

std::string EglError(const char* what)
{
    return std::string(what) + " failed (EGL error " + std::to_string(eglGetError()) + ")";
}

bool HasExtension(const char* extensions, const char* name)
{
    if (extensions == nullptr)
        return false;
    const size_t length = std::strlen(name);
    for (const char* at = std::strstr(extensions, name); at != nullptr; at = std::strstr(at + 1, name)) {
        const bool starts = at == extensions || at[-1] == ' ';
        const bool ends = at[length] == ' ' || at[length] == '\0';
        if (starts && ends)
            return true;
    }
    return false;
}

}  // namespace

std::unique_ptr<HeadlessGLContext> HeadlessGLContext::Create(int major_version, int minor_version, std::string* error)
{
    auto fail = [error](std::string reason) {
        if (error != nullptr)
            *error = std::move(reason);
        return nullptr;
    };
    // Client extensions are queried without a display.
    const char* client_extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (!HasExtension(client_extensions, "EGL_MESA_platform_surfaceless"))
        return fail("EGL_MESA_platform_surfaceless is not available (install libegl-mesa0)");
    auto get_platform_display =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (get_platform_display == nullptr)
        return fail("eglGetPlatformDisplayEXT is not available");

    std::unique_ptr<HeadlessGLContext> gl(new HeadlessGLContext);
    EGLDisplay display = get_platform_display(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (display == EGL_NO_DISPLAY)
        return fail(EglError("eglGetPlatformDisplayEXT"));
    EGLint major = 0, minor = 0;
    if (eglInitialize(display, &major, &minor) == EGL_FALSE)
        return fail(EglError("eglInitialize"));
    gl->display_ = display;
    if (eglBindAPI(EGL_OPENGL_API) == EGL_FALSE)
        return fail(EglError("eglBindAPI"));

    const EGLint config_attributes[] = {EGL_RENDERABLE_TYPE,
                                        EGL_OPENGL_BIT,
                                        EGL_SURFACE_TYPE,
                                        EGL_PBUFFER_BIT,
                                        EGL_RED_SIZE,
                                        8,
                                        EGL_GREEN_SIZE,
                                        8,
                                        EGL_BLUE_SIZE,
                                        8,
                                        EGL_ALPHA_SIZE,
                                        8,
                                        EGL_NONE};
    EGLConfig config = nullptr;
    EGLint config_count = 0;
    if (eglChooseConfig(display, config_attributes, &config, 1, &config_count) == EGL_FALSE || config_count < 1)
        return fail(EglError("eglChooseConfig"));

    const EGLint context_attributes[] = {EGL_CONTEXT_MAJOR_VERSION,
                                         major_version,
                                         EGL_CONTEXT_MINOR_VERSION,
                                         minor_version,
                                         EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                         EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                         EGL_NONE};
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, context_attributes);
    if (context == EGL_NO_CONTEXT)
        return fail(EglError("eglCreateContext"));
    gl->context_ = context;
    return gl;
}

HeadlessGLContext::~HeadlessGLContext()
{
    if (display_ == nullptr)
        return;
    if (eglGetCurrentContext() == context_)
        eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (context_ != nullptr)
        eglDestroyContext(display_, context_);
    // Not eglTerminate: the display is shared by every context of the process on this platform.
}

bool HeadlessGLContext::MakeCurrent()
{
    return eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_) == EGL_TRUE;
}

void HeadlessGLContext::ReleaseCurrent()
{
    if (eglGetCurrentContext() == context_)
        eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

HeadlessGLContext::Function HeadlessGLContext::GetProcAddress(const char* name)
{
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

}  // namespace kesta
