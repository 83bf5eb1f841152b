#pragma once

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/simulator/sim_runtime.h"

namespace kesta::vrsim {

// IVRSystem_017 of the simulated runtime. Display, device and input queries answer from the
// configuration; what a simulation has no use for (distortion meshes, firmware, input focus)
// gives the official empty answer, as noted at each method.
class SimSystem final : public vr::IVRSystem {
public:
    explicit SimSystem(SimRuntime& runtime) : runtime_(runtime) {}

    void GetRecommendedRenderTargetSize(uint32_t* pnWidth, uint32_t* pnHeight) override;
    vr::HmdMatrix44_t GetProjectionMatrix(vr::EVREye eEye, float fNearZ, float fFarZ) override;
    void GetProjectionRaw(vr::EVREye eEye, float* pfLeft, float* pfRight, float* pfTop, float* pfBottom) override;
    bool ComputeDistortion(vr::EVREye eEye, float fU, float fV,
                           vr::DistortionCoordinates_t* pDistortionCoordinates) override;
    vr::HmdMatrix34_t GetEyeToHeadTransform(vr::EVREye eEye) override;
    bool GetTimeSinceLastVsync(float* pfSecondsSinceLastVsync, uint64_t* pulFrameCounter) override;
    int32_t GetD3D9AdapterIndex() override;
    void GetDXGIOutputInfo(int32_t* pnAdapterIndex) override;
    void GetOutputDevice(uint64_t* pnDevice, vr::ETextureType textureType, VkInstance_T* pInstance) override;
    bool IsDisplayOnDesktop() override;
    bool SetDisplayVisibility(bool bIsVisibleOnDesktop) override;
    void GetDeviceToAbsoluteTrackingPose(vr::ETrackingUniverseOrigin eOrigin, float fPredictedSecondsToPhotonsFromNow,
                                         vr::TrackedDevicePose_t* pTrackedDevicePoseArray,
                                         uint32_t unTrackedDevicePoseArrayCount) override;
    void ResetSeatedZeroPose() override;
    vr::HmdMatrix34_t GetSeatedZeroPoseToStandingAbsoluteTrackingPose() override;
    vr::HmdMatrix34_t GetRawZeroPoseToStandingAbsoluteTrackingPose() override;
    uint32_t GetSortedTrackedDeviceIndicesOfClass(vr::ETrackedDeviceClass eTrackedDeviceClass,
                                                  vr::TrackedDeviceIndex_t* punTrackedDeviceIndexArray,
                                                  uint32_t unTrackedDeviceIndexArrayCount,
                                                  vr::TrackedDeviceIndex_t unRelativeToTrackedDeviceIndex) override;
    vr::EDeviceActivityLevel GetTrackedDeviceActivityLevel(vr::TrackedDeviceIndex_t unDeviceId) override;
    void ApplyTransform(vr::TrackedDevicePose_t* pOutputPose, const vr::TrackedDevicePose_t* pTrackedDevicePose,
                        const vr::HmdMatrix34_t* pTransform) override;
    vr::TrackedDeviceIndex_t GetTrackedDeviceIndexForControllerRole(vr::ETrackedControllerRole unDeviceType) override;
    vr::ETrackedControllerRole GetControllerRoleForTrackedDeviceIndex(vr::TrackedDeviceIndex_t unDeviceIndex) override;
    vr::ETrackedDeviceClass GetTrackedDeviceClass(vr::TrackedDeviceIndex_t unDeviceIndex) override;
    bool IsTrackedDeviceConnected(vr::TrackedDeviceIndex_t unDeviceIndex) override;
    bool GetBoolTrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex, vr::ETrackedDeviceProperty prop,
                                      vr::ETrackedPropertyError* pError) override;
    float GetFloatTrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex, vr::ETrackedDeviceProperty prop,
                                        vr::ETrackedPropertyError* pError) override;
    int32_t GetInt32TrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex, vr::ETrackedDeviceProperty prop,
                                          vr::ETrackedPropertyError* pError) override;
    uint64_t GetUint64TrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex, vr::ETrackedDeviceProperty prop,
                                            vr::ETrackedPropertyError* pError) override;
    vr::HmdMatrix34_t GetMatrix34TrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex,
                                                       vr::ETrackedDeviceProperty prop,
                                                       vr::ETrackedPropertyError* pError) override;
    uint32_t GetStringTrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex, vr::ETrackedDeviceProperty prop,
                                            char* pchValue, uint32_t unBufferSize,
                                            vr::ETrackedPropertyError* pError) override;
    const char* GetPropErrorNameFromEnum(vr::ETrackedPropertyError error) override;
    bool PollNextEvent(vr::VREvent_t* pEvent, uint32_t uncbVREvent) override;
    bool PollNextEventWithPose(vr::ETrackingUniverseOrigin eOrigin, vr::VREvent_t* pEvent, uint32_t uncbVREvent,
                               vr::TrackedDevicePose_t* pTrackedDevicePose) override;
    const char* GetEventTypeNameFromEnum(vr::EVREventType eType) override;
    vr::HiddenAreaMesh_t GetHiddenAreaMesh(vr::EVREye eEye, vr::EHiddenAreaMeshType type) override;
    bool GetControllerState(vr::TrackedDeviceIndex_t unControllerDeviceIndex, vr::VRControllerState_t* pControllerState,
                            uint32_t unControllerStateSize) override;
    bool GetControllerStateWithPose(vr::ETrackingUniverseOrigin eOrigin,
                                    vr::TrackedDeviceIndex_t unControllerDeviceIndex,
                                    vr::VRControllerState_t* pControllerState, uint32_t unControllerStateSize,
                                    vr::TrackedDevicePose_t* pTrackedDevicePose) override;
    void TriggerHapticPulse(vr::TrackedDeviceIndex_t unControllerDeviceIndex, uint32_t unAxisId,
                            unsigned short usDurationMicroSec) override;
    const char* GetButtonIdNameFromEnum(vr::EVRButtonId eButtonId) override;
    const char* GetControllerAxisTypeNameFromEnum(vr::EVRControllerAxisType eAxisType) override;
    bool CaptureInputFocus() override;
    void ReleaseInputFocus() override;
    bool IsInputFocusCapturedByAnotherProcess() override;
    uint32_t DriverDebugRequest(vr::TrackedDeviceIndex_t unDeviceIndex, const char* pchRequest, char* pchResponseBuffer,
                                uint32_t unResponseBufferSize) override;
    vr::EVRFirmwareError PerformFirmwareUpdate(vr::TrackedDeviceIndex_t unDeviceIndex) override;
    void AcknowledgeQuit_Exiting() override;
    void AcknowledgeQuit_UserPrompt() override;

private:
    // Sets *error (when given) and tells whether the device exists.
    bool CheckDevice(vr::TrackedDeviceIndex_t index, vr::ETrackedPropertyError* error) const;

    SimRuntime& runtime_;
};

}  // namespace kesta::vrsim
