#pragma once
// Plain vector value types. All floats are 32-bit; the engine's space is left-handed.

#include <cmath>

namespace kesta {

template <typename T>
struct tVector2 {
    T x{}, y{};

    friend constexpr bool operator==(const tVector2&, const tVector2&) = default;
    constexpr tVector2 operator+(const tVector2& o) const { return {x + o.x, y + o.y}; }
    constexpr tVector2 operator-(const tVector2& o) const { return {x - o.x, y - o.y}; }
    constexpr tVector2 operator*(T s) const { return {x * s, y * s}; }
};

using Vector2 = tVector2<float>;
using IntVector2 = tVector2<int>;

struct Vector3 {
    float x{}, y{}, z{};

    friend constexpr bool operator==(const Vector3&, const Vector3&) = default;
    constexpr Vector3 operator+(const Vector3& o) const { return {x + o.x, y + o.y, z + o.z}; }
    constexpr Vector3 operator-(const Vector3& o) const { return {x - o.x, y - o.y, z - o.z}; }
    constexpr Vector3 operator-() const { return {-x, -y, -z}; }
    constexpr Vector3 operator*(float s) const { return {x * s, y * s, z * s}; }
    constexpr Vector3 operator/(float s) const { return {x / s, y / s, z / s}; }
    Vector3& operator+=(const Vector3& o) { return *this = *this + o; }
    Vector3& operator-=(const Vector3& o) { return *this = *this - o; }
    Vector3& operator*=(float s) { return *this = *this * s; }

    constexpr float operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }
    float& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }

    float Length() const { return std::sqrt(x * x + y * y + z * z); }
    constexpr float LengthSquared() const { return x * x + y * y + z * z; }
    // The vector scaled to length 1; the zero vector stays zero.
    Vector3 Normalized() const
    {
        const float length = Length();
        return length > 0.0f ? *this / length : Vector3{};
    }
};

constexpr float Dot(const Vector3& a, const Vector3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
constexpr Vector3 Cross(const Vector3& a, const Vector3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

struct Vector4 {
    float x{}, y{}, z{}, w{};

    friend constexpr bool operator==(const Vector4&, const Vector4&) = default;
    constexpr Vector4 operator+(const Vector4& o) const { return {x + o.x, y + o.y, z + o.z, w + o.w}; }
    constexpr Vector4 operator-(const Vector4& o) const { return {x - o.x, y - o.y, z - o.z, w - o.w}; }
    constexpr Vector4 operator*(float s) const { return {x * s, y * s, z * s, w * s}; }
};

constexpr float Dot(const Vector4& a, const Vector4& b) { return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w; }

}  // namespace kesta
