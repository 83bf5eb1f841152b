#pragma once

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/simulator/sim_runtime.h"

namespace kesta::vrsim {

// IVRCompositor_022 of the simulated runtime. WaitGetPoses paces the frames and Submit takes OpenGL
// textures, records them and reads them back when the configuration asks for it. There is no display,
// mirror window, skybox, overlay or Vulkan/Direct3D path: those methods give the official empty or
// "request failed" answers, as noted at each.
class SimCompositor final : public vr::IVRCompositor {
public:
    explicit SimCompositor(SimRuntime& runtime) : runtime_(runtime) {}

    void SetTrackingSpace(vr::ETrackingUniverseOrigin eOrigin) override;
    vr::ETrackingUniverseOrigin GetTrackingSpace() override;
    vr::EVRCompositorError WaitGetPoses(vr::TrackedDevicePose_t* pRenderPoseArray, uint32_t unRenderPoseArrayCount,
                                        vr::TrackedDevicePose_t* pGamePoseArray,
                                        uint32_t unGamePoseArrayCount) override;
    vr::EVRCompositorError GetLastPoses(vr::TrackedDevicePose_t* pRenderPoseArray, uint32_t unRenderPoseArrayCount,
                                        vr::TrackedDevicePose_t* pGamePoseArray,
                                        uint32_t unGamePoseArrayCount) override;
    vr::EVRCompositorError GetLastPoseForTrackedDeviceIndex(vr::TrackedDeviceIndex_t unDeviceIndex,
                                                            vr::TrackedDevicePose_t* pOutputPose,
                                                            vr::TrackedDevicePose_t* pOutputGamePose) override;
    vr::EVRCompositorError Submit(vr::EVREye eEye, const vr::Texture_t* pTexture, const vr::VRTextureBounds_t* pBounds,
                                  vr::EVRSubmitFlags nSubmitFlags) override;
    void ClearLastSubmittedFrame() override;
    void PostPresentHandoff() override;
    bool GetFrameTiming(vr::Compositor_FrameTiming* pTiming, uint32_t unFramesAgo) override;
    uint32_t GetFrameTimings(vr::Compositor_FrameTiming* pTiming, uint32_t nFrames) override;
    float GetFrameTimeRemaining() override;
    void GetCumulativeStats(vr::Compositor_CumulativeStats* pStats, uint32_t nStatsSizeInBytes) override;
    void FadeToColor(float fSeconds, float fRed, float fGreen, float fBlue, float fAlpha, bool bBackground) override;
    vr::HmdColor_t GetCurrentFadeColor(bool bBackground) override;
    void FadeGrid(float fSeconds, bool bFadeIn) override;
    float GetCurrentGridAlpha() override;
    vr::EVRCompositorError SetSkyboxOverride(const vr::Texture_t* pTextures, uint32_t unTextureCount) override;
    void ClearSkyboxOverride() override;
    void CompositorBringToFront() override;
    void CompositorGoToBack() override;
    void CompositorQuit() override;
    bool IsFullscreen() override;
    uint32_t GetCurrentSceneFocusProcess() override;
    uint32_t GetLastFrameRenderer() override;
    bool CanRenderScene() override;
    void ShowMirrorWindow() override;
    void HideMirrorWindow() override;
    bool IsMirrorWindowVisible() override;
    void CompositorDumpImages() override;
    bool ShouldAppRenderWithLowResources() override;
    void ForceInterleavedReprojectionOn(bool bOverride) override;
    void ForceReconnectProcess() override;
    void SuspendRendering(bool bSuspend) override;
    vr::EVRCompositorError GetMirrorTextureD3D11(vr::EVREye eEye, void* pD3D11DeviceOrResource,
                                                 void** ppD3D11ShaderResourceView) override;
    void ReleaseMirrorTextureD3D11(void* pD3D11ShaderResourceView) override;
    vr::EVRCompositorError GetMirrorTextureGL(vr::EVREye eEye, vr::glUInt_t* pglTextureId,
                                              vr::glSharedTextureHandle_t* pglSharedTextureHandle) override;
    bool ReleaseSharedGLTexture(vr::glUInt_t glTextureId, vr::glSharedTextureHandle_t glSharedTextureHandle) override;
    void LockGLSharedTextureForAccess(vr::glSharedTextureHandle_t glSharedTextureHandle) override;
    void UnlockGLSharedTextureForAccess(vr::glSharedTextureHandle_t glSharedTextureHandle) override;
    uint32_t GetVulkanInstanceExtensionsRequired(char* pchValue, uint32_t unBufferSize) override;
    uint32_t GetVulkanDeviceExtensionsRequired(VkPhysicalDevice_T* pPhysicalDevice, char* pchValue,
                                               uint32_t unBufferSize) override;
    void SetExplicitTimingMode(vr::EVRCompositorTimingMode eTimingMode) override;
    vr::EVRCompositorError SubmitExplicitTimingData() override;

private:
    bool WantsPng(uint64_t frame) const;

    SimRuntime& runtime_;
    // Touched only by the thread that renders (the one that calls Submit and fades).
    vr::HmdColor_t fade_color_[2]{};
    float grid_alpha_ = 0.0f;
    bool mirror_visible_ = false;
    bool any_submission_ = false;
};

}  // namespace kesta::vrsim
