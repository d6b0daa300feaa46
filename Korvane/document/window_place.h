#pragma once

// Where a window stood, which page it showed and how wide its columns were, as values of the configuration. What stands
// there is a person's own to edit: nonsense is passed over. Pixels of the whole screen.

#include "EASY_GUI/services/config_file.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

struct screen_rect
{
    int left = 0, top = 0, right = 0, bottom = 0;

    int width() const { return right - left; }
    int height() const { return bottom - top; }
    friend bool operator==(const screen_rect&, const screen_rect&) = default;
};

struct window_place
{
    screen_rect outer; // when it is not maximised
    int dpi = 96;      // of the monitor that it stood on
    bool is_maximised = false;

    friend bool operator==(const window_place&, const window_place&) = default;
};

// A monitor as it is now.
struct monitor_area
{
    screen_rect work; // without task bars
    int dpi = 96;
};

// The key of each is one of config_keys.h. Nothing: none is kept, or it makes no sense.
[[nodiscard]] std::optional<window_place> keptPlace(const config_file& config, std::string_view key);
// True when the configuration changed.
bool keepPlace(config_file& config, std::string_view key, const window_place& place);

// Where to open a window that stood at a place: there when a monitor shows enough of it to be taken hold of, else in
// the middle of the first one, which is the main one. In the size that it had, for the monitor's dpi, and not larger
// than the monitor's work area. monitors is not empty.
[[nodiscard]] screen_rect fittedPlace(const window_place& place, std::span<const monitor_area> monitors);

// The name of a page, in lower case; empty: none is kept.
[[nodiscard]] std::string keptPage(const config_file& config);
bool keepPage(config_file& config, std::string_view page);

// At 96 dots per inch, one for each column of the list; empty: none are kept, or not as many. list is part of the key:
// "columns_problems".
[[nodiscard]] std::vector<int> keptColumns(const config_file& config, std::string_view list, std::size_t count);
bool keepColumns(config_file& config, std::string_view list, std::span<const int> widths);

} // namespace korvane
