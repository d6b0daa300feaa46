#include "Korvane/viewer/moving_size.h"

#include <array>

namespace korvane
{

namespace
{

constexpr std::array scales{1.0, 0.7, 0.5};
constexpr double too_long = 1.2 * moving_size::wanted_seconds; // a screen that is waited for is not slow
constexpr int judged_after = 4;                                // frames: one of them may have been disturbed
constexpr int enlarged_after = 60;                             // so that it does not go up and down

double pixelsOf(std::size_t level)
{
    return scales[level] * scales[level];
}

} // namespace

double moving_size::scale() const
{
    return scales[m_level];
}

void moving_size::took(double seconds)
{
    m_smoothed = m_frames == 0 ? seconds : 0.75 * m_smoothed + 0.25 * seconds;
    ++m_frames;
    const bool must_shrink = m_frames >= judged_after && m_smoothed > too_long && m_level + 1 < scales.size();
    const bool may_grow = m_frames >= enlarged_after && m_level > 0 &&
                          m_smoothed * pixelsOf(m_level - 1) / pixelsOf(m_level) < wanted_seconds;
    if (!must_shrink && !may_grow)
        return;
    m_level = must_shrink ? m_level + 1 : m_level - 1;
    m_frames = 0;
}

} // namespace korvane
