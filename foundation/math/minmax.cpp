#include "foundation/math/minmax.h"

namespace kesta {

unsigned MinMax::OutcodeOf(const Vector3& p) const
{
    unsigned code = 0;
    if (p.x > max.x)
        code |= kAboveMaxX;
    if (p.x < min.x)
        code |= kBelowMinX;
    if (p.y > max.y)
        code |= kAboveMaxY;
    if (p.y < min.y)
        code |= kBelowMinY;
    if (p.z > max.z)
        code |= kAboveMaxZ;
    if (p.z < min.z)
        code |= kBelowMinZ;
    return code;
}

bool MinMax::IntersectRay(const Vector3& origin, const Vector3& direction, Vector3* normal, Vector3* hit_point) const
{
    const unsigned code = OutcodeOf(origin);
    if (code == 0) {
        if (normal)
            *normal = {};
        if (hit_point)
            *hit_point = origin;
        return true;
    }

    struct Side {
        unsigned bit;
        int axis;
        bool at_max;
    };
    static constexpr Side kSides[] = {
        {kAboveMaxX, 0, true},  {kBelowMinX, 0, false}, {kAboveMaxY, 1, true},
        {kBelowMinY, 1, false}, {kAboveMaxZ, 2, true},  {kBelowMinZ, 2, false},
    };

    // Outside a side and heading away from it (or parallel to it): the ray can never enter.
    for (const Side& side : kSides) {
        if (!(code & side.bit))
            continue;
        const float d = direction[side.axis];
        if (side.at_max ? d >= 0.0f : d <= 0.0f)
            return false;
    }

    for (const Side& side : kSides) {
        if (!(code & side.bit))
            continue;
        const int a = side.axis;
        const float plane = side.at_max ? max[a] : min[a];
        const float t = (plane - origin[a]) / direction[a];
        Vector3 point = origin + direction * t;
        point[a] = plane;
        const int b = (a + 1) % 3, c = (a + 2) % 3;
        if (point[b] < min[b] || point[b] > max[b] || point[c] < min[c] || point[c] > max[c])
            continue;
        if (normal) {
            *normal = {};
            (*normal)[a] = side.at_max ? 1.0f : -1.0f;
        }
        if (hit_point)
            *hit_point = point;
        return true;
    }
    return false;
}

}  // namespace kesta
