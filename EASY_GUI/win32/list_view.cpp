#include "EASY_GUI/win32/list_view.h"

#include "EASY_GUI/win32/mark_colour.h"
#include "EASY_GUI/win32/wide_text.h"
#include "EASY_GUI/win32/window.h"

#include <algorithm>
#include <windowsx.h>

namespace korvane
{

namespace
{

constexpr UINT look_at_selection = WM_APP + 1; // once all of a click has happened
constexpr int smallest_column = 60;            // at 96 dots per inch
constexpr int cell_margin = 6;                 // on both sides of a cell's text
constexpr row_mark pictures_of[] = {row_mark::plain, row_mark::note, row_mark::warning, row_mark::error};

int pictureOf(row_mark mark)
{
    const auto found = std::find(std::begin(pictures_of), std::end(pictures_of), mark);
    return found == std::end(pictures_of) ? 0 : static_cast<int>(found - std::begin(pictures_of));
}

} // namespace

bool list_view::create(HWND parent, int id, const list_model& model, list_view_options options)
{
    m_po_model = &model;
    m_options = options;
    m_told = -1;
    m_is_look_due = false;
    const DWORD style = LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS | WS_TABSTOP |
                        (options.has_many ? 0u : static_cast<DWORD>(LVS_SINGLESEL));
    if (!createControl(WC_LISTVIEWW, parent, id, {}, style, WS_EX_CLIENTEDGE))
        return false;
    send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    m_dpi = static_cast<unsigned>(scaled(96));
    createPictures();
    int number = 0;
    for (const list_column& column : model.columns())
    {
        std::wstring title = toWide(column.title);
        LVCOLUMNW wanted{};
        wanted.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        wanted.pszText = title.data();
        wanted.cx = scaled(column.width);
        wanted.fmt = column.is_number ? LVCFMT_RIGHT : LVCFMT_LEFT;
        send(LVM_INSERTCOLUMNW, static_cast<WPARAM>(number++), reinterpret_cast<LPARAM>(&wanted));
    }
    refresh();
    return true;
}

void list_view::createPictures()
{
    if (!m_options.has_pictures)
        return;
    image_list fresh(scaled(16));
    for (const row_mark mark : pictures_of)
        fresh.add(iconOf(mark, fresh.size()));
    send(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(fresh.handle()));
    m_pictures = std::move(fresh);
}

void list_view::refresh()
{
    const int former = selected();
    m_is_set = true;
    send(LVM_SETITEMCOUNT, m_po_model->rowCount(), LVSICF_NOSCROLL);
    m_is_set = false;
    if (former >= 0 && !isRow(former))
        select(-1);
    fitLastColumn();
    InvalidateRect(handle(), nullptr, FALSE);
}

// Asked first, for it is known: to look for a selected row takes the system tens of milliseconds in a million, and to
// release them all a second.
std::size_t list_view::selectedCount() const
{
    return static_cast<std::size_t>(send(LVM_GETSELECTEDCOUNT));
}

void list_view::release(UINT states)
{
    if (selectedCount() == 0)
        return;
    LVITEMW state{};
    state.stateMask = states;
    const int only = selectedCount() == 1 ? selected() : -1;
    if (only < 0)
        return setAll(state);
    send(LVM_SETITEMSTATE, static_cast<WPARAM>(only), reinterpret_cast<LPARAM>(&state));
}

// Some systems look for the place of each row on the screen, unless nothing is to be drawn: seconds for 200,000.
void list_view::setAll(LVITEMW& state)
{
    send(WM_SETREDRAW, FALSE);
    send(LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&state));
    send(WM_SETREDRAW, TRUE);
    InvalidateRect(handle(), nullptr, FALSE);
}

void list_view::setSelected(int row, bool is_selected)
{
    LVITEMW state{};
    state.stateMask = LVIS_SELECTED;
    state.state = is_selected ? LVIS_SELECTED : 0u;
    m_is_set = true;
    send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
    m_is_set = false;
}

// Whether the person goes from the one row that is selected to another one.
bool list_view::isToSelectAnother(UINT message, WPARAM wparam, LPARAM lparam) const
{
    constexpr WPARAM moves[] = {VK_UP, VK_DOWN, VK_PRIOR, VK_NEXT, VK_HOME, VK_END};
    if (selectedCount() != 1 || (m_options.has_many && (GetKeyState(VK_CONTROL) < 0 || GetKeyState(VK_SHIFT) < 0)))
        return false;
    if (message == WM_KEYDOWN)
        return std::find(std::begin(moves), std::end(moves), wparam) != std::end(moves);
    if (message == WM_CHAR)
        return wparam > ' ';
    if (message != WM_LBUTTONDOWN && message != WM_RBUTTONDOWN)
        return false;
    const int row = cellAt({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}).first;
    return row >= 0 && send(LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) == 0;
}

// Some systems release each row of a list before they select another one, which takes many seconds with millions of
// rows, unless none is selected by then.
LRESULT list_view::selectAnother(UINT message, WPARAM wparam, LPARAM lparam)
{
    const HWND list = handle();
    const int former = selected();
    if (former >= 0)
        setSelected(former, false);
    const LRESULT result = control::handleMessage(message, wparam, lparam);
    if (IsWindow(list) && former >= 0 && selectedCount() == 0 && isRow(former)) // it stays after all
        setSelected(former, true);
    return result;
}

int list_view::selected() const
{
    if (selectedCount() == 0)
        return -1;
    const UINT wanted = LVIS_SELECTED | (m_options.has_many ? LVIS_FOCUSED : 0u);
    // Mostly the row at which a choice began; to look for it takes as long as there are rows before it.
    const LRESULT begin = send(LVM_GETSELECTIONMARK);
    if (isRow(static_cast<int>(begin)) &&
        static_cast<UINT>(send(LVM_GETITEMSTATE, static_cast<WPARAM>(begin), wanted)) == wanted)
        return static_cast<int>(begin);
    return static_cast<int>(
        send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED | (m_options.has_many ? LVNI_FOCUSED : 0)));
}

std::vector<std::size_t> list_view::selectedRows() const
{
    std::vector<std::size_t> rows;
    if (selectedCount() == 0)
        return rows;
    for (LRESULT row = -1; (row = send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)) >= 0;)
        rows.push_back(static_cast<std::size_t>(row));
    return rows;
}

void list_view::select(int row)
{
    m_is_set = true;
    release(LVIS_SELECTED | LVIS_FOCUSED);
    if (isRow(row))
    {
        LVITEMW state{};
        state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        state.state = state.stateMask;
        send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
        send(LVM_SETSELECTIONMARK, 0, row); // where a choice with Shift begins
        send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    }
    m_is_set = false;
    m_told = selected();
}

void list_view::select(std::span<const std::size_t> rows)
{
    LVITEMW state{};
    state.stateMask = LVIS_SELECTED;
    m_is_set = true;
    release(LVIS_SELECTED);
    state.state = LVIS_SELECTED;
    for (const std::size_t row : rows)
        send(LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&state));
    m_is_set = false;
}

void list_view::selectAll()
{
    LVITEMW state{};
    state.stateMask = state.state = LVIS_SELECTED;
    m_is_set = true;
    setAll(state);
    m_is_set = false;
    tellSelection(false);
}

std::vector<int> list_view::columnWidths() const
{
    std::vector<int> widths;
    for (std::size_t column = 0; column < m_po_model->columns().size(); ++column)
        widths.push_back(MulDiv(static_cast<int>(send(LVM_GETCOLUMNWIDTH, column)), 96, static_cast<int>(m_dpi)));
    return widths;
}

void list_view::setColumnWidths(std::span<const int> widths)
{
    for (std::size_t column = 0; column < std::min(widths.size(), m_po_model->columns().size()); ++column)
        if (widths[column] > 0)
            send(LVM_SETCOLUMNWIDTH, column, MulDiv(widths[column], static_cast<int>(m_dpi), 96));
    fitLastColumn();
}

void list_view::showSorting(int column, bool is_descending)
{
    const auto header = reinterpret_cast<HWND>(send(LVM_GETHEADER));
    for (std::size_t i = 0; i < m_po_model->columns().size(); ++i)
    {
        HDITEMW title{};
        title.mask = HDI_FORMAT;
        SendMessageW(header, HDM_GETITEMW, i, reinterpret_cast<LPARAM>(&title));
        title.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
        if (static_cast<int>(i) == column)
            title.fmt |= is_descending ? HDF_SORTDOWN : HDF_SORTUP;
        SendMessageW(header, HDM_SETITEMW, i, reinterpret_cast<LPARAM>(&title));
    }
}

// The column that has no width of its own takes what the others leave.
void list_view::fitLastColumn()
{
    const std::span<const list_column> columns = m_po_model->columns();
    const auto found =
        std::find_if(columns.begin(), columns.end(), [](const list_column& column) { return column.width == 0; });
    if (found == columns.end() || clientWidth() == 0)
        return;
    const auto fitted = static_cast<std::size_t>(found - columns.begin());
    LRESULT rest = clientWidth();
    for (std::size_t column = 0; column < columns.size(); ++column)
        rest -= column == fitted ? 0 : send(LVM_GETCOLUMNWIDTH, column);
    rest = std::max<LRESULT>(rest, scaled(smallest_column));
    if (send(LVM_GETCOLUMNWIDTH, fitted) != rest)
        send(LVM_SETCOLUMNWIDTH, fitted, rest);
}

void list_view::giveText(LVITEMW& item)
{
    if (!isRow(item.iItem))
        return; // a row that went since it was painted
    if ((item.mask & LVIF_TEXT) != 0)
    {
        m_text =
            toWide(m_po_model->text(static_cast<std::size_t>(item.iItem), static_cast<std::size_t>(item.iSubItem)));
        item.pszText = m_text.data();
    }
    if ((item.mask & LVIF_IMAGE) != 0)
        item.iImage = pictureOf(m_po_model->mark(static_cast<std::size_t>(item.iItem)));
}

LRESULT list_view::draw(NMLVCUSTOMDRAW& stage) const
{
    if (stage.nmcd.dwDrawStage == CDDS_PREPAINT)
        return CDRF_NOTIFYITEMDRAW;
    const int row = static_cast<int>(stage.nmcd.dwItemSpec);
    if (stage.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || !isRow(row))
        return CDRF_DODEFAULT;
    const bool is_selected = send(LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) != 0;
    const auto colour = textColour(m_po_model->mark(static_cast<std::size_t>(row)));
    if (colour && !is_selected) // on the colour of the selection only the system's own text is sure to be read
        stage.clrText = *colour;
    return CDRF_DODEFAULT;
}

int list_view::findFrom(const NMLVFINDITEMW& wanted) const
{
    if ((wanted.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) == 0 || wanted.lvfi.psz == nullptr)
        return -1;
    const int length = lstrlenW(wanted.lvfi.psz);
    const auto count = static_cast<int>(m_po_model->rowCount());
    for (int i = 0; i < count; ++i)
    {
        const int row = (std::max(wanted.iStart, 0) + i) % count;
        const std::wstring text = toWide(m_po_model->text(static_cast<std::size_t>(row), 0));
        if (static_cast<int>(text.size()) >= length &&
            CompareStringOrdinal(text.c_str(), length, wanted.lvfi.psz, length, TRUE) == CSTR_EQUAL)
            return row;
    }
    return -1;
}

bool list_view::onNotify(NMHDR& message, LRESULT& result)
{
    result = 0;
    switch (message.code)
    {
    case LVN_GETDISPINFOW:
        giveText(reinterpret_cast<NMLVDISPINFOW&>(message).item);
        return true;
    case NM_CUSTOMDRAW:
        result = draw(reinterpret_cast<NMLVCUSTOMDRAW&>(message));
        return true;
    case LVN_ODFINDITEMW:
        result = findFrom(reinterpret_cast<const NMLVFINDITEMW&>(message));
        return true;
    case LVN_ITEMCHANGED:
    {
        const auto& changed = reinterpret_cast<const NMLISTVIEW&>(message);
        const bool is_selected = (changed.uNewState & ~changed.uOldState & LVIS_SELECTED) != 0;
        if (!m_is_set)
            tellSelection(false, is_selected ? changed.iItem : -1);
        return true;
    }
    case LVN_ODSTATECHANGED:
        if (!m_is_set)
            tellSelection(false);
        return true;
    case LVN_ITEMACTIVATE:
        if (const int row = selected(); isRow(row)) // for Enter some systems send no row along
            tell(onActivate, row);
        return true;
    case LVN_BEGINDRAG:
        return tell(onDrag);
    case LVN_COLUMNCLICK:
        tell(onColumn, reinterpret_cast<const NMLISTVIEW&>(message).iSubItem);
        return true;
    default:
        return false;
    }
}

// Choosing another row first leaves none selected: that is not told before all of the click has happened. Of many rows
// that change at once the last is told, once.
void list_view::tellSelection(bool may_be_none, int known)
{
    // Of many rows at once each is told of: one look at the end will do.
    const int now = !may_be_none && m_options.has_many ? -1 : known >= 0 ? known : selected();
    if (!may_be_none && now < 0)
    {
        if (!std::exchange(m_is_look_due, true))
            PostMessageW(handle(), look_at_selection, 0, 0);
        return;
    }
    if (now == m_told && !m_options.has_many)
        return;
    m_told = now;
    tell(onSelect, now);
}

void list_view::tellContextMenu(POINT on_screen)
{
    int row = selected();
    if (on_screen.x == -1 && on_screen.y == -1) // by key
    {
        RECT area{LVIR_LABEL, 0, 0, 0};
        on_screen = {0, 0};
        if (row >= 0 && send(LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&area)) != 0)
            on_screen = {area.left, area.bottom};
        ClientToScreen(handle(), &on_screen);
    }
    else
    {
        POINT at = on_screen;
        ScreenToClient(handle(), &at);
        row = cellAt(at).first;
    }
    tell(onContextMenu, row, on_screen);
}

LRESULT list_view::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    switch (message)
    {
    case look_at_selection:
        m_is_look_due = false;
        tellSelection(true);
        return 0;
    case WM_GETDLGCODE:
        if (isAboutEnter(lparam) && onActivate && selected() >= 0)
            return control::handleMessage(message, wparam, lparam) | DLGC_WANTMESSAGE;
        break;
    case WM_KEYDOWN:
        if (wparam == 'A' && m_options.has_many && GetKeyState(VK_CONTROL) < 0)
            return selectAll(), 0;
        if (const auto act = onKey; act && act(static_cast<unsigned>(wparam)))
            return 0;
        [[fallthrough]];
    case WM_CHAR:
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
        if (isToSelectAnother(message, wparam, lparam))
            return selectAnother(message, wparam, lparam);
        break;
    case WM_CONTEXTMENU:
        if (reinterpret_cast<HWND>(wparam) == handle() && onContextMenu)
            return tellContextMenu({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}), 0;
        break;
    case WM_MOUSEMOVE:
        if (const auto cell = cellAt({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}); cell != m_pointed_at)
        {
            m_pointed_at = cell;
            restartTip();
        }
        break;
    case WM_SIZE:
    {
        const LRESULT result = control::handleMessage(message, wparam, lparam);
        fitLastColumn();
        return result;
    }
    case WM_SETFONT: // which comes with another density, too
    {
        const std::vector<int> widths = columnWidths();
        if (const auto dpi = static_cast<unsigned>(scaled(96)); dpi != std::exchange(m_dpi, dpi))
        {
            createPictures();
            setColumnWidths(widths);
        }
        break;
    }
    default:
        break;
    }
    return control::handleMessage(message, wparam, lparam);
}

std::pair<int, int> list_view::cellAt(POINT at) const
{
    LVHITTESTINFO hit{};
    hit.pt = at;
    const auto row = static_cast<int>(send(LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
    return row >= 0 ? std::pair{row, hit.iSubItem} : std::pair{-1, -1};
}

std::string list_view::tipAt(POINT at) const
{
    const auto [row, column] = cellAt(at);
    if (!isRow(row) || column < 0)
        return {};
    const auto position = static_cast<std::size_t>(row);
    const std::string text = m_po_model->text(position, static_cast<std::size_t>(column));
    const int picture = column == 0 && m_options.has_pictures ? m_pictures.size() + scaled(4) : 0;
    const bool is_cut = widthOf(text) + picture + 2 * scaled(cell_margin) >
                        static_cast<int>(send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
    const std::string tip = m_po_model->tip(position);
    return !is_cut ? tip : tip.empty() ? text : text + "\r\n" + tip;
}

} // namespace korvane
