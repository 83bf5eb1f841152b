#pragma once

#include <cstdint>

#include "plugins/vr/openvr/openvr.h"
#include "plugins/vr/simulator/sim_config.h"

namespace kesta::vrsim {

// A rigid pose in OpenVR's tracking space: right-handed, metres, +Y up, the head looking down -Z at
// yaw 0. Yaw turns about +Y (positive turns left), pitch about the head's +X (positive looks up).
struct Pose {
    Vec3 position;
    double yaw_degrees = 0.0;
    double pitch_degrees = 0.0;
};

// Where the scripted head is on a frame.
Pose HeadPoseAt(const HeadPathConfig& path, uint64_t frame);

// Device-to-tracking transform of a pose, rotation = yaw then pitch, row by row.
vr::HmdMatrix34_t ToMatrix(const Pose& pose);

vr::HmdMatrix34_t Multiply(const vr::HmdMatrix34_t& a, const vr::HmdMatrix34_t& b);

}  // namespace kesta::vrsim
