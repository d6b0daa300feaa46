#include "EASY_GUI/win32/rich_edit.h"

#include "EASY_GUI/win32/handle_policies.h"
#include "EASY_GUI/win32/wide_text.h"

#include <algorithm>
#include <cstdlib>
#include <richedit.h>

namespace korvane
{

bool rich_edit::create(HWND parent, int id)
{
    // It stays loaded: controls of its class may outlive any object here.
    static const HMODULE library = LoadLibraryExW(L"Msftedit.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (library == nullptr ||
        !createControl(L"RICHEDIT50W", parent, id, {},
                       ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_VSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE))
        return false;
    send(EM_SETBKGNDCOLOR, TRUE, 0); // the system's, also when that changes
    send(EM_EXLIMITTEXT, 0, 0x7ffffffe);
    return true;
}

void rich_edit::setRuns(std::span<const rich_run> runs)
{
    m_runs.assign(runs.begin(), runs.end());
    showRuns();
}

void rich_edit::showRuns()
{
    LOGFONTW base{};
    if (GetObjectW(reinterpret_cast<HGDIOBJ>(send(WM_GETFONT)), sizeof base, &base) == 0)
        GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof base, &base);
    send(WM_SETREDRAW, FALSE);
    SetWindowTextW(handle(), L"");
    for (const rich_run& run : m_runs)
        append(run, base);
    send(EM_SETSEL, 0, 0);
    send(EM_SCROLLCARET);
    send(WM_SETREDRAW, TRUE);
    for (const int step : {SB_LINEDOWN, SB_LINEUP}) // some systems show no scroll bar before something has scrolled
        send(EM_SCROLL, static_cast<WPARAM>(step));
    InvalidateRect(handle(), nullptr, TRUE);
}

void rich_edit::append(const rich_run& run, const LOGFONTW& base)
{
    const bool is_heading = run.look == rich_run::style::heading;
    CHARFORMATW format{};
    format.cbSize = sizeof format;
    format.dwMask = CFM_FACE | CFM_SIZE | CFM_BOLD | CFM_COLOR;
    format.dwEffects = CFE_AUTOCOLOR | (run.look == rich_run::style::plain ? 0u : static_cast<DWORD>(CFE_BOLD));
    constexpr int twips_per_inch = 1440;
    const int height = MulDiv(std::abs(static_cast<int>(base.lfHeight)), twips_per_inch, scaled(96));
    format.yHeight = is_heading ? height * 5 / 4 : height;
    lstrcpynW(format.szFaceName, base.lfFaceName, LF_FACESIZE);
    const WPARAM end = static_cast<WPARAM>(GetWindowTextLengthW(handle()));
    send(EM_SETSEL, end, static_cast<LPARAM>(end));
    send(EM_SETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
    send(EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(toWide(run.text).c_str()));
}

LRESULT rich_edit::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    const LRESULT result = control::handleMessage(message, wparam, lparam);
    if (message == WM_SETFONT)
        showRuns(); // which have been made with the former one
    return message == WM_GETDLGCODE ? result & ~LRESULT{DLGC_WANTTAB | DLGC_WANTALLKEYS} : result;
}

} // namespace korvane
