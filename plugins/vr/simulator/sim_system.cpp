#include "plugins/vr/simulator/sim_system.h"

#include <chrono>
#include <cmath>
#include <cstring>
#include <numbers>
#include <string_view>

#include "plugins/vr/simulator/head_path.h"
#include "plugins/vr/simulator/openvr_enum_names.h"

namespace kesta::vrsim {

namespace {

double Tangent(double degrees) { return std::tan(degrees * std::numbers::pi / 180.0); }

vr::HmdMatrix34_t Identity34()
{
    vr::HmdMatrix34_t m{};
    m.m[0][0] = m.m[1][1] = m.m[2][2] = 1.0f;
    return m;
}

bool ValidEye(vr::EVREye eye) { return eye == vr::Eye_Left || eye == vr::Eye_Right; }

// The value type of a property, from the suffix of its official name; empty for an unknown property.
std::string_view PropertyType(vr::ETrackedDeviceProperty prop)
{
    const char* name = NameOf(prop);
    if (name == nullptr)
        return {};
    std::string_view text(name);
    const size_t underscore = text.rfind('_');
    return underscore == std::string_view::npos ? std::string_view{} : text.substr(underscore + 1);
}

void SetError(vr::ETrackedPropertyError* error, vr::ETrackedPropertyError value)
{
    if (error != nullptr)
        *error = value;
}

}  // namespace

void SimSystem::GetRecommendedRenderTargetSize(uint32_t* pnWidth, uint32_t* pnHeight)
{
    if (pnWidth != nullptr)
        *pnWidth = runtime_.config().render_width;
    if (pnHeight != nullptr)
        *pnHeight = runtime_.config().render_height;
}

// Off-axis projection of the eye's field of view, depth mapped to [0, 1] as the official runtime does.
vr::HmdMatrix44_t SimSystem::GetProjectionMatrix(vr::EVREye eEye, float fNearZ, float fFarZ)
{
    float left = 0, right = 0, top = 0, bottom = 0;
    GetProjectionRaw(eEye, &left, &right, &top, &bottom);
    const float idx = 1.0f / (right - left);
    const float idy = 1.0f / (bottom - top);
    const float idz = 1.0f / (fFarZ - fNearZ);
    vr::HmdMatrix44_t m{};
    m.m[0][0] = 2.0f * idx;
    m.m[0][2] = (right + left) * idx;
    m.m[1][1] = 2.0f * idy;
    m.m[1][2] = (top + bottom) * idy;
    m.m[2][2] = -fFarZ * idz;
    m.m[2][3] = -fFarZ * fNearZ * idz;
    m.m[3][2] = -1.0f;
    return m;
}

// Tangents of the half angles; left and top are negative, as the official runtime reports them.
void SimSystem::GetProjectionRaw(vr::EVREye eEye, float* pfLeft, float* pfRight, float* pfTop, float* pfBottom)
{
    const EyeFov& fov = runtime_.config().fov[ValidEye(eEye) ? eEye : vr::Eye_Left];
    if (pfLeft != nullptr)
        *pfLeft = static_cast<float>(-Tangent(fov.left_degrees));
    if (pfRight != nullptr)
        *pfRight = static_cast<float>(Tangent(fov.right_degrees));
    if (pfTop != nullptr)
        *pfTop = static_cast<float>(-Tangent(fov.up_degrees));
    if (pfBottom != nullptr)
        *pfBottom = static_cast<float>(Tangent(fov.down_degrees));
}

// The simulated display has no lens: every colour lands where it was drawn.
bool SimSystem::ComputeDistortion(vr::EVREye eEye, float fU, float fV,
                                  vr::DistortionCoordinates_t* pDistortionCoordinates)
{
    if (!ValidEye(eEye) || pDistortionCoordinates == nullptr)
        return false;
    for (float* channel :
         {pDistortionCoordinates->rfRed, pDistortionCoordinates->rfGreen, pDistortionCoordinates->rfBlue}) {
        channel[0] = fU;
        channel[1] = fV;
    }
    return true;
}

vr::HmdMatrix34_t SimSystem::GetEyeToHeadTransform(vr::EVREye eEye)
{
    vr::HmdMatrix34_t m = Identity34();
    const float half_ipd = static_cast<float>(runtime_.config().ipd_meters / 2.0);
    m.m[0][3] = eEye == vr::Eye_Right ? half_ipd : -half_ipd;
    return m;
}

bool SimSystem::GetTimeSinceLastVsync(float* pfSecondsSinceLastVsync, uint64_t* pulFrameCounter)
{
    if (pfSecondsSinceLastVsync != nullptr) {
        const auto since = FramePacer::Clock::now() - runtime_.pacer().last_vsync();
        *pfSecondsSinceLastVsync = std::chrono::duration<float>(since).count();
    }
    if (pulFrameCounter != nullptr)
        *pulFrameCounter = runtime_.frame();
    return true;
}

// No Direct3D on this platform.
int32_t SimSystem::GetD3D9AdapterIndex() { return -1; }

void SimSystem::GetDXGIOutputInfo(int32_t* pnAdapterIndex)
{
    if (pnAdapterIndex != nullptr)
        *pnAdapterIndex = -1;
}

// No Vulkan device to name: 0 means "any".
void SimSystem::GetOutputDevice(uint64_t* pnDevice, vr::ETextureType, VkInstance_T*)
{
    if (pnDevice != nullptr)
        *pnDevice = 0;
}

// There is no display at all, so none on the desktop.
bool SimSystem::IsDisplayOnDesktop() { return false; }
bool SimSystem::SetDisplayVisibility(bool) { return false; }

// Seated and standing universes share one origin here; the prediction time is ignored since the
// scripted poses are known exactly for the whole frame.
void SimSystem::GetDeviceToAbsoluteTrackingPose(vr::ETrackingUniverseOrigin, float,
                                                vr::TrackedDevicePose_t* pTrackedDevicePoseArray,
                                                uint32_t unTrackedDevicePoseArrayCount)
{
    if (pTrackedDevicePoseArray == nullptr)
        return;
    const uint64_t frame = runtime_.frame();
    for (uint32_t i = 0; i < unTrackedDevicePoseArrayCount; ++i)
        pTrackedDevicePoseArray[i] = runtime_.devices().PoseAt(i, frame);
}

void SimSystem::ResetSeatedZeroPose() {}
vr::HmdMatrix34_t SimSystem::GetSeatedZeroPoseToStandingAbsoluteTrackingPose() { return Identity34(); }
vr::HmdMatrix34_t SimSystem::GetRawZeroPoseToStandingAbsoluteTrackingPose() { return Identity34(); }

// Sorted by index: the simulation does not order devices by where they stand.
uint32_t SimSystem::GetSortedTrackedDeviceIndicesOfClass(vr::ETrackedDeviceClass eTrackedDeviceClass,
                                                         vr::TrackedDeviceIndex_t* punTrackedDeviceIndexArray,
                                                         uint32_t unTrackedDeviceIndexArrayCount,
                                                         vr::TrackedDeviceIndex_t)
{
    const DeviceTable& devices = runtime_.devices();
    const uint64_t frame = runtime_.frame();
    uint32_t found = 0;
    for (uint32_t i = 0; i < devices.Count(); ++i) {
        if (devices.ClassOf(i) != eTrackedDeviceClass || !devices.IsConnected(i, frame))
            continue;
        if (punTrackedDeviceIndexArray != nullptr && found < unTrackedDeviceIndexArrayCount)
            punTrackedDeviceIndexArray[found] = i;
        ++found;
    }
    return found;
}

vr::EDeviceActivityLevel SimSystem::GetTrackedDeviceActivityLevel(vr::TrackedDeviceIndex_t unDeviceId)
{
    return runtime_.devices().IsConnected(unDeviceId, runtime_.frame()) ? vr::k_EDeviceActivityLevel_UserInteraction
                                                                        : vr::k_EDeviceActivityLevel_Unknown;
}

void SimSystem::ApplyTransform(vr::TrackedDevicePose_t* pOutputPose, const vr::TrackedDevicePose_t* pTrackedDevicePose,
                               const vr::HmdMatrix34_t* pTransform)
{
    if (pOutputPose == nullptr || pTrackedDevicePose == nullptr || pTransform == nullptr)
        return;
    vr::TrackedDevicePose_t result = *pTrackedDevicePose;
    result.mDeviceToAbsoluteTracking = Multiply(*pTransform, pTrackedDevicePose->mDeviceToAbsoluteTracking);
    *pOutputPose = result;
}

vr::TrackedDeviceIndex_t SimSystem::GetTrackedDeviceIndexForControllerRole(vr::ETrackedControllerRole unDeviceType)
{
    const DeviceTable& devices = runtime_.devices();
    const uint64_t frame = runtime_.frame();
    for (uint32_t i = 1; i < devices.Count(); ++i) {
        if (unDeviceType != vr::TrackedControllerRole_Invalid && devices.RoleOf(i) == unDeviceType &&
            devices.IsConnected(i, frame))
            return i;
    }
    return vr::k_unTrackedDeviceIndexInvalid;
}

vr::ETrackedControllerRole SimSystem::GetControllerRoleForTrackedDeviceIndex(vr::TrackedDeviceIndex_t unDeviceIndex)
{
    return runtime_.devices().RoleOf(unDeviceIndex);
}

vr::ETrackedDeviceClass SimSystem::GetTrackedDeviceClass(vr::TrackedDeviceIndex_t unDeviceIndex)
{
    return runtime_.devices().ClassOf(unDeviceIndex);
}

bool SimSystem::IsTrackedDeviceConnected(vr::TrackedDeviceIndex_t unDeviceIndex)
{
    return runtime_.devices().IsConnected(unDeviceIndex, runtime_.frame());
}

bool SimSystem::CheckDevice(vr::TrackedDeviceIndex_t index, vr::ETrackedPropertyError* error) const
{
    const bool exists = runtime_.devices().Exists(index);
    SetError(error, exists ? vr::TrackedProp_Success : vr::TrackedProp_InvalidDevice);
    return exists;
}

namespace {

// Sorts out the errors that do not depend on the value: an unknown property, or one of another type.
bool CheckType(vr::ETrackedDeviceProperty prop, std::string_view type, vr::ETrackedPropertyError* error)
{
    const std::string_view actual = PropertyType(prop);
    if (actual.empty()) {
        SetError(error, vr::TrackedProp_UnknownProperty);
        return false;
    }
    if (actual != type) {
        SetError(error, vr::TrackedProp_WrongDataType);
        return false;
    }
    return true;
}

}  // namespace

// No boolean property is provided.
bool SimSystem::GetBoolTrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex, vr::ETrackedDeviceProperty prop,
                                             vr::ETrackedPropertyError* pError)
{
    if (CheckDevice(unDeviceIndex, pError) && CheckType(prop, "Bool", pError))
        SetError(pError, vr::TrackedProp_ValueNotProvidedByDevice);
    return false;
}

float SimSystem::GetFloatTrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex, vr::ETrackedDeviceProperty prop,
                                               vr::ETrackedPropertyError* pError)
{
    if (!CheckDevice(unDeviceIndex, pError) || !CheckType(prop, "Float", pError))
        return 0.0f;
    if (unDeviceIndex == vr::k_unTrackedDeviceIndex_Hmd && prop == vr::Prop_DisplayFrequency_Float)
        return static_cast<float>(runtime_.config().refresh_rate);
    if (unDeviceIndex == vr::k_unTrackedDeviceIndex_Hmd && prop == vr::Prop_UserIpdMeters_Float)
        return static_cast<float>(runtime_.config().ipd_meters);
    SetError(pError, vr::TrackedProp_ValueNotProvidedByDevice);
    return 0.0f;
}

int32_t SimSystem::GetInt32TrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex,
                                                 vr::ETrackedDeviceProperty prop, vr::ETrackedPropertyError* pError)
{
    if (!CheckDevice(unDeviceIndex, pError) || !CheckType(prop, "Int32", pError))
        return 0;
    if (prop == vr::Prop_DeviceClass_Int32)
        return runtime_.devices().ClassOf(unDeviceIndex);
    if (prop == vr::Prop_ControllerRoleHint_Int32 && unDeviceIndex != vr::k_unTrackedDeviceIndex_Hmd)
        return runtime_.devices().RoleOf(unDeviceIndex);
    SetError(pError, vr::TrackedProp_ValueNotProvidedByDevice);
    return 0;
}

uint64_t SimSystem::GetUint64TrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex,
                                                   vr::ETrackedDeviceProperty prop, vr::ETrackedPropertyError* pError)
{
    if (!CheckDevice(unDeviceIndex, pError) || !CheckType(prop, "Uint64", pError))
        return 0;
    if (prop == vr::Prop_SupportedButtons_Uint64 && unDeviceIndex != vr::k_unTrackedDeviceIndex_Hmd)
        return runtime_.devices().SupportedButtons(unDeviceIndex);
    SetError(pError, vr::TrackedProp_ValueNotProvidedByDevice);
    return 0;
}

// No matrix property is provided.
vr::HmdMatrix34_t SimSystem::GetMatrix34TrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex,
                                                              vr::ETrackedDeviceProperty prop,
                                                              vr::ETrackedPropertyError* pError)
{
    if (CheckDevice(unDeviceIndex, pError) && CheckType(prop, "Matrix34", pError))
        SetError(pError, vr::TrackedProp_ValueNotProvidedByDevice);
    return vr::HmdMatrix34_t{};
}

// The official two-call protocol: the result is the size needed including the terminating zero; a
// buffer that is missing or too small gets TrackedProp_BufferTooSmall and is left untouched.
uint32_t SimSystem::GetStringTrackedDeviceProperty(vr::TrackedDeviceIndex_t unDeviceIndex,
                                                   vr::ETrackedDeviceProperty prop, char* pchValue,
                                                   uint32_t unBufferSize, vr::ETrackedPropertyError* pError)
{
    if (pchValue != nullptr && unBufferSize > 0)
        pchValue[0] = '\0';
    if (!CheckDevice(unDeviceIndex, pError) || !CheckType(prop, "String", pError))
        return 0;
    const DeviceTable& devices = runtime_.devices();
    std::string_view value;
    switch (prop) {
        case vr::Prop_TrackingSystemName_String:
            value = runtime_.config().tracking_system_name;
            break;
        case vr::Prop_SerialNumber_String:
            value = devices.SerialOf(unDeviceIndex);
            break;
        case vr::Prop_ModelNumber_String:
            value = devices.ModelOf(unDeviceIndex);
            break;
        case vr::Prop_ManufacturerName_String:
            value = "Norvane";
            break;
        case vr::Prop_RenderModelName_String:
            value = devices.RenderModelOf(unDeviceIndex);
            break;
        default:
            SetError(pError, vr::TrackedProp_ValueNotProvidedByDevice);
            return 0;
    }
    const uint32_t needed = static_cast<uint32_t>(value.size()) + 1;
    if (pchValue == nullptr || unBufferSize < needed) {
        SetError(pError, vr::TrackedProp_BufferTooSmall);
        return needed;
    }
    std::memcpy(pchValue, value.data(), value.size());
    pchValue[value.size()] = '\0';
    return needed;
}

const char* SimSystem::GetPropErrorNameFromEnum(vr::ETrackedPropertyError error)
{
    const char* name = NameOf(error);
    return name != nullptr ? name : "Unknown property error";
}

// Events tell of devices that connect or disconnect and of buttons that change, frame by frame. A size
// other than this platform's sizeof(VREvent_t) is refused, as the event's layout would not match.
bool SimSystem::PollNextEvent(vr::VREvent_t* pEvent, uint32_t uncbVREvent)
{
    if (pEvent == nullptr || uncbVREvent != sizeof(vr::VREvent_t))
        return false;
    return runtime_.PopEvent(*pEvent);
}

bool SimSystem::PollNextEventWithPose(vr::ETrackingUniverseOrigin, vr::VREvent_t* pEvent, uint32_t uncbVREvent,
                                      vr::TrackedDevicePose_t* pTrackedDevicePose)
{
    if (!PollNextEvent(pEvent, uncbVREvent))
        return false;
    if (pTrackedDevicePose != nullptr)
        *pTrackedDevicePose = runtime_.devices().PoseAt(pEvent->trackedDeviceIndex, runtime_.frame());
    return true;
}

const char* SimSystem::GetEventTypeNameFromEnum(vr::EVREventType eType)
{
    const char* name = NameOf(eType);
    return name != nullptr ? name : "Unknown VR Event";
}

// No hidden area: the whole render target is visible.
vr::HiddenAreaMesh_t SimSystem::GetHiddenAreaMesh(vr::EVREye, vr::EHiddenAreaMeshType)
{
    return vr::HiddenAreaMesh_t{nullptr, 0};
}

// Refuses a size other than this platform's sizeof(VRControllerState_t): a caller built with another
// packing would read the fields at the wrong offsets.
bool SimSystem::GetControllerState(vr::TrackedDeviceIndex_t unControllerDeviceIndex,
                                   vr::VRControllerState_t* pControllerState, uint32_t unControllerStateSize)
{
    if (pControllerState == nullptr || unControllerStateSize != sizeof(vr::VRControllerState_t))
        return false;
    const DeviceTable& devices = runtime_.devices();
    const uint64_t frame = runtime_.frame();
    // Headsets and base stations have no buttons or axes.
    const vr::ETrackedDeviceClass device_class = devices.ClassOf(unControllerDeviceIndex);
    if (device_class == vr::TrackedDeviceClass_HMD || device_class == vr::TrackedDeviceClass_TrackingReference ||
        !devices.IsConnected(unControllerDeviceIndex, frame)) {
        *pControllerState = vr::VRControllerState_t{};
        return false;
    }
    *pControllerState = devices.ControllerStateAt(unControllerDeviceIndex, frame);
    return true;
}

bool SimSystem::GetControllerStateWithPose(vr::ETrackingUniverseOrigin,
                                           vr::TrackedDeviceIndex_t unControllerDeviceIndex,
                                           vr::VRControllerState_t* pControllerState, uint32_t unControllerStateSize,
                                           vr::TrackedDevicePose_t* pTrackedDevicePose)
{
    const bool ok = GetControllerState(unControllerDeviceIndex, pControllerState, unControllerStateSize);
    if (ok && pTrackedDevicePose != nullptr)
        *pTrackedDevicePose = runtime_.devices().PoseAt(unControllerDeviceIndex, runtime_.frame());
    return ok;
}

// Recorded for inspection when the device is a connected controller or tracker; ignored otherwise.
void SimSystem::TriggerHapticPulse(vr::TrackedDeviceIndex_t unControllerDeviceIndex, uint32_t unAxisId,
                                   unsigned short usDurationMicroSec)
{
    const DeviceTable& devices = runtime_.devices();
    const uint64_t frame = runtime_.frame();
    const vr::ETrackedDeviceClass device_class = devices.ClassOf(unControllerDeviceIndex);
    if ((device_class != vr::TrackedDeviceClass_Controller && device_class != vr::TrackedDeviceClass_GenericTracker) ||
        !devices.IsConnected(unControllerDeviceIndex, frame))
        return;
    runtime_.RecordHapticPulse(VrSimHapticPulse{frame, unControllerDeviceIndex, unAxisId, usDurationMicroSec});
}

const char* SimSystem::GetButtonIdNameFromEnum(vr::EVRButtonId eButtonId)
{
    const char* name = NameOf(eButtonId);
    return name != nullptr ? name : "Unknown EVRButtonId enum";
}

const char* SimSystem::GetControllerAxisTypeNameFromEnum(vr::EVRControllerAxisType eAxisType)
{
    const char* name = NameOf(eAxisType);
    return name != nullptr ? name : "Unknown EVRControllerAxisType enum";
}

// Only one application ever runs against the simulation, so it always has the input focus.
bool SimSystem::CaptureInputFocus() { return true; }
void SimSystem::ReleaseInputFocus() {}
bool SimSystem::IsInputFocusCapturedByAnotherProcess() { return false; }

// No driver to talk to: the response is empty.
uint32_t SimSystem::DriverDebugRequest(vr::TrackedDeviceIndex_t, const char*, char* pchResponseBuffer,
                                       uint32_t unResponseBufferSize)
{
    if (pchResponseBuffer != nullptr && unResponseBufferSize > 0)
        pchResponseBuffer[0] = '\0';
    return 0;
}

// Simulated firmware never needs an update.
vr::EVRFirmwareError SimSystem::PerformFirmwareUpdate(vr::TrackedDeviceIndex_t) { return vr::VRFirmwareError_None; }

void SimSystem::AcknowledgeQuit_Exiting() {}
void SimSystem::AcknowledgeQuit_UserPrompt() {}

}  // namespace kesta::vrsim
