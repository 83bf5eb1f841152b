#include "plugins/vr/simulator/sim_compositor.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "plugins/vr/simulator/frame_capture.h"

namespace kesta::vrsim {

namespace {

bool InUnitRange(float value) { return value >= 0.0f && value <= 1.0f; }

void FillPoses(const SimRuntime& runtime, vr::TrackedDevicePose_t* render, uint32_t render_count,
               vr::TrackedDevicePose_t* game, uint32_t game_count)
{
    if (render != nullptr)
        runtime.LastPoses(render, render_count);
    if (game != nullptr)
        runtime.LastPoses(game, game_count);
}

void EmptyString(char* buffer, uint32_t size)
{
    if (buffer != nullptr && size > 0)
        buffer[0] = '\0';
}

}  // namespace

void SimCompositor::SetTrackingSpace(vr::ETrackingUniverseOrigin eOrigin) { runtime_.set_tracking_space(eOrigin); }

vr::ETrackingUniverseOrigin SimCompositor::GetTrackingSpace() { return runtime_.tracking_space(); }

// Render and game poses are the same: the scripted path is known exactly for each frame.
vr::EVRCompositorError SimCompositor::WaitGetPoses(vr::TrackedDevicePose_t* pRenderPoseArray,
                                                   uint32_t unRenderPoseArrayCount,
                                                   vr::TrackedDevicePose_t* pGamePoseArray,
                                                   uint32_t unGamePoseArrayCount)
{
    runtime_.BeginFrame();
    FillPoses(runtime_, pRenderPoseArray, unRenderPoseArrayCount, pGamePoseArray, unGamePoseArrayCount);
    return vr::VRCompositorError_None;
}

vr::EVRCompositorError SimCompositor::GetLastPoses(vr::TrackedDevicePose_t* pRenderPoseArray,
                                                   uint32_t unRenderPoseArrayCount,
                                                   vr::TrackedDevicePose_t* pGamePoseArray,
                                                   uint32_t unGamePoseArrayCount)
{
    FillPoses(runtime_, pRenderPoseArray, unRenderPoseArrayCount, pGamePoseArray, unGamePoseArrayCount);
    return vr::VRCompositorError_None;
}

vr::EVRCompositorError SimCompositor::GetLastPoseForTrackedDeviceIndex(vr::TrackedDeviceIndex_t unDeviceIndex,
                                                                       vr::TrackedDevicePose_t* pOutputPose,
                                                                       vr::TrackedDevicePose_t* pOutputGamePose)
{
    if (unDeviceIndex >= vr::k_unMaxTrackedDeviceCount)
        return vr::VRCompositorError_IndexOutOfRange;
    vr::TrackedDevicePose_t poses[vr::k_unMaxTrackedDeviceCount];
    runtime_.LastPoses(poses, vr::k_unMaxTrackedDeviceCount);
    if (pOutputPose != nullptr)
        *pOutputPose = poses[unDeviceIndex];
    if (pOutputGamePose != nullptr)
        *pOutputGamePose = poses[unDeviceIndex];
    return vr::VRCompositorError_None;
}

// Takes OpenGL textures only, on the thread whose GL context owns them. Bounds may be flipped (min
// above max) to mirror the picture, as OpenGL applications do, but must stay within [0, 1].
vr::EVRCompositorError SimCompositor::Submit(vr::EVREye eEye, const vr::Texture_t* pTexture,
                                             const vr::VRTextureBounds_t* pBounds, vr::EVRSubmitFlags nSubmitFlags)
{
    if (eEye != vr::Eye_Left && eEye != vr::Eye_Right)
        return vr::VRCompositorError_IndexOutOfRange;
    if (pTexture == nullptr || pTexture->eType != vr::TextureType_OpenGL)
        return vr::VRCompositorError_InvalidTexture;
    if (pBounds != nullptr && !(InUnitRange(pBounds->uMin) && InUnitRange(pBounds->uMax) &&
                                InUnitRange(pBounds->vMin) && InUnitRange(pBounds->vMax)))
        return vr::VRCompositorError_InvalidBounds;

    const auto texture_name = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pTexture->handle));
    TextureInfo info;
    const bool render_buffer = (nSubmitFlags & vr::Submit_GlRenderBuffer) != 0;
    if (!render_buffer) {
        switch (InspectTexture(texture_name, info)) {
            case TextureCheck::kNoContext:
                return vr::VRCompositorError_TextureIsOnWrongDevice;
            case TextureCheck::kNotATexture:
                return vr::VRCompositorError_InvalidTexture;
            case TextureCheck::kOk:
                break;
        }
    }
    if (!runtime_.MarkSubmitted(eEye))
        return vr::VRCompositorError_AlreadySubmitted;

    const uint64_t frame = runtime_.frame();
    VrSimSubmission record{};
    record.frame = frame;
    record.eye = eEye;
    record.texture_type = pTexture->eType;
    record.color_space = pTexture->eColorSpace;
    record.submit_flags = nSubmitFlags;
    record.texture_name = texture_name;
    record.width = info.width;
    record.height = info.height;
    if (pBounds != nullptr) {
        record.has_bounds = 1;
        record.bounds[0] = pBounds->uMin;
        record.bounds[1] = pBounds->vMin;
        record.bounds[2] = pBounds->uMax;
        record.bounds[3] = pBounds->vMax;
    }
    runtime_.RecordSubmission(record);
    any_submission_ = true;

    // Render buffers cannot be read as textures; they are recorded only.
    const bool png = WantsPng(frame);
    if (!render_buffer && (runtime_.config().capture.readback || png)) {
        Picture picture = ReadTexture(texture_name, info);
        if (png) {
            const std::string path = runtime_.config().capture.png_folder + "/frame_" + std::to_string(frame) +
                                     (eEye == vr::Eye_Left ? "_left.png" : "_right.png");
            if (!WritePng(path, picture))
                std::fprintf(stderr, "vrsim: cannot write %s\n", path.c_str());
        }
        runtime_.StorePicture(eEye, std::move(picture));
    }
    return vr::VRCompositorError_None;
}

bool SimCompositor::WantsPng(uint64_t frame) const
{
    const std::vector<uint64_t>& frames = runtime_.config().capture.png_frames;
    return std::find(frames.begin(), frames.end(), frame) != frames.end();
}

// Nothing is shown, so there is nothing to clear or hand off.
void SimCompositor::ClearLastSubmittedFrame() {}
void SimCompositor::PostPresentHandoff() {}

// Frame timings are not measured.
bool SimCompositor::GetFrameTiming(vr::Compositor_FrameTiming*, uint32_t) { return false; }
uint32_t SimCompositor::GetFrameTimings(vr::Compositor_FrameTiming*, uint32_t) { return 0; }

float SimCompositor::GetFrameTimeRemaining() { return static_cast<float>(runtime_.pacer().SecondsRemaining()); }

// Every frame started counts as presented; nothing is dropped or reprojected.
void SimCompositor::GetCumulativeStats(vr::Compositor_CumulativeStats* pStats, uint32_t nStatsSizeInBytes)
{
    if (pStats == nullptr || nStatsSizeInBytes != sizeof(vr::Compositor_CumulativeStats))
        return;
    *pStats = vr::Compositor_CumulativeStats{};
    pStats->m_nPid = static_cast<uint32_t>(getpid());
    pStats->m_nNumFramePresents = static_cast<uint32_t>(runtime_.frame());
}

// Fades complete at once.
void SimCompositor::FadeToColor(float, float fRed, float fGreen, float fBlue, float fAlpha, bool bBackground)
{
    fade_color_[bBackground ? 1 : 0] = vr::HmdColor_t{fRed, fGreen, fBlue, fAlpha};
}

vr::HmdColor_t SimCompositor::GetCurrentFadeColor(bool bBackground) { return fade_color_[bBackground ? 1 : 0]; }
void SimCompositor::FadeGrid(float, bool bFadeIn) { grid_alpha_ = bFadeIn ? 1.0f : 0.0f; }
float SimCompositor::GetCurrentGridAlpha() { return grid_alpha_; }

// No skybox: there is no scene of the compositor's own.
vr::EVRCompositorError SimCompositor::SetSkyboxOverride(const vr::Texture_t*, uint32_t)
{
    return vr::VRCompositorError_RequestFailed;
}
void SimCompositor::ClearSkyboxOverride() {}

void SimCompositor::CompositorBringToFront() {}
void SimCompositor::CompositorGoToBack() {}
void SimCompositor::CompositorQuit() {}
bool SimCompositor::IsFullscreen() { return false; }
uint32_t SimCompositor::GetCurrentSceneFocusProcess() { return static_cast<uint32_t>(getpid()); }
uint32_t SimCompositor::GetLastFrameRenderer() { return any_submission_ ? static_cast<uint32_t>(getpid()) : 0; }
bool SimCompositor::CanRenderScene() { return true; }

// There is no mirror window; only its visibility flag is kept.
void SimCompositor::ShowMirrorWindow() { mirror_visible_ = true; }
void SimCompositor::HideMirrorWindow() { mirror_visible_ = false; }
bool SimCompositor::IsMirrorWindowVisible() { return mirror_visible_; }

// Pictures are written through the capture configuration instead.
void SimCompositor::CompositorDumpImages() {}
bool SimCompositor::ShouldAppRenderWithLowResources() { return false; }
void SimCompositor::ForceInterleavedReprojectionOn(bool) {}
void SimCompositor::ForceReconnectProcess() {}
void SimCompositor::SuspendRendering(bool) {}

// No mirror textures of any API.
vr::EVRCompositorError SimCompositor::GetMirrorTextureD3D11(vr::EVREye, void*, void** ppD3D11ShaderResourceView)
{
    if (ppD3D11ShaderResourceView != nullptr)
        *ppD3D11ShaderResourceView = nullptr;
    return vr::VRCompositorError_RequestFailed;
}
void SimCompositor::ReleaseMirrorTextureD3D11(void*) {}
vr::EVRCompositorError SimCompositor::GetMirrorTextureGL(vr::EVREye, vr::glUInt_t* pglTextureId,
                                                         vr::glSharedTextureHandle_t* pglSharedTextureHandle)
{
    if (pglTextureId != nullptr)
        *pglTextureId = 0;
    if (pglSharedTextureHandle != nullptr)
        *pglSharedTextureHandle = nullptr;
    return vr::VRCompositorError_RequestFailed;
}
bool SimCompositor::ReleaseSharedGLTexture(vr::glUInt_t, vr::glSharedTextureHandle_t) { return false; }
void SimCompositor::LockGLSharedTextureForAccess(vr::glSharedTextureHandle_t) {}
void SimCompositor::UnlockGLSharedTextureForAccess(vr::glSharedTextureHandle_t) {}

// No Vulkan path: no extension is required, the answer is the empty string.
uint32_t SimCompositor::GetVulkanInstanceExtensionsRequired(char* pchValue, uint32_t unBufferSize)
{
    EmptyString(pchValue, unBufferSize);
    return 0;
}
uint32_t SimCompositor::GetVulkanDeviceExtensionsRequired(VkPhysicalDevice_T*, char* pchValue, uint32_t unBufferSize)
{
    EmptyString(pchValue, unBufferSize);
    return 0;
}

// Explicit timing changes nothing when the frames are not really displayed.
void SimCompositor::SetExplicitTimingMode(vr::EVRCompositorTimingMode) {}
vr::EVRCompositorError SimCompositor::SubmitExplicitTimingData() { return vr::VRCompositorError_None; }

}  // namespace kesta::vrsim
