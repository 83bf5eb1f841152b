#pragma once
// Plain values that cross the boundary between the engine and a GPU back end.

#include <cstdint>

namespace kesta {

// Texture formats the engine uses: 0 8-bit colour (the default target format), 3 floating-point
// colour, 4 depth, 5 depth for post-process targets, 8 two 8-bit channels. Picture uploads also
// produce 1, 2, 6 and 7.
using TextureFormat = std::uint8_t;
inline constexpr TextureFormat kTextureFormatColor8 = 0;
inline constexpr TextureFormat kTextureFormatColorFloat = 3;
inline constexpr TextureFormat kTextureFormatDepth = 4;
inline constexpr TextureFormat kTextureFormatDepthPostProcess = 5;
inline constexpr TextureFormat kTextureFormatTwoChannels8 = 8;

enum TextureUsage : std::uint8_t { kTextureUsageSampled = 1, kTextureUsageColorTarget = 3 };
enum BufferKind : std::uint8_t { kIndexBuffer = 0, kVertexBuffer = 1 };
enum BufferUsage : std::uint8_t { kStaticBuffer = 0, kDynamicBuffer = 1 };
enum PrimitiveType : std::uint8_t { kLines = 0, kTriangles = 1 };
enum IndexType : std::uint8_t { kIndex16 = 0, kIndex32 = 1 };
enum DepthFunc : std::uint8_t { kDepthLess = 1, kDepthLessEqual = 3, kDepthGreater = 4, kDepthAlways = 7 };
enum BlendFactor : std::uint8_t { kBlendOne = 1, kBlendSourceAlpha = 2, kBlendOneMinusSourceAlpha = 3 };

inline constexpr std::uint32_t kClearDepth = 2;
inline constexpr std::uint32_t kClearColor = 1;
inline constexpr std::uint32_t kClearAll = 0xffff;

// Capability queries answered by GetCapability.
enum CapabilityQuery : int {
    kCapabilityHardwareMultisample = 2,  // bool
    kCapabilitySecondary = 3,            // bool, not used by the core
    kCapabilityMaxAntiAliasing = 4,      // byte
};

// Bits of the renderer's capability byte.
inline constexpr std::uint8_t kCapabilityBitHardwareMultisample = 1;
inline constexpr std::uint8_t kCapabilityBitSecondary = 2;

}  // namespace kesta
