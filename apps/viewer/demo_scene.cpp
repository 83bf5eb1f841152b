#include "apps/viewer/demo_scene.h"

#include <array>

namespace kesta {

namespace {

Color Shade(const Color& color, float factor)
{
    return {color.r * factor, color.g * factor, color.b * factor, color.a};
}

void AppendLine(SceneGeometry& geometry, const Vector3& from, const Vector3& to, const Color& color)
{
    geometry.lines.push_back({from, color});
    geometry.lines.push_back({to, color});
}

}  // namespace

void AppendCube(SceneGeometry& geometry, const Matrix4& transform, float size, const Color& color)
{
    const float h = size * 0.5f;
    // Corners: bit 0 is +x, bit 1 is +y, bit 2 is +z.
    std::array<Vector3, 8> corners;
    for (int i = 0; i < 8; ++i)
        corners[i] = transform.TransformPoint({(i & 1) ? h : -h, (i & 2) ? h : -h, (i & 4) ? h : -h});
    // Each face as four corners, clockwise seen from outside in a left-handed space, with the shade
    // that light from above and in front would give it.
    struct Face {
        int a, b, c, d;
        float shade;
    };
    static constexpr std::array<Face, 6> kFaces = {{
        {0, 2, 3, 1, 0.80f},  // -z, facing the default view
        {5, 7, 6, 4, 0.55f},  // +z
        {4, 6, 2, 0, 0.65f},  // -x
        {1, 3, 7, 5, 0.70f},  // +x
        {2, 6, 7, 3, 1.00f},  // +y, lit from above
        {4, 0, 1, 5, 0.40f},  // -y
    }};
    for (const Face& face : kFaces) {
        const Color shaded = Shade(color, face.shade);
        for (const int corner : {face.a, face.b, face.c, face.a, face.c, face.d})
            geometry.triangles.push_back({corners[corner], shaded});
    }
}

void AppendDemoScene(SceneGeometry& geometry)
{
    // Floor grid: 10 x 10 metres in half-metre steps, the two axes through the origin brighter.
    constexpr float kExtent = 5.0f;
    constexpr int kSteps = 20;
    for (int i = 0; i <= kSteps; ++i) {
        const float at = -kExtent + static_cast<float>(i) * (2.0f * kExtent / kSteps);
        const bool axis = i == kSteps / 2;
        const Color color = axis ? Color{0.9f, 0.9f, 0.9f, 1.0f} : Color{0.45f, 0.5f, 0.55f, 1.0f};
        AppendLine(geometry, {at, 0.0f, -kExtent}, {at, 0.0f, kExtent}, color);
        AppendLine(geometry, {-kExtent, 0.0f, at}, {kExtent, 0.0f, at}, color);
    }
    // Cubes standing on the floor and one floating at eye height, around the orbit's centre.
    AppendCube(geometry, Matrix4::FromPosition({0.0f, 0.3f, 0.0f}), 0.6f, {0.85f, 0.2f, 0.15f, 1.0f});
    AppendCube(geometry, Matrix4::FromPosition({1.2f, 0.2f, 0.8f}), 0.4f, {0.2f, 0.75f, 0.25f, 1.0f});
    AppendCube(geometry, Matrix4::FromPosition({-1.0f, 0.25f, 1.1f}), 0.5f, {0.2f, 0.4f, 0.9f, 1.0f});
    AppendCube(geometry, Matrix4::FromPosition({-1.3f, 0.15f, -0.9f}), 0.3f, {0.95f, 0.8f, 0.15f, 1.0f});
    AppendCube(geometry, Matrix4::FromPosition({0.9f, 1.5f, -1.0f}), 0.35f, {0.8f, 0.3f, 0.85f, 1.0f});
}

void AppendDeviceMarker(SceneGeometry& geometry, const Matrix4& pose, const Color& color)
{
    AppendCube(geometry, pose, 0.08f, color);
    const Vector3 origin = pose.TransformPoint({});
    AppendLine(geometry, origin, pose.TransformPoint({0.2f, 0.0f, 0.0f}), {1.0f, 0.1f, 0.1f, 1.0f});
    AppendLine(geometry, origin, pose.TransformPoint({0.0f, 0.2f, 0.0f}), {0.1f, 1.0f, 0.1f, 1.0f});
    AppendLine(geometry, origin, pose.TransformPoint({0.0f, 0.0f, 0.2f}), {0.2f, 0.4f, 1.0f, 1.0f});
}

}  // namespace kesta
