#pragma once

#include <memory>
#include <string>

namespace kesta {

// An OpenGL core-profile context without a window or a GPU: EGL on Mesa's surfaceless platform, which
// renders with the llvmpipe software rasteriser. Draw into framebuffer objects; there is no default
// framebuffer.
class HeadlessGLContext {
public:
    ~HeadlessGLContext();
    HeadlessGLContext(const HeadlessGLContext&) = delete;
    HeadlessGLContext& operator=(const HeadlessGLContext&) = delete;

    // Null, with the reason in *error, when EGL or the requested version is unavailable.
    static std::unique_ptr<HeadlessGLContext> Create(int major_version, int minor_version, std::string* error);

    // Makes the context current on the calling thread, or releases it from that thread.
    bool MakeCurrent();
    void ReleaseCurrent();

    // Any GL function by name, core or extension.
    using Function = void (*)();
    static Function GetProcAddress(const char* name);

private:
    HeadlessGLContext() = default;

    void* display_ = nullptr;  // EGLDisplay
    void* context_ = nullptr;  // EGLContext
};

}  // namespace kesta
