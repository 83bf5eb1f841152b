#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "plugins/vr/openvr/openvr.h"

namespace kesta::vrsim {

// A closed range of frame numbers. Frame N is the one that the N-th WaitGetPoses starts; frame 0 is the
// time before the first WaitGetPoses.
struct FrameRange {
    uint64_t first = 0;
    uint64_t last = UINT64_MAX;

    bool Contains(uint64_t frame) const { return frame >= first && frame <= last; }
};

bool AnyContains(const std::vector<FrameRange>& ranges, uint64_t frame);

struct Vec3 {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

struct HeadKeyframe {
    uint64_t frame = 0;
    Vec3 position;
    double yaw_degrees = 0.0;
    double pitch_degrees = 0.0;
};

enum class HeadPathKind { kStatic, kOrbit, kNod, kKeyframes };

struct HeadPathConfig {
    HeadPathKind kind = HeadPathKind::kStatic;
    Vec3 position{0.0, 1.7, 0.0};  // static and nod: the head's place; orbit: the centre it looks at
    double yaw_degrees = 0.0;
    double pitch_degrees = 0.0;
    double radius = 1.0;              // orbit
    double amplitude_degrees = 20.0;  // nod
    double period_frames = 360.0;     // orbit and nod: frames per full cycle
    std::vector<HeadKeyframe> keyframes;
};

// Half angles of one eye's field of view, from the eye's forward axis.
struct EyeFov {
    double left_degrees = 50.0;
    double right_degrees = 50.0;
    double up_degrees = 50.0;
    double down_degrees = 50.0;
};

struct ButtonScript {
    uint32_t button = 0;  // bit number, as EVRButtonId
    bool touch_only = false;
    FrameRange frames;
};

struct AxisScript {
    uint32_t axis = 0;  // 0 to 4
    float x = 0.0f;
    float y = 0.0f;
    FrameRange frames;
};

struct DeviceConfig {
    vr::ETrackedDeviceClass device_class = vr::TrackedDeviceClass_Controller;
    vr::ETrackedControllerRole role = vr::TrackedControllerRole_Invalid;
    std::string serial;
    std::string model;
    std::string render_model;  // empty: the default model of the class
    Vec3 position;
    std::vector<FrameRange> connected{FrameRange{}};  // default: always connected
    std::vector<FrameRange> invalid_pose;
    std::vector<ButtonScript> buttons;
    std::vector<AxisScript> axes;
};

struct CaptureConfig {
    bool readback = false;             // read every submitted texture back
    std::string png_folder;            // where chosen frames are written
    std::vector<uint64_t> png_frames;  // frames written as PNG files, per eye
};

struct SimConfig {
    bool hmd_present = true;
    double refresh_rate = 90.0;
    bool paced = true;
    uint32_t render_width = 1512;
    uint32_t render_height = 1680;
    double ipd_meters = 0.063;
    EyeFov fov[2];
    std::string tracking_system_name = "norvane_vrsim";
    std::string hmd_serial = "VRSIM-HMD-0001";
    std::string hmd_model = "Norvane Simulated Headset";
    std::string hmd_render_model;  // empty: the default headset model
    std::vector<FrameRange> hmd_connected{FrameRange{}};
    std::vector<FrameRange> hmd_invalid_pose;
    HeadPathConfig head;
    std::vector<DeviceConfig> devices;  // tracked device indices 1, 2, ...
    CaptureConfig capture;
    uint32_t render_model_loading_calls = 2;  // VRRenderModelError_Loading answers per model and texture
    uint32_t log_limit = 4096;                // submissions and haptic pulses kept for inspection
};

// Parses the runtime's JSON configuration over the defaults. False with a message naming the bad
// member when the text is not valid.
bool ParseSimConfig(std::string_view json, SimConfig& config, std::string& error);

// The configuration file: $NORVANE_VRSIM_CONFIG, else vrsim.json in the OpenVR config folder when it
// exists. Empty when there is none, so the defaults apply.
std::string FindSimConfigFile();

// Loads the file that FindSimConfigFile names, or keeps the defaults. False with a message when a named
// file cannot be read or is invalid.
bool LoadSimConfig(SimConfig& config, std::string& error);

}  // namespace kesta::vrsim
