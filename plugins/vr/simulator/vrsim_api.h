#pragma once

// Introspection functions that the simulated runtime exports for tests and tools. They are reached with
// dlsym on the loaded vrclient.so; each returns an empty answer while the runtime is not initialized.
// Call them between VR_Init and VR_Shutdown, not concurrently with either.
#include <stdint.h>

extern "C" {

struct VrSimSubmission {
    uint64_t frame;         // frame the submission belongs to (see VrSimFrameCount)
    uint32_t eye;           // vr::EVREye
    uint32_t texture_type;  // vr::ETextureType
    uint32_t color_space;   // vr::EColorSpace
    uint32_t submit_flags;  // vr::EVRSubmitFlags
    uint32_t texture_name;  // the GL texture name
    uint32_t width;         // level 0 size of the texture, 0 when no GL context was current
    uint32_t height;
    int32_t has_bounds;  // 1 when bounds were given
    float bounds[4];     // uMin, vMin, uMax, vMax
};

struct VrSimHapticPulse {
    uint64_t frame;
    uint32_t device_index;
    uint32_t axis;
    uint32_t duration_microseconds;
};

// Frames started so far: the number of WaitGetPoses calls since VR_Init.
uint64_t VrSimFrameCount(void);

// Submissions kept: those since VR_Init or the last VrSimClearLogs, the newest log_limit of them.
uint64_t VrSimSubmissionCount(void);
// The index-th of the kept submissions, oldest first. 0 when there is no such entry.
int VrSimGetSubmission(uint64_t index, struct VrSimSubmission* out);

uint64_t VrSimHapticPulseCount(void);
int VrSimGetHapticPulse(uint64_t index, struct VrSimHapticPulse* out);

// Copies the RGBA8 pixels last read back for an eye (rows bottom to top, as OpenGL stores them) when
// `capacity` is large enough. Returns the size in bytes of that picture, 0 when there is none.
uint64_t VrSimCopyLastPixels(uint32_t eye, void* buffer, uint64_t capacity, uint32_t* width, uint32_t* height);

// Render models and textures that IVRRenderModels handed out and that were not freed yet.
uint64_t VrSimRenderModelsOutstanding(void);

// Forgets the recorded submissions, pulses and pixels; the frame counter keeps running.
void VrSimClearLogs(void);

}  // extern "C"
