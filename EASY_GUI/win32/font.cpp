#include "EASY_GUI/win32/font.h"

#include "EASY_GUI/win32/dpi.h"
#include "EASY_GUI/win32/wide_text.h"

#include <cwchar>

namespace korvane
{

namespace
{

class screen_context // the screen's device context with a font selected
{
public:
    explicit screen_context(HFONT font)
        : m_context(GetDC(nullptr))
        , m_old(font != nullptr ? SelectObject(m_context, font) : nullptr)
    {
    }
    screen_context(const screen_context&) = delete;
    screen_context& operator=(const screen_context&) = delete;
    ~screen_context()
    {
        if (m_old != nullptr)
            SelectObject(m_context, m_old);
        ReleaseDC(nullptr, m_context);
    }
    HDC get() const { return m_context; }

private:
    HDC m_context;
    HGDIOBJ m_old;
};

} // namespace

font::font(unsigned dpi, weight wanted)
{
    LOGFONTW description = messageFont(dpi);
    if (wanted == weight::bold)
        description.lfWeight = FW_BOLD;
    if (wanted == weight::fixed_width)
    {
        description.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
        wcscpy(description.lfFaceName, L"Consolas"); // where there is none, another of this family
    }
    m_handle = unique_font(CreateFontIndirectW(&description));
    const screen_context context(m_handle.get());
    TEXTMETRICW metrics{};
    if (GetTextMetricsW(context.get(), &metrics))
        m_height = metrics.tmHeight + metrics.tmExternalLeading;
}

int font::widthOf(std::string_view text) const
{
    const screen_context context(m_handle.get());
    const std::wstring wide = toWide(text);
    SIZE size{};
    GetTextExtentPoint32W(context.get(), wide.c_str(), static_cast<int>(wide.size()), &size);
    return size.cx;
}

} // namespace korvane
