#include "apps/viewer/viewer_scene.h"

#include "engine/render_system/render_system.h"
#include "engine/renderer/renderer.h"
#include "platform/input/input_device.h"
#include "platform/input/input_system.h"

namespace kesta {

namespace {

// A marker colour per device slot; a pressed trigger lights the marker up.
constexpr std::array<Color, 4> kMarkerColors = {{
    {1.0f, 0.55f, 0.1f, 1.0f},
    {0.1f, 0.85f, 0.95f, 1.0f},
    {0.95f, 0.2f, 0.7f, 1.0f},
    {0.7f, 0.95f, 0.2f, 1.0f},
}};
constexpr Color kPressedColor{1.0f, 1.0f, 1.0f, 1.0f};

bool IsAllZero(const Matrix4& m)
{
    for (const float v : m.m) {
        if (v != 0.0f)
            return false;
    }
    return true;
}

void Split(const std::vector<SceneVertex>& vertices, std::vector<Vector3>& positions, std::vector<Color>& colors)
{
    positions.clear();
    colors.clear();
    for (const SceneVertex& v : vertices) {
        positions.push_back(v.position);
        colors.push_back(v.color);
    }
}

}  // namespace

ViewerScene::ViewerScene()
{
    AppendDemoScene(still_);
    Rebuild();
}

void ViewerScene::UpdateDevices(InputSystem& input)
{
    for (std::size_t i = 0; i < kDeviceNames.size(); ++i) {
        const std::shared_ptr<InputDevice> device = input.GetDevice(kDeviceNames[i]);
        DeviceView& view = devices_[i];
        if (!device)
            continue;
        const Matrix4 pose = device->GetMatrix(0);
        if (!IsAllZero(pose)) {
            view.seen = true;
            view.pose = pose;
        }
        view.trigger_down = device->IsButtonDown(kTriggerButton);
        if (view.trigger_down && !device->WasButtonDown(kTriggerButton) && device->SetEffect(0, 1.0f))
            ++haptic_pulses_requested_;
    }
    Rebuild();
}

void ViewerScene::Rebuild()
{
    geometry_ = still_;
    for (std::size_t i = 0; i < devices_.size(); ++i) {
        if (devices_[i].seen)
            AppendDeviceMarker(geometry_, devices_[i].pose,
                               devices_[i].trigger_down ? kPressedColor : kMarkerColors[i]);
    }
    Split(geometry_.lines, line_positions_, line_colors_);
    Split(geometry_.triangles, triangle_positions_, triangle_colors_);
}

void ViewerScene::Draw(RenderSystem& render_system)
{
    constexpr Color kWhite{1.0f, 1.0f, 1.0f, 1.0f};
    // World-space geometry: no model transform. Hidden faces fall to the depth test.
    Renderer& renderer = *render_system.GetRenderer();
    renderer.SetModelMatrix(Matrix4::Identity());
    renderer.SetFaceCulling(false);
    renderer.SetDepthTest(true);
    renderer.SetDepthWrite(true);
    ImmediateVertices triangles;
    triangles.positions = triangle_positions_.data();
    triangles.colors = triangle_colors_.data();
    triangles.vertex_count = static_cast<std::uint32_t>(triangle_positions_.size());
    render_system.DrawTriangle(triangles, kWhite);
    ImmediateVertices lines;
    lines.positions = line_positions_.data();
    lines.colors = line_colors_.data();
    lines.vertex_count = static_cast<std::uint32_t>(line_positions_.size());
    render_system.DrawLine(lines, kWhite);
}

}  // namespace kesta
