// Per-frame cost of the simulated OpenVR runtime as the VR output uses it: one WaitGetPoses for all
// devices and two eye submissions of 1512 x 1680 OpenGL textures, unpaced, with capture off.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/headless_gl/headless_gl_context.h"
#include "plugins/vr/openvr/openvr.h"

namespace {

constexpr GLsizei kEyeWidth = 1512;
constexpr GLsizei kEyeHeight = 1680;

GLuint MakeEyeTexture()
{
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, kEyeWidth, kEyeHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    return texture;
}

void BM_WaitGetPosesAndSubmitBothEyes(benchmark::State& state)
{
    std::string error;
    auto gl = kesta::HeadlessGLContext::Create(3, 3, &error);
    if (!gl || !gl->MakeCurrent()) {
        state.SkipWithError(("no headless GL context: " + error).c_str());
        return;
    }
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "norvane_vr_runtime_bench";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "vrsim.json") << R"({"paced": false, "capture": {"readback": false}})";
    setenv("VR_OVERRIDE", NORVANE_VRSIM_DIR, 1);
    setenv("VR_CONFIG_PATH", folder.c_str(), 1);
    setenv("VR_LOG_PATH", folder.c_str(), 1);
    setenv("NORVANE_VRSIM_CONFIG", (folder / "vrsim.json").c_str(), 1);

    vr::EVRInitError init_error = vr::VRInitError_None;
    if (vr::VR_Init(&init_error, vr::VRApplication_Scene) == nullptr) {
        state.SkipWithError(("VR_Init failed with error " + std::to_string(init_error)).c_str());
        return;
    }
    const GLuint textures[2] = {MakeEyeTexture(), MakeEyeTexture()};
    vr::TrackedDevicePose_t poses[vr::k_unMaxTrackedDeviceCount];
    for (auto _ : state) {
        vr::IVRCompositor* compositor = vr::VRCompositor();
        compositor->WaitGetPoses(poses, vr::k_unMaxTrackedDeviceCount, nullptr, 0);
        for (int eye = 0; eye < 2; ++eye) {
            const vr::Texture_t texture{reinterpret_cast<void*>(static_cast<uintptr_t>(textures[eye])),
                                        vr::TextureType_OpenGL, vr::ColorSpace_Gamma};
            const vr::EVRCompositorError result =
                compositor->Submit(static_cast<vr::EVREye>(eye), &texture, nullptr, vr::Submit_Default);
            if (result != vr::VRCompositorError_None)
                state.SkipWithError("Submit failed");
        }
        benchmark::DoNotOptimize(poses[0]);
    }
    vr::VR_Shutdown();
    glDeleteTextures(2, textures);
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_WaitGetPosesAndSubmitBothEyes)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
