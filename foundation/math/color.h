#pragma once

namespace kesta {

// Linear RGBA, one float a channel.
struct Color {
    float r{}, g{}, b{}, a{};

    friend constexpr bool operator==(const Color&, const Color&) = default;
};

}  // namespace kesta
