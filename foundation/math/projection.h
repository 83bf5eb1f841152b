#pragma once
// Projection matrices for the engine's left-handed view space (looking along +z), mapping depth
// from znear..zfar to the clip range -1..1.

#include "foundation/math/matrix44.h"

namespace kesta {

// zoom is the cotangent of half the vertical field of view; aspect is width over height.
Matrix44 PerspectiveFromZoom(float zoom, float aspect, float znear, float zfar);
Matrix44 PerspectiveFromFieldOfView(float vertical_fov_radians, float aspect, float znear, float zfar);
// An off-centre frustum from the tangents of its four half-angles (left and bottom negative).
Matrix44 PerspectiveFromTangents(float left, float right, float bottom, float top, float znear, float zfar);
Matrix44 Orthographic(float left, float right, float bottom, float top, float znear, float zfar);
// A centred box `size` high and `size * aspect` wide.
Matrix44 OrthographicFromSize(float size, float aspect, float znear, float zfar);

}  // namespace kesta
