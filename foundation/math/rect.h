#pragma once

namespace kesta {

// A rectangle of floats: start x, start y, end x, end y.
struct Rect {
    float x1 = 0, y1 = 0, x2 = 0, y2 = 0;

    constexpr float Width() const { return x2 - x1; }
    constexpr float Height() const { return y2 - y1; }
    friend constexpr bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace kesta
