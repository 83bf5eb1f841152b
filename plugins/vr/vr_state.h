#pragma once
// The VR state of the whole module: one session per process, filled by the frame renderer once per
// frame and read by the tracked devices, which have no frame renderer of their own. Plain memory
// without a lock: the devices may read while a frame writes, and a torn read (one mixed pose or
// state) is accepted.

#include <array>
#include <cstdint>
#include <memory>

#include "foundation/math/matrix4.h"
#include "plugins/vr/openvr/openvr.h"

namespace kesta {

class Texture;
class RenderTarget;

// The all-zero matrix: a slot that has never had a pose, or a view without a previous frame.
inline constexpr Matrix4 kZeroMatrix4{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}};

struct VRState {
    // Indexed by device slot (0, 1 controllers, 2, 3 trackers), not by the runtime's device index;
    // sized like the runtime's device table although only four slots are used.
    static constexpr std::size_t kSlotCount = vr::k_unMaxTrackedDeviceCount;

    std::array<Matrix4, kSlotCount> device_matrix;
    std::array<vr::VRControllerState_t, kSlotCount> device_state{};
    std::array<vr::VRControllerState_t, kSlotCount> device_prev_state{};
    // Pending pulse length in microseconds, sent and cleared by the next frame.
    std::array<std::uint16_t, kSlotCount> haptic_pulse{};
    Matrix4 head_matrix = Matrix4::Identity();

    // Null while there is no session.
    vr::IVRSystem* vr_system = nullptr;
    std::uint32_t render_width = 0;
    std::uint32_t render_height = 0;
    // Made and freed with the eye textures and used by nothing.
    std::shared_ptr<Texture> dummy_texture;
    std::shared_ptr<Texture> left_texture;
    std::shared_ptr<Texture> right_texture;
    std::shared_ptr<RenderTarget> left_target;
    std::shared_ptr<RenderTarget> right_target;

    VRState() { device_matrix.fill(kZeroMatrix4); }
};

extern VRState g_vr_state;

}  // namespace kesta
