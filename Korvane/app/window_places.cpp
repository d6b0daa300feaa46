#include "Korvane/app/window_places.h"

#include "EASY_GUI/win32/dpi.h"

namespace korvane
{

namespace
{

// Of a monitor, for a window that will stand there: the system knows it of windows only, so that of the window it is.
std::vector<monitor_area> presentMonitors(HWND window)
{
    struct monitor_list
    {
        std::vector<monitor_area> areas;
        int dpi;
    } list{{}, static_cast<int>(dpiOf(window))};
    EnumDisplayMonitors(
        nullptr, nullptr,
        [](HMONITOR monitor, HDC, LPRECT, LPARAM found) -> BOOL {
            auto& list = *reinterpret_cast<monitor_list*>(found);
            MONITORINFO info{};
            info.cbSize = sizeof info;
            if (!GetMonitorInfoW(monitor, &info))
                return TRUE;
            const RECT& work = info.rcWork;
            const monitor_area area{{work.left, work.top, work.right, work.bottom}, list.dpi};
            const bool is_main = (info.dwFlags & MONITORINFOF_PRIMARY) != 0;
            list.areas.insert(is_main ? list.areas.begin() : list.areas.end(), area);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&list));
    return list.areas;
}

} // namespace

std::optional<window_place> placeOf(HWND shown)
{
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    RECT now{};
    if (shown == nullptr || !GetWindowPlacement(shown, &placement) || !GetWindowRect(shown, &now))
        return std::nullopt;
    // What the system calls the normal place leaves the task bar out of its pixels: it is used only when it must be.
    const bool is_normal = IsZoomed(shown) == 0 && IsIconic(shown) == 0;
    const RECT& outer = is_normal ? now : placement.rcNormalPosition;
    return window_place{{outer.left, outer.top, outer.right, outer.bottom},
                        static_cast<int>(dpiOf(shown)),
                        IsZoomed(shown) != 0 || (placement.flags & WPF_RESTORETOMAXIMIZED) != 0};
}

bool restorePlace(HWND moved, const shared_config& config, std::string_view key, bool& is_maximised)
{
    const std::optional<window_place> kept = keptPlace(config.table(), key);
    const std::vector<monitor_area> monitors = presentMonitors(moved);
    if (!kept || monitors.empty())
        return false;
    const screen_rect place = fittedPlace(*kept, monitors);
    SetWindowPos(moved, nullptr, place.left, place.top, place.width(), place.height(), SWP_NOZORDER | SWP_NOACTIVATE);
    is_maximised = kept->is_maximised;
    return true;
}

} // namespace korvane
