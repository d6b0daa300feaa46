#include "Korvane/posing/transform.h"

#include <cmath>

namespace korvane
{

glm::quat shorterArc(const glm::quat& from, const glm::quat& to, float t)
{
    constexpr float linear_from = 0.99999f; // the sine below becomes too small to divide by
    float cosine = glm::dot(from, to);
    const float sign = cosine < 0 ? -1.0f : 1.0f;
    cosine *= sign;
    float from_weight = 1 - t;
    float to_weight = t;
    if (cosine < linear_from)
    {
        const float sine = std::sqrt(1 - cosine * cosine);
        const float angle = std::atan2(sine, cosine);
        from_weight = std::sin(from_weight * angle) / sine;
        to_weight = std::sin(to_weight * angle) / sine;
    }
    return from * from_weight + to * (to_weight * sign);
}

} // namespace korvane
