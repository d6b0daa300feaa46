#include "EASY_GUI/win32/image_view.h"

#include "EASY_GUI/win32/wide_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace korvane
{

namespace
{

constexpr int most_looked_at = 4; // pixels of the picture in each direction, for one of the window

} // namespace

bool image_view::createIn(HWND parent, failure& why, use wanted)
{
    m_use = wanted;
    window_settings settings;
    settings.parent = parent;
    settings.style = WS_CHILD | WS_VISIBLE | (wanted == use::zoom ? WS_TABSTOP : 0u);
    settings.x = settings.y = settings.width = settings.height = 0;
    settings.is_opaque = true;
    settings.wants_repeat_clicks = true;
    return create(settings, why);
}

void image_view::setPicture(int width, int height, std::span<const std::byte> rgba, std::shared_ptr<const void> owner)
{
    if (width <= 0 || height <= 0 ||
        rgba.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4)
        return;
    if (!owner)
    {
        const auto copy = std::make_shared<const std::vector<std::byte>>(rgba.begin(), rgba.end());
        rgba = *copy;
        owner = copy;
    }
    m_picture = rgba;
    m_po_owner = std::move(owner);
    m_size = {width, height};
    m_place.setPicture(width, height);
    m_composed.clear();
    invalidate();
}

void image_view::setEmpty(std::string_view text)
{
    m_picture = {};
    m_po_owner = nullptr;
    m_composed = {};
    m_text = text;
    m_place.fit();
    invalidate();
}

void image_view::onSize(int width, int height, size_change)
{
    m_place.setView(width, height);
    m_composed.clear();
    invalidate();
}

// The mean of what lies under a pixel, so that a large picture is not seen through holes; colours count as much as they
// are opaque.
std::uint32_t image_view::pixelOf(const span_of_pixels& columns, const span_of_pixels& rows, std::uint32_t behind) const
{
    if (columns.end - columns.begin == 1 && rows.end - rows.begin == 1) // enlarged: every pixel of a large window
    {
        const std::byte* const pixel =
            m_picture.data() + (static_cast<std::size_t>(rows.begin) * static_cast<std::size_t>(m_size.cx) +
                                static_cast<std::size_t>(columns.begin)) *
                                   4;
        const auto alpha = std::to_integer<std::uint32_t>(pixel[3]);
        std::uint32_t result = 0;
        for (std::size_t i = 0; i < 3; ++i)
            result = result << 8 | (alpha * std::to_integer<std::uint32_t>(pixel[i]) + (255 - alpha) * behind) / 255;
        return result;
    }
    std::array<std::uint64_t, 3> sums{};
    std::uint64_t alphas = 0, count = 0;
    for (int row = rows.begin; row < rows.end; row += rows.step)
    {
        const std::byte* const line =
            m_picture.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(m_size.cx) * 4;
        for (int column = columns.begin; column < columns.end; column += columns.step)
        {
            const std::byte* const pixel = line + static_cast<std::size_t>(column) * 4;
            const auto alpha = std::to_integer<std::uint64_t>(pixel[3]);
            alphas += alpha;
            ++count;
            for (std::size_t i = 0; i < 3; ++i)
                sums[i] += alpha * std::to_integer<std::uint64_t>(pixel[i]);
        }
    }
    const std::uint64_t whole = 255 * count;
    std::uint32_t result = 0;
    for (const std::uint64_t sum : sums)
        result = result << 8 | static_cast<std::uint32_t>((sum + (whole - alphas) * behind) / whole);
    return result;
}

std::vector<image_view::span_of_pixels> image_view::spans(int count, double begin, int size) const
{
    std::vector<span_of_pixels> result(static_cast<std::size_t>(count));
    const double scale = m_place.scale();
    const auto first = static_cast<int>(std::lround(begin));
    const auto shown = std::max(static_cast<int>(std::lround(size * scale)), 1);
    const auto from = [&](int at) {
        return std::clamp(static_cast<int>(static_cast<long long>(at) * size / shown), 0, size);
    };
    for (int at = std::max(first, 0); at < std::min(first + shown, count); ++at)
    {
        span_of_pixels& one = result[static_cast<std::size_t>(at)];
        one.begin = std::min(from(at - first), size - 1);
        one.end = std::min(std::max(from(at - first + 1), one.begin + 1), size);
        one.step = std::max((one.end - one.begin) / most_looked_at, 1);
    }
    return result;
}

void image_view::compose(int width, int height)
{
    const std::vector<span_of_pixels> columns = spans(width, m_place.left(), m_size.cx);
    const std::vector<span_of_pixels> rows = spans(height, m_place.top(), m_size.cy);
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    const std::uint32_t around = static_cast<std::uint32_t>(GetRValue(face)) << 16 |
                                 static_cast<std::uint32_t>(GetGValue(face)) << 8 | GetBValue(face);
    const std::size_t square = static_cast<std::size_t>(std::max(scaled(8), 1));
    constexpr std::uint32_t light = 255, dark = 204;
    m_composed.clear();
    m_composed.reserve(columns.size() * rows.size());
    for (std::size_t y = 0; y < rows.size(); ++y)
        for (std::size_t x = 0; x < columns.size(); ++x)
            m_composed.push_back(
                rows[y].begin == rows[y].end || columns[x].begin == columns[x].end
                    ? around
                    : pixelOf(columns[x], rows[y], ((x / square + y / square) & 1) != 0 ? dark : light));
}

void image_view::paintOn(HDC context, const RECT& client)
{
    FillRect(context, &client, GetSysColorBrush(COLOR_BTNFACE));
    if (m_picture.empty())
    {
        RECT area = client;
        const std::wstring text = toWide(m_text);
        const HGDIOBJ former = SelectObject(context, m_font != nullptr ? m_font : GetStockObject(DEFAULT_GUI_FONT));
        SetBkMode(context, TRANSPARENT);
        SetTextColor(context, GetSysColor(COLOR_BTNTEXT));
        constexpr UINT flags = DT_CENTER | DT_WORDBREAK | DT_NOPREFIX;
        DrawTextW(context, text.c_str(), -1, &area, flags | DT_CALCRECT);
        const LONG top = std::max((client.bottom - area.bottom) / 2, 0L);
        area = {0, top, client.right, client.bottom};
        DrawTextW(context, text.c_str(), -1, &area, flags);
        SelectObject(context, former);
        return;
    }
    if (m_composed.empty())
        compose(client.right, client.bottom);
    BITMAPINFO description{};
    description.bmiHeader.biSize = sizeof description.bmiHeader;
    description.bmiHeader.biWidth = client.right;
    description.bmiHeader.biHeight = -client.bottom; // from above
    description.bmiHeader.biPlanes = 1;
    description.bmiHeader.biBitCount = 32;
    SetDIBitsToDevice(context, 0, 0, static_cast<DWORD>(client.right), static_cast<DWORD>(client.bottom), 0, 0, 0,
                      static_cast<UINT>(client.bottom), m_composed.data(), &description, DIB_RGB_COLORS);
    if (GetFocus() == handle())
        DrawFocusRect(context, &client);
}

bool image_view::onPaint()
{
    PAINTSTRUCT paint{};
    const HDC screen = BeginPaint(handle(), &paint);
    const RECT client = clientRectangle();
    if (client.right > 0 && client.bottom > 0)
    {
        const HDC context = CreateCompatibleDC(screen);
        const HBITMAP buffer = CreateCompatibleBitmap(screen, client.right, client.bottom);
        const HGDIOBJ former = SelectObject(context, buffer);
        paintOn(context, client);
        BitBlt(screen, 0, 0, client.right, client.bottom, context, 0, 0, SRCCOPY);
        SelectObject(context, former);
        DeleteObject(buffer);
        DeleteDC(context);
    }
    EndPaint(handle(), &paint);
    return true;
}

void image_view::zoomed()
{
    m_composed.clear();
    invalidate();
    if (const auto told = onZoomed)
        told();
}

void image_view::fit()
{
    m_place.fit();
    zoomed();
}

void image_view::showActualSize()
{
    m_place.showActualSize();
    zoomed();
}

void image_view::zoom(int steps)
{
    m_place.zoom(steps);
    zoomed();
}

bool image_view::onKeyDown(unsigned virtual_key, bool)
{
    if (!isZoomable())
        return false;
    const RECT client = clientRectangle();
    const double across = client.right / 8.0, down = client.bottom / 8.0;
    switch (virtual_key)
    {
    case VK_ADD:
    case VK_OEM_PLUS:
        zoom(1);
        return true;
    case VK_SUBTRACT:
    case VK_OEM_MINUS:
        zoom(-1);
        return true;
    case '0':
    case VK_NUMPAD0:
        fit();
        return true;
    case '1':
    case VK_NUMPAD1:
        showActualSize();
        return true;
    case VK_LEFT:
        m_place.move(across, 0);
        break;
    case VK_RIGHT:
        m_place.move(-across, 0);
        break;
    case VK_UP:
        m_place.move(0, down);
        break;
    case VK_DOWN:
        m_place.move(0, -down);
        break;
    default:
        return false;
    }
    zoomed();
    return true;
}

bool image_view::onMouseWheel(int delta, const mouse_event& event)
{
    if (!isZoomable())
        return false;
    m_wheel += delta;
    const int steps = m_wheel / WHEEL_DELTA;
    m_wheel %= WHEEL_DELTA;
    m_place.zoom(steps, {static_cast<double>(event.at.x), static_cast<double>(event.at.y)});
    zoomed();
    return true;
}

bool image_view::onMouseButton(const mouse_event& event)
{
    if (event.button != mouse_button::left)
        return false;
    if (event.is_double)
    {
        const auto told = onDoubleClick;
        if (told)
            told();
        return told != nullptr;
    }
    if (!isZoomable())
        return false;
    if (event.is_down)
    {
        SetFocus(handle());
        m_dragged_from = event.at;
        SetCapture(handle());
    }
    else if (m_dragged_from)
        ReleaseCapture();
    return true;
}

bool image_view::onMouseMove(const mouse_event& event)
{
    if (m_dragged_from && isZoomable())
    {
        m_place.move(event.at.x - m_dragged_from->x, event.at.y - m_dragged_from->y);
        m_dragged_from = event.at;
        zoomed();
    }
    if (const auto told = onPointed)
    {
        TRACKMOUSEEVENT leaving{sizeof leaving, TME_LEAVE, handle(), 0};
        TrackMouseEvent(&leaving);
        const picture_point at = m_place.pictureAt({event.at.x + 0.5, event.at.y + 0.5});
        const POINT pixel{static_cast<LONG>(std::floor(at.x)), static_cast<LONG>(std::floor(at.y))};
        const bool is_inside =
            hasPicture() && pixel.x >= 0 && pixel.y >= 0 && pixel.x < m_size.cx && pixel.y < m_size.cy;
        told(is_inside ? std::optional(pixel) : std::nullopt);
    }
    return true;
}

LRESULT image_view::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    switch (message)
    {
    case WM_SETFONT:
        m_font = reinterpret_cast<HFONT>(wparam);
        invalidate();
        return 0;
    case WM_GETDLGCODE: // Tab, Enter and Escape stay the dialog's
        return m_use == use::zoom ? DLGC_WANTARROWS | DLGC_WANTCHARS : 0;
    case WM_SETFOCUS:
        tellFocused(handle());
        invalidate();
        break;
    case WM_KILLFOCUS:
        invalidate();
        break;
    case WM_MOUSELEAVE:
        if (const auto told = onPointed)
            told(std::nullopt);
        return 0;
    default:
        break;
    }
    return window::handleMessage(message, wparam, lparam);
}

} // namespace korvane
