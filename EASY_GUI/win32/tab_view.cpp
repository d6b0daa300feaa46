#include "EASY_GUI/win32/tab_view.h"

#include "EASY_GUI/win32/wide_text.h"

#include <array>
#include <commctrl.h>

namespace korvane
{

bool tab_view::create(HWND parent, int id)
{
    return createControl(WC_TABCONTROLW, parent, id, {}, WS_TABSTOP | WS_CLIPSIBLINGS);
}

int tab_view::add(std::string_view caption)
{
    std::wstring text = toWide(caption);
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = text.data();
    return static_cast<int>(send(TCM_INSERTITEMW, static_cast<WPARAM>(count()), reinterpret_cast<LPARAM>(&item)));
}

void tab_view::setCaption(int page, std::string_view caption)
{
    if (this->caption(page) == caption)
        return; // the system would paint all of them again
    std::wstring text = toWide(caption);
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = text.data();
    send(TCM_SETITEMW, static_cast<WPARAM>(page), reinterpret_cast<LPARAM>(&item));
    InvalidateRect(handle(), nullptr, TRUE); // a shorter one leaves room at the end
}

std::string tab_view::caption(int page) const
{
    std::array<wchar_t, 256> text{};
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    return send(TCM_GETITEMW, static_cast<WPARAM>(page), reinterpret_cast<LPARAM>(&item)) != 0 ? fromWide(item.pszText)
                                                                                               : std::string();
}

int tab_view::count() const
{
    return static_cast<int>(send(TCM_GETITEMCOUNT));
}

void tab_view::select(int page)
{
    send(TCM_SETCURSEL, static_cast<WPARAM>(page));
}

int tab_view::selected() const
{
    return static_cast<int>(send(TCM_GETCURSEL));
}

void tab_view::selectNext(bool is_backwards)
{
    const int pages = count();
    if (pages == 0)
        return;
    const int next = (selected() + (is_backwards ? pages - 1 : 1)) % pages;
    select(next);
    tell(onSelect, next);
}

RECT tab_view::displayRectangle() const
{
    RECT area{};
    GetWindowRect(handle(), &area);
    MapWindowPoints(nullptr, GetParent(handle()), reinterpret_cast<POINT*>(&area), 2);
    send(TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
    return area;
}

int tab_view::captionWidth() const
{
    RECT last{};
    send(TCM_GETITEMRECT, static_cast<WPARAM>(count() - 1), reinterpret_cast<LPARAM>(&last));
    return last.right;
}

bool tab_view::onNotify(NMHDR& message, LRESULT&)
{
    return message.code == TCN_SELCHANGE && tell(onSelect, selected());
}

} // namespace korvane
