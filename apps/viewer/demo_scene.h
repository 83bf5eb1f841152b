#pragma once
// The viewer's demo scene as plain world-space geometry: coloured line segments and triangles, in
// the engine's left-handed space (y up, metres). The viewer draws it with the render system's
// immediate helpers; the benchmark's raw-GL program draws the very same data.

#include <vector>

#include "foundation/math/color.h"
#include "foundation/math/matrix4.h"
#include "foundation/math/vector.h"

namespace kesta {

struct SceneVertex {
    Vector3 position;
    Color color;
};

struct SceneGeometry {
    std::vector<SceneVertex> lines;      // two vertices a segment
    std::vector<SceneVertex> triangles;  // three vertices a triangle, clockwise seen from outside

    void Clear()
    {
        lines.clear();
        triangles.clear();
    }
};

// A cube of edge `size` placed by `transform`; each face a shade of `color`, so that its edges read
// without lighting.
void AppendCube(SceneGeometry& geometry, const Matrix4& transform, float size, const Color& color);

// The still part of the scene: a floor grid of lines around the origin and a few solid cubes.
void AppendDemoScene(SceneGeometry& geometry);

// A tracked device's marker at `pose`: a small cube with lines along its x (red), y (green) and
// z (blue) axes, so that position and orientation both show.
void AppendDeviceMarker(SceneGeometry& geometry, const Matrix4& pose, const Color& color);

}  // namespace kesta
