#include "EASY_GUI/win32/image_view.h"

#include "EASY_GUI/win32/wide_text.h"

#include <algorithm>
#include <array>

namespace korvane
{

bool image_view::createIn(HWND parent, failure& why)
{
    return createChild(parent, WS_VISIBLE, 0, why, true);
}

void image_view::setPicture(int width, int height, std::span<const std::byte> rgba)
{
    if (width <= 0 || height <= 0 ||
        rgba.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4)
        return;
    m_picture.assign(rgba.begin(), rgba.end());
    m_size = {width, height};
    m_composed.clear();
    invalidate();
}

void image_view::setEmpty(std::string_view text)
{
    m_picture = {};
    m_composed = {};
    m_text = text;
    invalidate();
}

void image_view::onSize(int, int, size_change)
{
    m_composed.clear();
    invalidate();
}

// The mean of what lies under a pixel, so that a large picture is not seen through holes; colours count as much as they
// are opaque.
std::uint32_t image_view::pixelOf(int x, int y, SIZE shown) const
{
    const auto from = [](int position, LONG whole, LONG shown_size) {
        return static_cast<int>(static_cast<long long>(position) * whole / shown_size);
    };
    const int left = from(x, m_size.cx, shown.cx);
    const int top = from(y, m_size.cy, shown.cy);
    const int right = std::max(from(x + 1, m_size.cx, shown.cx), left + 1);
    const int bottom = std::max(from(y + 1, m_size.cy, shown.cy), top + 1);
    std::array<std::uint64_t, 3> sums{};
    std::uint64_t alphas = 0;
    for (int row = top; row < bottom; ++row)
    {
        const std::byte* pixel =
            m_picture.data() +
            (static_cast<std::size_t>(row) * static_cast<std::size_t>(m_size.cx) + static_cast<std::size_t>(left)) * 4;
        for (int column = left; column < right; ++column, pixel += 4)
        {
            const auto alpha = std::to_integer<std::uint64_t>(pixel[3]);
            alphas += alpha;
            for (std::size_t i = 0; i < 3; ++i)
                sums[i] += alpha * std::to_integer<std::uint64_t>(pixel[i]);
        }
    }
    const int square = std::max(scaled(8), 1);
    constexpr std::uint64_t light = 255, dark = 204;
    const std::uint64_t behind = ((x / square + y / square) & 1) != 0 ? dark : light;
    const std::uint64_t whole =
        255u * static_cast<std::uint64_t>(right - left) * static_cast<std::uint64_t>(bottom - top);
    std::uint32_t result = 0;
    for (const std::uint64_t sum : sums)
        result = result << 8 | static_cast<std::uint32_t>((sum + (whole - alphas) * behind) / whole);
    return result;
}

void image_view::compose(int width, int height)
{
    const double scale = std::min(static_cast<double>(width) / static_cast<double>(m_size.cx),
                                  static_cast<double>(height) / static_cast<double>(m_size.cy));
    m_composed_size = {
        std::clamp(static_cast<LONG>(scale * static_cast<double>(m_size.cx)), 1L, static_cast<LONG>(width)),
        std::clamp(static_cast<LONG>(scale * static_cast<double>(m_size.cy)), 1L, static_cast<LONG>(height))};
    m_composed.clear();
    m_composed.reserve(static_cast<std::size_t>(m_composed_size.cx) * static_cast<std::size_t>(m_composed_size.cy));
    for (int y = 0; y < m_composed_size.cy; ++y)
        for (int x = 0; x < m_composed_size.cx; ++x)
            m_composed.push_back(pixelOf(x, y, m_composed_size));
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
    description.bmiHeader.biWidth = m_composed_size.cx;
    description.bmiHeader.biHeight = -m_composed_size.cy; // from above
    description.bmiHeader.biPlanes = 1;
    description.bmiHeader.biBitCount = 32;
    SetDIBitsToDevice(context, (client.right - m_composed_size.cx) / 2, (client.bottom - m_composed_size.cy) / 2,
                      static_cast<DWORD>(m_composed_size.cx), static_cast<DWORD>(m_composed_size.cy), 0, 0, 0,
                      static_cast<UINT>(m_composed_size.cy), m_composed.data(), &description, DIB_RGB_COLORS);
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

LRESULT image_view::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_SETFONT)
    {
        m_font = reinterpret_cast<HFONT>(wparam);
        invalidate();
        return 0;
    }
    return window::handleMessage(message, wparam, lparam);
}

} // namespace korvane
