#include "plugins/vr/simulator/head_path.h"

#include <cmath>
#include <numbers>

namespace kesta::vrsim {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;

double Phase(const HeadPathConfig& path, uint64_t frame)
{
    return 2.0 * std::numbers::pi * std::fmod(static_cast<double>(frame), path.period_frames) / path.period_frames;
}

Pose Interpolate(const std::vector<HeadKeyframe>& keys, uint64_t frame)
{
    const HeadKeyframe* before = &keys.front();
    if (frame <= before->frame)
        return Pose{before->position, before->yaw_degrees, before->pitch_degrees};
    for (const HeadKeyframe& after : keys) {
        if (after.frame >= frame) {
            const double t =
                static_cast<double>(frame - before->frame) / static_cast<double>(after.frame - before->frame);
            auto mix = [t](double a, double b) { return a + (b - a) * t; };
            return Pose{Vec3{mix(before->position.x, after.position.x), mix(before->position.y, after.position.y),
                             mix(before->position.z, after.position.z)},
                        mix(before->yaw_degrees, after.yaw_degrees), mix(before->pitch_degrees, after.pitch_degrees)};
        }
        before = &after;
    }
    return Pose{keys.back().position, keys.back().yaw_degrees, keys.back().pitch_degrees};
}

}  // namespace

Pose HeadPoseAt(const HeadPathConfig& path, uint64_t frame)
{
    switch (path.kind) {
        case HeadPathKind::kStatic:
            return Pose{path.position, path.yaw_degrees, path.pitch_degrees};
        case HeadPathKind::kOrbit: {
            // Circles the centre at head height, always facing it: at angle a the head stands at
            // centre + r (sin a, 0, cos a) and looks along -(sin a, 0, cos a), which is yaw a.
            const double angle = Phase(path, frame);
            const Vec3 position{path.position.x + path.radius * std::sin(angle), path.position.y,
                                path.position.z + path.radius * std::cos(angle)};
            return Pose{position, angle / kRadiansPerDegree, path.pitch_degrees};
        }
        case HeadPathKind::kNod:
            return Pose{path.position, path.yaw_degrees,
                        path.pitch_degrees + path.amplitude_degrees * std::sin(Phase(path, frame))};
        case HeadPathKind::kKeyframes:
            return Interpolate(path.keyframes, frame);
    }
    return Pose{};
}

vr::HmdMatrix34_t ToMatrix(const Pose& pose)
{
    const double yaw = pose.yaw_degrees * kRadiansPerDegree;
    const double pitch = pose.pitch_degrees * kRadiansPerDegree;
    const double cy = std::cos(yaw), sy = std::sin(yaw);
    const double cp = std::cos(pitch), sp = std::sin(pitch);
    // R = Ry(yaw) * Rx(pitch)
    const double r[3][3] = {{cy, sy * sp, sy * cp}, {0.0, cp, -sp}, {-sy, cy * sp, cy * cp}};
    const double t[3] = {pose.position.x, pose.position.y, pose.position.z};
    vr::HmdMatrix34_t m{};
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col)
            m.m[row][col] = static_cast<float>(r[row][col]);
        m.m[row][3] = static_cast<float>(t[row]);
    }
    return m;
}

vr::HmdMatrix34_t Multiply(const vr::HmdMatrix34_t& a, const vr::HmdMatrix34_t& b)
{
    vr::HmdMatrix34_t out{};
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 4; ++col) {
            float sum = col == 3 ? a.m[row][3] : 0.0f;
            for (int k = 0; k < 3; ++k)
                sum += a.m[row][k] * b.m[k][col];
            out.m[row][col] = sum;
        }
    }
    return out;
}

}  // namespace kesta::vrsim
