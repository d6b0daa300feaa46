#include "Korvane/fbx/scene/fbx_curve.h"

#include <algorithm>
#include <cmath>

namespace korvane
{

namespace
{

namespace flags = fbx_key_flags;

enum class tangent_mode
{
    none,
    user,
    automatic,
    tcb
};

enum class side
{
    left,
    right
};

tangent_mode modeOf(const fbx_key_attribute& attribute)
{
    const bool is_constant = (attribute.flags & flags::constant) != 0; // its 0x100 means something else
    if ((attribute.flags & flags::user) != 0)
        return tangent_mode::user;
    if ((attribute.flags & flags::tcb) != 0)
        return tangent_mode::tcb;
    if (!is_constant && (attribute.flags & flags::automatic) != 0)
        return tangent_mode::automatic;
    return tangent_mode::none;
}

// The slopes at the keys of one curve.
class slope_finder
{
public:
    explicit slope_finder(const fbx_curve& curve) : m_curve(curve) {}

    const fbx_key_attribute& attribute(std::size_t key) const { return m_curve.attributeOf(key); }

    double seconds(std::size_t from, std::size_t to) const
    {
        const auto begin = static_cast<double>(m_curve.times[from]);
        return (static_cast<double>(m_curve.times[to]) - begin) / m_curve.ticks_per_second;
    }

    double right(std::size_t key) const
    {
        switch (modeOf(attribute(key)))
        {
        case tangent_mode::user:
            return attribute(key).data[0];
        case tangent_mode::automatic:
            return automatic(key, attribute(key), attribute(key).data[0]);
        case tangent_mode::tcb:
            return tcb(key, attribute(key), side::right);
        case tangent_mode::none:
            break;
        }
        return 0;
    }

    // Of the segment that ends at the key, which is not the first. A key that is not cubic itself may say nothing about
    // its tangents: then the segment's first key does.
    double left(std::size_t key) const
    {
        const fbx_key_attribute& previous = attribute(key - 1);
        const fbx_key_attribute& own = modeOf(attribute(key)) == tangent_mode::none ? previous : attribute(key);
        switch (modeOf(own))
        {
        case tangent_mode::user:
            return modeOf(previous) == tangent_mode::tcb ? 0 : previous.data[1];
        case tangent_mode::automatic:
            return automatic(key, own, modeOf(previous) == tangent_mode::tcb ? 0 : -previous.data[1]);
        case tangent_mode::tcb:
            return tcb(key, own, side::left);
        case tangent_mode::none:
            break;
        }
        return 0;
    }

private:
    double secant(std::size_t from, std::size_t to) const
    {
        const double length = seconds(from, to);
        return length > 0 ? (m_curve.values[to] - m_curve.values[from]) / length : 0;
    }

    double automatic(std::size_t key, const fbx_key_attribute& own, double bias) const
    {
        const bool is_progressive = (own.flags & flags::progressive) != 0;
        if (key == 0 || key + 1 == m_curve.times.size())
        {
            if (is_progressive || m_curve.times.size() < 2)
                return 0;
            return (key == 0 ? secant(0, 1) : secant(key - 1, key)) + push(bias);
        }
        const double before = secant(key - 1, key);
        const double behind = secant(key, key + 1);
        double slope = secant(key - 1, key + 1);
        if ((own.flags & flags::time_independent) == 0)
        {
            const double whole = seconds(key - 1, key + 1);
            const double place = whole > 0 ? seconds(key - 1, key) / whole : 0.5;
            slope = slope / 2 + (before * (1 - place) + behind * place) / 2;
        }
        if (!is_progressive)
            slope += ((bias > 0 ? behind : before) - slope) * std::abs(bias) / 100 +
                     (behind < before ? -push(bias) : push(bias));
        if ((own.flags & flags::clamped) != 0 &&
            (m_curve.values[key] == m_curve.values[key - 1] || m_curve.values[key] == m_curve.values[key + 1]))
            return 0;
        return is_progressive ? limited(limited(slope, before), behind) : slope;
    }

    // A bias may pull beyond the neighbour's slope, and from 500 percent on pushes besides, however flat the neighbours
    // are: so programs store a slope that was given as a velocity.
    static double push(double bias)
    {
        const double beyond = std::max(std::abs(bias) / 100 - 5, 0.0);
        return std::copysign(40 * beyond * beyond, bias);
    }

    // Not steeper than three times the way to the neighbour, and never against it.
    static double limited(double slope, double towards)
    {
        if (slope * towards <= 0)
            return 0;
        const double limit = 3 * std::abs(towards);
        return std::clamp(slope, -limit, limit);
    }

    double tcb(std::size_t key, const fbx_key_attribute& own, side which) const
    {
        const bool has_left = key > 0;
        const bool has_right = key + 1 < m_curve.times.size();
        const double before = has_left ? secant(key - 1, key) : 0;
        const double behind = has_right ? secant(key, key + 1) : 0;
        const double factor = (has_left && has_right ? 0.5 : 1.0) * (1 - own.data[0]);
        const double continuity = which == side::left ? own.data[1] : -own.data[1];
        const double bias = own.data[2];
        return factor * ((1 + bias) * (1 - continuity) * before + (1 - bias) * (1 + continuity) * behind);
    }

    const fbx_curve& m_curve;
};

// A coordinate of the Bezier curve with the points 0, first, second, 1.
double bezier(double first, double second, double parameter)
{
    const double rest = 1 - parameter;
    return parameter * (3 * rest * (first * rest + second * parameter) + parameter * parameter);
}

// The parameter at which the curve of times (0, first, second, 1), which never runs back, passes the time.
double parameterAt(double first, double second, double time)
{
    double low = 0;
    double high = 1;
    double parameter = time;
    for (int step = 0; step < 80 && high - low > 1e-16; ++step)
    {
        const double error = bezier(first, second, parameter) - time;
        if (error == 0)
            break;
        (error > 0 ? high : low) = parameter;
        const double rest = 1 - parameter;
        const double slope =
            3 * (rest * rest * first + 2 * rest * parameter * (second - first) + parameter * parameter * (1 - second));
        const double newton = slope > 1e-9 ? parameter - error / slope : -1;
        parameter = newton > low && newton < high ? newton : (low + high) / 2;
    }
    return parameter;
}

double cubic(const fbx_curve& curve, std::size_t key, double place)
{
    const slope_finder slopes(curve);
    const fbx_key_attribute& attribute = slopes.attribute(key);
    const double length = slopes.seconds(key, key + 1);
    const double begin = curve.values[key];
    const double end = curve.values[key + 1];
    const bool is_right_weighted = (attribute.flags & flags::right_weighted) != 0;
    const bool is_left_weighted = (attribute.flags & flags::next_left_weighted) != 0;
    const double right_weight = is_right_weighted ? std::clamp(attribute.right_weight, 0.0, 1.0) : 1.0 / 3;
    const double left_weight = is_left_weighted ? std::clamp(attribute.next_left_weight, 0.0, 1.0) : 1.0 / 3;
    const double parameter =
        is_right_weighted || is_left_weighted ? parameterAt(right_weight, 1 - left_weight, place) : place;
    const double first = begin + slopes.right(key) * right_weight * length;
    const double second = end - slopes.left(key + 1) * left_weight * length;
    const double rest = 1 - parameter;
    return rest * rest * rest * begin + 3 * rest * parameter * (rest * first + parameter * second) +
           parameter * parameter * parameter * end;
}

double evaluateInside(const fbx_curve& curve, fbx_ticks time)
{
    const auto behind = std::upper_bound(curve.times.begin(), curve.times.end(), time);
    if (behind == curve.times.begin())
        return curve.values.front();
    const auto key = static_cast<std::size_t>(behind - curve.times.begin()) - 1;
    if (behind == curve.times.end() || curve.times[key] == time)
        return curve.values[key];
    const double from = curve.values[key];
    const double to = curve.values[key + 1];
    const std::uint32_t kind = curve.attributeOf(key).flags;
    if ((kind & flags::constant) != 0)
        return (kind & flags::constant_next) != 0 ? to : from;
    const auto begin = static_cast<double>(curve.times[key]);
    const double place = (static_cast<double>(time) - begin) / (static_cast<double>(curve.times[key + 1]) - begin);
    if ((kind & flags::cubic) != 0)
        return cubic(curve, key, place);
    return from + (to - from) * place;
}

double endSlope(const fbx_curve& curve, bool is_after)
{
    if (curve.times.size() < 2)
        return 0;
    const std::size_t key = is_after ? curve.times.size() - 2 : 0;
    const slope_finder slopes(curve);
    const std::uint32_t kind = slopes.attribute(key).flags;
    const double length = slopes.seconds(key, key + 1);
    if ((kind & flags::constant) != 0 || !(length > 0))
        return 0;
    if ((kind & flags::cubic) != 0)
        return is_after ? slopes.left(key + 1) : slopes.right(key);
    return (curve.values[key + 1] - curve.values[key]) / length;
}

double evaluateOutside(const fbx_curve& curve, fbx_ticks time, bool is_after)
{
    const fbx_ticks first = curve.times.front();
    const fbx_ticks last = curve.times.back();
    const double end_value = is_after ? curve.values.back() : curve.values.front();
    const fbx_outside& rule = is_after ? curve.after : curve.before;
    // How far beyond the end, and how long one repetition is; as numbers, which do not overflow.
    const double beyond = std::abs(static_cast<double>(time) - static_cast<double>(is_after ? last : first));
    const double length = static_cast<double>(last) - static_cast<double>(first);
    if (rule.kind == fbx_extrapolation::slope)
        return end_value + endSlope(curve, is_after) * (is_after ? beyond : -beyond) / curve.ticks_per_second;
    if (rule.kind == fbx_extrapolation::constant || !(length > 0) || rule.repetitions == 0)
        return end_value;

    double round = std::floor(beyond / length); // complete repetitions
    double rest = std::clamp(beyond - round * length, 0.0, length);
    if (rule.repetitions > 0 && round >= static_cast<double>(rule.repetitions)) // stays where the last one ended
    {
        round = static_cast<double>(rule.repetitions - 1);
        rest = length;
    }
    const bool is_backwards = rule.kind == fbx_extrapolation::mirror && std::fmod(round, 2) == 0;
    const bool is_from_first = is_after != is_backwards;
    const double inside = static_cast<double>(is_from_first ? first : last) + (is_from_first ? rest : -rest);
    // An integer again; the end of the range is met exactly.
    const double lowest = static_cast<double>(first);
    const double highest = static_cast<double>(last);
    const fbx_ticks moment = inside <= lowest    ? first
                             : inside >= highest ? last
                                                 : static_cast<fbx_ticks>(std::llround(inside));
    double value = evaluateInside(curve, moment);
    if (rule.kind == fbx_extrapolation::repeat_relative)
        value += (is_after ? 1 : -1) * (round + 1) * (curve.values.back() - curve.values.front());
    return value;
}

} // namespace

void fbx_curve::add(fbx_ticks time, double value, const fbx_key_attribute& attribute)
{
    times.push_back(time);
    values.push_back(value);
    if (attributes.empty() || attributes.back() != attribute)
    {
        attributes.push_back(attribute);
        attribute_ends.emplace_back();
    }
    attribute_ends.back() = static_cast<std::uint32_t>(times.size());
}

const fbx_key_attribute& fbx_curve::attributeOf(std::size_t key) const
{
    const auto run = std::upper_bound(attribute_ends.begin(), attribute_ends.end(), key);
    return attributes[static_cast<std::size_t>(run - attribute_ends.begin())];
}

double fbx_curve::evaluate(fbx_ticks time) const
{
    if (times.empty())
        return 0;
    if (time < times.front())
        return evaluateOutside(*this, time, false);
    if (time > times.back())
        return evaluateOutside(*this, time, true);
    return evaluateInside(*this, time);
}

} // namespace korvane
