#include "foundation/math/projection.h"

#include <cmath>

namespace kesta {

namespace {

// Clip z = a * z + b with w = z, so that znear maps to -1 and zfar to +1.
void set_perspective_depth(Matrix44& p, float znear, float zfar)
{
    p(2, 2) = (zfar + znear) / (zfar - znear);
    p(2, 3) = -2.0f * zfar * znear / (zfar - znear);
    p(3, 2) = 1.0f;
    p(3, 3) = 0.0f;
}

}  // namespace

Matrix44 PerspectiveFromZoom(float zoom, float aspect, float znear, float zfar)
{
    Matrix44 p;
    p(0, 0) = zoom / aspect;
    p(1, 1) = zoom;
    set_perspective_depth(p, znear, zfar);
    return p;
}

Matrix44 PerspectiveFromFieldOfView(float vertical_fov_radians, float aspect, float znear, float zfar)
{
    return PerspectiveFromZoom(1.0f / std::tan(vertical_fov_radians * 0.5f), aspect, znear, zfar);
}

Matrix44 PerspectiveFromTangents(float left, float right, float bottom, float top, float znear, float zfar)
{
    Matrix44 p;
    p(0, 0) = 2.0f / (right - left);
    p(0, 2) = -(right + left) / (right - left);
    p(1, 1) = 2.0f / (top - bottom);
    p(1, 2) = -(top + bottom) / (top - bottom);
    set_perspective_depth(p, znear, zfar);
    return p;
}

Matrix44 Orthographic(float left, float right, float bottom, float top, float znear, float zfar)
{
    Matrix44 p;
    p(0, 0) = 2.0f / (right - left);
    p(0, 3) = -(right + left) / (right - left);
    p(1, 1) = 2.0f / (top - bottom);
    p(1, 3) = -(top + bottom) / (top - bottom);
    p(2, 2) = 2.0f / (zfar - znear);
    p(2, 3) = -(zfar + znear) / (zfar - znear);
    return p;
}

Matrix44 OrthographicFromSize(float size, float aspect, float znear, float zfar)
{
    const float half_height = size * 0.5f, half_width = half_height * aspect;
    return Orthographic(-half_width, half_width, -half_height, half_height, znear, zfar);
}

}  // namespace kesta
