#pragma once
// The packed description of a vertex: a stride byte, then eight (semantic, format) byte pairs.
// Kept and compared by value.

#include <array>
#include <cstdint>
#include <limits>

namespace kesta {

class VertexLayout {
public:
    using Stride = std::uint8_t;

    // Semantics are the vertex-input rows of the shader built-ins: 0 position, 1 normal, 2-5 UV0-3,
    // 6-9 colour 0-3, 10 tangent, 11 bitangent, 12 bone index, 13 bone weight.
    static constexpr std::uint8_t kEnd = 0x11;
    static constexpr int kMaxAttributes = 8;

    // Component types; sizes are 1 byte for 0-1, 2 bytes for 2-3, 4 bytes for 4-7.
    enum ComponentType : std::uint8_t {
        kSignedByte = 0,
        kUnsignedByte = 1,
        kSignedShort = 2,
        kUnsignedShort = 3,
        kSignedInt = 4,
        kUnsignedInt = 5,
        kFloat = 6,
        kFloat32 = 7,
    };

    struct Attribute {
        std::uint8_t semantic = kEnd;
        std::uint8_t format = 0;  // low 4 bits count, next 3 bits type, top bit normalised

        friend constexpr bool operator==(const Attribute&, const Attribute&) = default;
    };

    VertexLayout() { Clear(); }

    void Clear();
    // False when the semantic is already declared or all eight entries are used.
    bool AddAttribute(std::uint8_t semantic, std::uint8_t count, ComponentType type, bool normalised);
    // Pads the stride to a multiple of 4.
    void End();

    Stride GetStride() const { return stride_; }
    const std::array<Attribute, kMaxAttributes>& GetAttributes() const { return attributes_; }
    static int ComponentSize(std::uint8_t type) { return type < 2 ? 1 : (type < 4 ? 2 : 4); }

    friend bool operator==(const VertexLayout&, const VertexLayout&) = default;

private:
    Stride stride_ = 0;
    std::array<Attribute, kMaxAttributes> attributes_{};
};

}  // namespace kesta
