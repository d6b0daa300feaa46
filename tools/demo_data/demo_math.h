#pragma once

// Arithmetic for generated data that must come out bit for bit the same on every system: only + - * / and the square
// root, which IEEE 754 rounds exactly, never a function of the C library whose last bit is a matter of taste. The
// folder is compiled without contraction of a * b + c. Angles are in turns (1 is the full circle).

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace korvane::demo
{

struct vec2
{
    double x = 0, y = 0;
};

struct vec3
{
    double x = 0, y = 0, z = 0;
};

constexpr vec3 operator+(vec3 a, vec3 b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr vec3 operator-(vec3 a, vec3 b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
constexpr vec3 operator*(vec3 a, double s)
{
    return {a.x * s, a.y * s, a.z * s};
}
constexpr vec3 operator*(vec3 a, vec3 b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
constexpr double dot(vec3 a, vec3 b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
constexpr vec3 cross(vec3 a, vec3 b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double length(vec3 a)
{
    return std::sqrt(dot(a, a));
}
inline vec3 normalised(vec3 a, vec3 otherwise = {0, 1, 0}) // otherwise: for vectors that have no direction
{
    const double size = length(a);
    return size > 1e-12 ? a * (1.0 / size) : otherwise;
}

constexpr double mix(double a, double b, double t)
{
    return a + (b - a) * t;
}
constexpr vec3 mix(vec3 a, vec3 b, double t)
{
    return a + (b - a) * t;
}
constexpr double clamp01(double x)
{
    return x < 0 ? 0 : x > 1 ? 1 : x;
}
constexpr double smoothStep(double low, double high, double x)
{
    const double t = clamp01((x - low) / (high - low));
    return t * t * (3 - 2 * t);
}
// 1 at the centre, 0 from the distance 1 on, smooth: what one would use a bell curve for.
constexpr double bump(double squared_distance)
{
    const double t = squared_distance >= 1 ? 0 : 1 - squared_distance;
    return t * t;
}
inline double fraction(double x)
{
    return x - std::floor(x);
}
inline double sineOfTurns(double turns)
{
    // To a quarter either side of zero, where the series is exact to the last few bits.
    double t = fraction(turns + 0.5) - 0.5;
    if (t > 0.25)
        t = 0.5 - t;
    else if (t < -0.25)
        t = -0.5 - t;
    const double x = t * 6.283185307179586;
    const double q = x * x;
    double sum = 1;
    for (int k = 16; k >= 2; k -= 2) // x (1 - q/(2*3) (1 - q/(4*5) (...)))
        sum = 1 - q / (k * (k + 1.0)) * sum;
    return x * sum;
}
inline double cosineOfTurns(double turns)
{
    return sineOfTurns(turns + 0.25);
}

// Marsaglia's xorshift with a multiplied output; the same numbers everywhere, unlike the standard distributions.
class random_source
{
public:
    explicit random_source(std::uint64_t seed) : m_state(seed * 0x9E3779B97F4A7C15u + 0xD1B54A32D192ED03u)
    {
        if (m_state == 0)
            m_state = 1;
        for (int i = 0; i < 4; ++i)
            bits();
    }
    std::uint32_t bits()
    {
        m_state ^= m_state >> 12;
        m_state ^= m_state << 25;
        m_state ^= m_state >> 27;
        return static_cast<std::uint32_t>((m_state * 0x2545F4914F6CDD1Du) >> 32);
    }
    double unit() { return bits() * (1.0 / 4294967296.0); } // 0 <= x < 1
    double between(double low, double high) { return mix(low, high, unit()); }

private:
    std::uint64_t m_state;
};

} // namespace korvane::demo
