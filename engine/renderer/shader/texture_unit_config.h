#pragma once
// How a texture unit samples: wrap mode per axis and the two filters. Packed into two bytes
// because a copy travels with every texture value of every material.

#include <cstdint>

namespace kesta {

enum class TextureFilter : std::uint8_t {
    kNearest = 0,
    kLinear = 1,
    kTrilinear = 2,
    kAnisotropic = 3,
};

enum class TextureUV : std::uint8_t {
    kClamp = 0,
    kRepeat = 1,
    kMirror = 2,
};

struct TextureUnitConfig {
    // The fields hold TextureUV and TextureFilter values; the accessors below convert.
    std::uint8_t wrap_u : 2 = static_cast<std::uint8_t>(TextureUV::kClamp);
    std::uint8_t wrap_v : 2 = static_cast<std::uint8_t>(TextureUV::kClamp);
    std::uint8_t min_filter : 4 = static_cast<std::uint8_t>(TextureFilter::kLinear);
    std::uint8_t mag_filter : 4 = static_cast<std::uint8_t>(TextureFilter::kLinear);

    TextureUV GetWrapU() const { return static_cast<TextureUV>(wrap_u); }
    TextureUV GetWrapV() const { return static_cast<TextureUV>(wrap_v); }
    TextureFilter GetMinFilter() const { return static_cast<TextureFilter>(min_filter); }
    TextureFilter GetMagFilter() const { return static_cast<TextureFilter>(mag_filter); }

    void SetWrapU(TextureUV uv) { wrap_u = static_cast<std::uint8_t>(uv) & 3u; }
    void SetWrapV(TextureUV uv) { wrap_v = static_cast<std::uint8_t>(uv) & 3u; }
    void SetMinFilter(TextureFilter filter) { min_filter = static_cast<std::uint8_t>(filter) & 15u; }
    void SetMagFilter(TextureFilter filter) { mag_filter = static_cast<std::uint8_t>(filter) & 15u; }

    bool operator==(const TextureUnitConfig&) const = default;
};

}  // namespace kesta
