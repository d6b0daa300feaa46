#include "Korvane/document/window_place.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <charconv>

namespace korvane
{

namespace
{

constexpr int farthest = 100000; // pixels; keeps sums small
constexpr int smallest_side = 50;
constexpr int widest_column = 10000;
constexpr int grip_width = 60; // of the title bar, at 96 dots per inch, so that a mouse can take hold of it
constexpr int grip_height = 20;

// All numbers of a text with blanks between them; nothing when there is anything else.
std::optional<std::vector<int>> numbersOf(std::string_view text)
{
    std::vector<int> numbers;
    for (const char* at = text.data(); at != text.data() + text.size();)
    {
        int number = 0;
        const auto [end, error] = std::from_chars(at, text.data() + text.size(), number);
        if (error != std::errc() || (end != text.data() + text.size() && *end != ' '))
            return std::nullopt;
        numbers.push_back(number);
        at = end == text.data() + text.size() ? end : end + 1;
    }
    return numbers;
}

std::string valueOf(const config_file& config, std::string_view key)
{
    const std::vector<std::string> values = config.get(key);
    return values.size() == 1 ? values.front() : std::string();
}

bool keepValue(config_file& config, std::string_view key, const std::string& given)
{
    const std::string value = toLower(given); // as the configuration holds it
    if (config.get(key) == std::vector{value})
        return false;
    config.clear(key);
    return config.add(key, {value}, false);
}

std::string textOf(std::span<const int> numbers)
{
    std::string text;
    for (const int number : numbers)
        text += (text.empty() ? "" : " ") + std::to_string(number);
    return text;
}

bool isSensible(const window_place& place)
{
    const screen_rect& outer = place.outer;
    const auto isNear = [](int value) { return value > -farthest && value < farthest; };
    return isNear(outer.left) && isNear(outer.top) && isNear(outer.right) && isNear(outer.bottom) &&
           outer.width() >= smallest_side && outer.height() >= smallest_side && place.dpi >= 48 && place.dpi <= 960;
}

screen_rect sharedPart(const screen_rect& one, const screen_rect& other)
{
    return {std::max(one.left, other.left), std::max(one.top, other.top), std::min(one.right, other.right),
            std::min(one.bottom, other.bottom)};
}

// The window's upper edge, as much of it as lies on the monitor.
bool canBeTakenHoldOf(const window_place& place, const monitor_area& monitor)
{
    screen_rect edge = place.outer;
    edge.bottom = edge.top + grip_height * place.dpi / 96;
    const screen_rect seen = sharedPart(edge, monitor.work);
    return seen.width() >= grip_width * place.dpi / 96 && seen.height() >= grip_height * place.dpi / 96 / 2;
}

long long sharedArea(const screen_rect& one, const screen_rect& other)
{
    const screen_rect shared = sharedPart(one, other);
    return static_cast<long long>(std::max(0, shared.width())) * std::max(0, shared.height());
}

} // namespace

std::optional<window_place> keptPlace(const config_file& config, std::string_view key)
{
    const auto numbers = numbersOf(valueOf(config, key));
    if (!numbers || numbers->size() != 6)
        return std::nullopt;
    const std::vector<int>& n = *numbers;
    const window_place place{{n[0], n[1], n[2], n[3]}, n[4], n[5] == 1};
    return isSensible(place) ? std::optional(place) : std::nullopt;
}

bool keepPlace(config_file& config, std::string_view key, const window_place& place)
{
    const screen_rect& outer = place.outer;
    return isSensible(place) && keepValue(config, key,
                                          textOf(std::vector{outer.left, outer.top, outer.right, outer.bottom,
                                                             place.dpi, place.is_maximised ? 1 : 0}));
}

screen_rect fittedPlace(const window_place& place, std::span<const monitor_area> monitors)
{
    const monitor_area* best = nullptr;
    for (const monitor_area& monitor : monitors)
        if (canBeTakenHoldOf(place, monitor) &&
            (best == nullptr || sharedArea(place.outer, monitor.work) > sharedArea(place.outer, best->work)))
            best = &monitor;
    const bool is_gone = best == nullptr;
    const monitor_area& on = is_gone ? monitors.front() : *best;
    const int width = std::min(place.outer.width() * on.dpi / place.dpi, on.work.width());
    const int height = std::min(place.outer.height() * on.dpi / place.dpi, on.work.height());
    int left = place.outer.left;
    int top = place.outer.top;
    if (is_gone)
    {
        left = on.work.left + (on.work.width() - width) / 2;
        top = on.work.top + (on.work.height() - height) / 2;
    }
    else if (monitors.size() == 1) // else it may reach into a neighbour
        left = std::clamp(left, on.work.left, on.work.right - width);
    top = std::clamp(top, on.work.top, on.work.bottom - height);
    return {left, top, left + width, top + height};
}

std::string keptPage(const config_file& config)
{
    return valueOf(config, config_keys::page);
}

bool keepPage(config_file& config, std::string_view page)
{
    return keepValue(config, config_keys::page, std::string(page));
}

std::vector<int> keptColumns(const config_file& config, std::string_view list, std::size_t count)
{
    const auto numbers = numbersOf(valueOf(config, std::string(config_keys::columns_prefix) += list));
    const auto isWidth = [](int width) { return width >= 0 && width <= widest_column; };
    if (!numbers || numbers->size() != count || !std::all_of(numbers->begin(), numbers->end(), isWidth))
        return {};
    return *numbers;
}

bool keepColumns(config_file& config, std::string_view list, std::span<const int> widths)
{
    return keepValue(config, std::string(config_keys::columns_prefix) += list, textOf(widths));
}

} // namespace korvane
