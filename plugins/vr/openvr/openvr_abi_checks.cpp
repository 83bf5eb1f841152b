// Compile-time checks of the declared layouts against the official binary interface (Linux, 64-bit).
// A mismatch here would corrupt memory silently at run time, so the build refuses it.
#include <cstddef>

#include "plugins/vr/openvr/openvr.h"

namespace vr {

static_assert(sizeof(HmdMatrix34_t) == 48);
static_assert(sizeof(HmdMatrix44_t) == 64);
static_assert(sizeof(HmdVector3_t) == 12);
static_assert(sizeof(HmdColor_t) == 16);
static_assert(sizeof(HmdQuaternion_t) == 32);

static_assert(sizeof(Texture_t) == 16);
static_assert(offsetof(Texture_t, handle) == 0);
static_assert(offsetof(Texture_t, eType) == 8);
static_assert(offsetof(Texture_t, eColorSpace) == 12);

static_assert(sizeof(VRTextureBounds_t) == 16);

static_assert(offsetof(TrackedDevicePose_t, vVelocity) == 48);
static_assert(offsetof(TrackedDevicePose_t, vAngularVelocity) == 60);
static_assert(offsetof(TrackedDevicePose_t, eTrackingResult) == 72);
static_assert(offsetof(TrackedDevicePose_t, bPoseIsValid) == 76);
static_assert(offsetof(TrackedDevicePose_t, bDeviceIsConnected) == 77);
static_assert(sizeof(TrackedDevicePose_t) == 80);

// Packed to 4 bytes on Linux: 4 + 8 + 8 + 5 x 8, not the 64 bytes of Windows.
static_assert(sizeof(VRControllerState_t) == 60);
static_assert(offsetof(VRControllerState_t, ulButtonPressed) == 4);
static_assert(offsetof(VRControllerState_t, ulButtonTouched) == 12);
static_assert(offsetof(VRControllerState_t, rAxis) == 20);
static_assert(sizeof(VRControllerAxis_t) == 8);

// The event's data follows three 4-byte fields directly under 4-byte packing.
static_assert(offsetof(VREvent_t, data) == 12);
static_assert(alignof(VREvent_t) == 4);

static_assert(sizeof(VREvent_t) == 12 + sizeof(VREvent_Data_t));

static_assert(sizeof(HiddenAreaMesh_t) == 16);
static_assert(offsetof(Compositor_FrameTiming, m_flSystemTimeInSeconds) == 24);
static_assert(offsetof(Compositor_FrameTiming, m_HmdPose) == 96);
static_assert(sizeof(Compositor_FrameTiming) == 176);
static_assert(sizeof(Compositor_CumulativeStats) == 15 * 4);

// The render model mesh structs are packed to 4 bytes on Linux: pointers sit at 4-byte offsets.
static_assert(sizeof(RenderModel_Vertex_t) == 32);
static_assert(offsetof(RenderModel_Vertex_t, vNormal) == 12);
static_assert(offsetof(RenderModel_Vertex_t, rfTextureCoord) == 24);
static_assert(sizeof(RenderModel_TextureMap_t) == 12);
static_assert(offsetof(RenderModel_TextureMap_t, unHeight) == 2);
static_assert(offsetof(RenderModel_TextureMap_t, rubTextureMapData) == 4);
static_assert(sizeof(RenderModel_t) == 28);
static_assert(offsetof(RenderModel_t, unVertexCount) == 8);
static_assert(offsetof(RenderModel_t, rIndexData) == 12);
static_assert(offsetof(RenderModel_t, unTriangleCount) == 20);
static_assert(offsetof(RenderModel_t, diffuseTextureId) == 24);
static_assert(sizeof(RenderModel_ControllerMode_State_t) == 1);
static_assert(offsetof(RenderModel_ComponentState_t, mTrackingToComponentLocal) == 48);
static_assert(offsetof(RenderModel_ComponentState_t, uProperties) == 96);
static_assert(sizeof(RenderModel_ComponentState_t) == 100);

// Enumerations travel as 32-bit integers through the interfaces.
static_assert(sizeof(EVRInitError) == 4);
static_assert(sizeof(ETrackedDeviceProperty) == 4);
static_assert(sizeof(EDeviceActivityLevel) == 4);
static_assert(sizeof(EVRRenderModelError) == 4);
static_assert(sizeof(TextureID_t) == 4);

static_assert(k_unMaxTrackedDeviceCount == 64);
static_assert(k_unControllerStateAxisCount == 5);

}  // namespace vr
