#pragma once

// Values that change over time, given at some moments and smooth between them: a cubic through the keys that never
// overshoots them. A record of controls is a struct of nothing but doubles.

#include "tools/demo_data/demo_math.h"

#include <array>
#include <bit>
#include <cassert>
#include <cstddef>
#include <utility>
#include <vector>

namespace korvane::demo
{

// The slope at a key from the keys around it: zero at a high or low point.
constexpr double slopeAt(double before, double here, double after, double time_before, double time_after)
{
    const double in = (here - before) / time_before, out = (after - here) / time_after;
    if (in * out <= 0)
        return 0;
    const double mean = (in * time_after + out * time_before) / (time_before + time_after);
    const double smaller = in * in < out * out ? in : out;
    return mean * mean > 9 * smaller * smaller ? 3 * smaller : mean;
}

constexpr double cubic(double from, double to, double slope_from, double slope_to, double duration, double t)
{
    const double a = (2 * t - 3) * t * t + 1, b = ((t - 2) * t + 1) * t, c = (3 - 2 * t) * t * t, d = (t - 1) * t * t;
    return a * from + b * duration * slope_from + c * to + d * duration * slope_to;
}

template <class controls>
class motion_keys
{
public:
    static constexpr std::size_t size = sizeof(controls) / sizeof(double);
    using values = std::array<double, size>;

    // Times ascend. What change leaves alone is as in base.
    template <class change_function>
    motion_keys& at(double time, const controls& base, const change_function& change)
    {
        assert(m_keys.empty() || time > m_keys.back().first);
        controls key = base;
        change(key);
        m_keys.emplace_back(time, std::bit_cast<values>(key));
        return *this;
    }
    motion_keys& at(double time, const controls& key)
    {
        return at(time, key, [](controls&) {});
    }
    // The motion begins again after period: behind the last key comes the first.
    motion_keys& repeating(double period)
    {
        assert(!m_keys.empty() && period > m_keys.back().first);
        m_period = period;
        return *this;
    }

    double duration() const { return m_period > 0 ? m_period : m_keys.back().first; }

    // Before the first and behind the last key of a motion that does not repeat: that key.
    controls sample(double time) const
    {
        if (m_period > 0)
            time = fraction(time / m_period) * m_period;
        const auto count = static_cast<int>(m_keys.size());
        int next = 0;
        while (next < count && m_keys[static_cast<std::size_t>(next)].first <= time)
            ++next;
        const moment p = key(next - 2), a = key(next - 1), b = key(next), c = key(next + 1);
        const double duration = b.time - a.time;
        if (duration <= 0)
            return std::bit_cast<controls>(*a.value);
        values result;
        for (std::size_t i = 0; i < size; ++i)
        {
            const double from = (*a.value)[i], to = (*b.value)[i];
            const double slope_a = p.time < a.time ? slopeAt((*p.value)[i], from, to, a.time - p.time, duration) : 0;
            const double slope_b = c.time > b.time ? slopeAt(from, to, (*c.value)[i], duration, c.time - b.time) : 0;
            result[i] = cubic(from, to, slope_a, slope_b, duration, (time - a.time) / duration);
        }
        return std::bit_cast<controls>(result);
    }

private:
    struct moment
    {
        double time;
        const values* value;
    };
    // Any index: those outside repeat the motion, or its end.
    moment key(int index) const
    {
        const auto count = static_cast<int>(m_keys.size());
        double shift = 0;
        if (m_period > 0)
            for (; index < 0 || index >= count; index += index < 0 ? count : -count)
                shift += index < 0 ? -m_period : m_period;
        const auto& found = m_keys[static_cast<std::size_t>(index < 0 ? 0 : index >= count ? count - 1 : index)];
        return {found.first + shift, &found.second};
    }

    std::vector<std::pair<double, values>> m_keys;
    double m_period = 0;
};

} // namespace korvane::demo
