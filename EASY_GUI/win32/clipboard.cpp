#include "EASY_GUI/win32/clipboard.h"

#include "EASY_GUI/win32/wide_text.h"

#include <cstring>

namespace korvane
{

namespace
{

class open_clipboard
{
public:
    explicit open_clipboard(HWND owner)
    {
        constexpr int attempts = 10;
        constexpr DWORD pause = 20; // milliseconds
        for (int i = 0; i < attempts && !m_is_open; ++i)
        {
            if (i > 0)
                Sleep(pause);
            m_is_open = OpenClipboard(owner) != FALSE;
        }
    }
    open_clipboard(const open_clipboard&) = delete;
    open_clipboard& operator=(const open_clipboard&) = delete;
    ~open_clipboard()
    {
        if (m_is_open)
            CloseClipboard();
    }
    bool isOpen(failure& why) const
    {
        return m_is_open ||
               fail(why, failure_kind::refused, "the clipboard is in use by another program; try it again");
    }

private:
    bool m_is_open = false;
};

} // namespace

bool setClipboardText(HWND owner, std::string_view text, failure& why)
{
    const std::wstring wide = toWide(text);
    const std::size_t bytes = (wide.size() + 1) * sizeof(wchar_t);
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes);
    if (block == nullptr)
        return fail(why, failure_kind::refused, "there is no memory for a copy of the text");
    std::memcpy(GlobalLock(block), wide.c_str(), bytes);
    GlobalUnlock(block);
    const open_clipboard opened(owner);
    if (opened.isOpen(why) && EmptyClipboard() && SetClipboardData(CF_UNICODETEXT, block) != nullptr)
        return true; // the clipboard owns the block now
    GlobalFree(block);
    return why ? false : fail(why, failure_kind::refused, "the clipboard did not take the text");
}

std::optional<std::string> clipboardText(HWND owner, failure& why)
{
    const open_clipboard opened(owner);
    if (!opened.isOpen(why))
        return std::nullopt;
    const HANDLE block = GetClipboardData(CF_UNICODETEXT);
    const auto* const text = block != nullptr ? static_cast<const wchar_t*>(GlobalLock(block)) : nullptr;
    if (text == nullptr)
        return std::nullopt;
    // Another program wrote it: its end may be missing.
    const std::size_t room = GlobalSize(block) / sizeof(wchar_t);
    const std::string found = fromWide({text, wcsnlen(text, room)});
    GlobalUnlock(block);
    return found;
}

} // namespace korvane
