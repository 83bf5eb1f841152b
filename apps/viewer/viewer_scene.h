#pragma once
// What the viewer shows, until scenes of nodes exist: the demo geometry in world space and a marker
// at each tracked controller and tracker, drawn with the render system's immediate helpers into
// whatever view is current, so each eye sees it from its own place. A trigger press sends a haptic
// pulse to that controller.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "apps/viewer/demo_scene.h"

namespace kesta {

class InputSystem;
class InputDevice;
class RenderSystem;

class ViewerScene {
public:
    // The engine's button code of a controller's trigger (OpenVR's first analogue axis button).
    static constexpr int kTriggerButton = 1;
    // Devices that get a marker, in this order.
    static constexpr std::array<const char*, 4> kDeviceNames = {"VR Controller 0", "VR Controller 1", "VR Tracker 0",
                                                                "VR Tracker 1"};

    struct DeviceView {
        bool seen = false;  // the device has had a pose; before that its matrix is all zero
        Matrix4 pose;
        bool trigger_down = false;
    };

    ViewerScene();

    // Reads every device of kDeviceNames once, after a frame: poses for the markers, and trigger
    // presses (down now, up the frame before), each answered with a full-strength haptic pulse
    // that the next frame sends. Rebuilds the geometry the next draws use. Not during a draw.
    void UpdateDevices(InputSystem& input);

    // Draws the scene with the render system's current view; on the render worker, inside a frame.
    void Draw(RenderSystem& render_system);

    const std::array<DeviceView, kDeviceNames.size()>& Devices() const { return devices_; }
    std::uint64_t HapticPulsesRequested() const { return haptic_pulses_requested_; }
    const SceneGeometry& Geometry() const { return geometry_; }

private:
    void Rebuild();

    std::array<DeviceView, kDeviceNames.size()> devices_;
    std::uint64_t haptic_pulses_requested_ = 0;
    SceneGeometry still_;
    SceneGeometry geometry_;
    // The geometry as the immediate helpers take it: positions and colours apart.
    std::vector<Vector3> line_positions_;
    std::vector<Color> line_colors_;
    std::vector<Vector3> triangle_positions_;
    std::vector<Color> triangle_colors_;
};

}  // namespace kesta
