#include "EASY_GUI/win32/tree_view.h"

#include "EASY_GUI/win32/mark_colour.h"
#include "EASY_GUI/win32/wide_text.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <windowsx.h>

namespace korvane
{

namespace
{

constexpr std::size_t deepest_at_once = 100; // levels opened without being asked for, and looked through for a node
constexpr row_mark tree_pictures[] = {row_mark::plain, row_mark::note, row_mark::warning, row_mark::error};

int treePictureOf(row_mark mark)
{
    const auto found = std::find(std::begin(tree_pictures), std::end(tree_pictures), mark);
    return found == std::end(tree_pictures) ? 0 : static_cast<int>(found - std::begin(tree_pictures));
}

} // namespace

bool tree_view::create(HWND parent, int id, const tree_model& model, bool has_pictures)
{
    m_po_model = &model;
    m_has_pictures = has_pictures;
    // Its own tooltips know nothing of the model's.
    if (!createControl(WC_TREEVIEWW, parent, id, {},
                       TVS_HASBUTTONS | TVS_LINESATROOT | TVS_HASLINES | TVS_SHOWSELALWAYS | TVS_NOTOOLTIPS |
                           WS_TABSTOP,
                       WS_EX_CLIENTEDGE))
        return false;
    send(TVM_SETEXTENDEDSTYLE, TVS_EX_DOUBLEBUFFER, TVS_EX_DOUBLEBUFFER);
    m_dpi = static_cast<unsigned>(scaled(96));
    createPictures();
    restart();
    return true;
}

void tree_view::createPictures()
{
    if (!m_has_pictures)
        return;
    image_list fresh(scaled(16));
    for (const row_mark mark : tree_pictures)
        fresh.add(iconOf(mark, fresh.size()));
    send(TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(fresh.handle()));
    m_pictures = std::move(fresh);
}

void tree_view::restart()
{
    m_is_open.clear();
    fill();
    send(TVM_SELECTITEM, TVGN_FIRSTVISIBLE, send(TVM_GETNEXTITEM, TVGN_ROOT));
}

void tree_view::refresh()
{
    const std::optional<node> chosen = selected();
    const auto first_seen = reinterpret_cast<HTREEITEM>(send(TVM_GETNEXTITEM, TVGN_FIRSTVISIBLE));
    const node seen = first_seen != nullptr ? nodeOf(first_seen) : tree_model::root;
    fill();
    if (const HTREEITEM item = chosen ? itemOf(*chosen) : nullptr)
    {
        m_is_set = true;
        send(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
        m_is_set = false;
    }
    if (const HTREEITEM item = itemOf(seen))
        send(TVM_SELECTITEM, TVGN_FIRSTVISIBLE, reinterpret_cast<LPARAM>(item));
}

void tree_view::fill()
{
    m_is_set = true;
    send(WM_SETREDRAW, FALSE);
    send(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
    m_items.clear();
    m_pointed_at = nullptr;
    addChildren(tree_model::root, TVI_ROOT, 0);
    send(WM_SETREDRAW, TRUE);
    m_is_set = false;
    InvalidateRect(handle(), nullptr, TRUE);
}

void tree_view::addChildren(node parent, HTREEITEM under, std::size_t depth)
{
    HTREEITEM last = TVI_FIRST;
    for (std::size_t i = 0; i < m_po_model->childCount(parent); ++i)
    {
        const node child = m_po_model->child(parent, i);
        const bool has_children = m_po_model->childCount(child) != 0;
        TVINSERTSTRUCTW wanted{};
        wanted.hParent = under;
        wanted.hInsertAfter = last;
        wanted.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
        wanted.item.pszText = LPSTR_TEXTCALLBACKW;
        wanted.item.iImage = wanted.item.iSelectedImage = I_IMAGECALLBACK;
        wanted.item.lParam = static_cast<LPARAM>(child);
        wanted.item.cChildren = has_children;
        last = reinterpret_cast<HTREEITEM>(send(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&wanted)));
        if (last == nullptr)
            return;
        m_items[child] = last;
        const auto known = m_is_open.find(child);
        const bool is_open = known != m_is_open.end() ? known->second : m_po_model->isOpenAtFirst(child);
        if (!has_children || !is_open || depth >= deepest_at_once)
            continue;
        m_is_open[child] = true;
        addChildren(child, last, depth + 1);
        send(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(last));
    }
}

void tree_view::makeChildren(HTREEITEM item)
{
    if (send(TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(item)) == 0)
        addChildren(nodeOf(item), item, 0);
}

tree_view::node tree_view::nodeOf(HTREEITEM item) const
{
    TVITEMW asked{};
    asked.mask = TVIF_PARAM;
    asked.hItem = item;
    send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&asked));
    return static_cast<node>(asked.lParam);
}

HTREEITEM tree_view::itemOf(node wanted) const
{
    const auto found = m_items.find(wanted);
    return found == m_items.end() ? nullptr : found->second;
}

std::optional<tree_view::node> tree_view::selected() const
{
    const auto item = reinterpret_cast<HTREEITEM>(send(TVM_GETNEXTITEM, TVGN_CARET));
    return item != nullptr ? std::optional(nodeOf(item)) : std::nullopt;
}

std::vector<tree_view::node> tree_view::wayTo(node wanted) const
{
    std::vector<node> way;
    if (!m_po_model->parent(wanted))
        return findWay(wanted, tree_model::root, way) ? way : std::vector<node>();
    for (std::optional<node> at = wanted; at && *at != tree_model::root; at = m_po_model->parent(*at))
        way.insert(way.begin(), *at);
    return way;
}

bool tree_view::findWay(node wanted, node from, std::vector<node>& way) const
{
    for (std::size_t i = 0; i < m_po_model->childCount(from) && way.size() < deepest_at_once; ++i)
    {
        way.push_back(m_po_model->child(from, i));
        if (way.back() == wanted || findWay(wanted, way.back(), way))
            return true;
        way.pop_back();
    }
    return false;
}

void tree_view::select(node wanted)
{
    m_is_set = true;
    if (itemOf(wanted) == nullptr)
        for (const node above : wayTo(wanted))
            if (const HTREEITEM item = itemOf(above); item != nullptr && above != wanted)
                makeChildren(item);
    if (const HTREEITEM item = itemOf(wanted))
    {
        send(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
        send(TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
    }
    m_is_set = false;
}

void tree_view::open(node wanted, bool is_open)
{
    const HTREEITEM item = itemOf(wanted);
    if (item == nullptr)
        return;
    if (is_open)
        makeChildren(item);
    m_is_open[wanted] = is_open; // the system tells only what the person opens
    send(TVM_EXPAND, is_open ? TVE_EXPAND : TVE_COLLAPSE, reinterpret_cast<LPARAM>(item));
}

bool tree_view::isOpen(node wanted) const
{
    const HTREEITEM item = itemOf(wanted);
    return item != nullptr &&
           (send(TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), TVIS_EXPANDED) & TVIS_EXPANDED) != 0;
}

void tree_view::giveText(TVITEMW& item)
{
    const auto of = static_cast<node>(item.lParam);
    if ((item.mask & TVIF_TEXT) != 0)
    {
        m_text = toWide(m_po_model->text(of));
        item.pszText = m_text.data();
    }
    if ((item.mask & (TVIF_IMAGE | TVIF_SELECTEDIMAGE)) != 0)
        item.iImage = item.iSelectedImage = treePictureOf(m_po_model->mark(of));
}

LRESULT tree_view::draw(NMTVCUSTOMDRAW& stage) const
{
    if (stage.nmcd.dwDrawStage == CDDS_PREPAINT)
        return CDRF_NOTIFYITEMDRAW;
    if (stage.nmcd.dwDrawStage != CDDS_ITEMPREPAINT)
        return CDRF_DODEFAULT;
    const auto colour = textColour(m_po_model->mark(static_cast<node>(stage.nmcd.lItemlParam)));
    if (colour && (stage.nmcd.uItemState & CDIS_SELECTED) == 0) // there only the system's own text is sure to be read
        stage.clrText = *colour;
    return CDRF_DODEFAULT;
}

bool tree_view::onNotify(NMHDR& message, LRESULT& result)
{
    result = 0;
    switch (message.code)
    {
    case TVN_GETDISPINFOW:
        giveText(reinterpret_cast<NMTVDISPINFOW&>(message).item);
        return true;
    case NM_CUSTOMDRAW:
        result = draw(reinterpret_cast<NMTVCUSTOMDRAW&>(message));
        return true;
    case TVN_ITEMEXPANDINGW:
        if (const auto& opened = reinterpret_cast<const NMTREEVIEWW&>(message); opened.action == TVE_EXPAND)
            makeChildren(opened.itemNew.hItem);
        return true;
    case TVN_ITEMEXPANDEDW:
    {
        const auto& opened = reinterpret_cast<const NMTREEVIEWW&>(message);
        m_is_open[static_cast<node>(opened.itemNew.lParam)] = opened.action == TVE_EXPAND;
        return true;
    }
    case TVN_SELCHANGEDW:
        if (const auto& chosen = reinterpret_cast<const NMTREEVIEWW&>(message); !m_is_set && chosen.itemNew.hItem)
            tell(onSelect, static_cast<node>(chosen.itemNew.lParam));
        return true;
    case TVN_BEGINDRAGW:
        return tell(onDrag, static_cast<node>(reinterpret_cast<const NMTREEVIEWW&>(message).itemNew.lParam));
    case NM_RCLICK: // not every system tells the tree itself what it is to do
    {
        POINT at{};
        GetCursorPos(&at);
        if (onContextMenu)
            tellContextMenu(at);
        result = 1;
        return true;
    }
    case NM_RETURN:
    case NM_DBLCLK:
    {
        POINT at{};
        GetCursorPos(&at);
        ScreenToClient(handle(), &at);
        const std::optional<node> chosen = selected();
        if (!onActivate || !chosen || (message.code == NM_DBLCLK && itemAt(at) != itemOf(*chosen)))
            return false;
        result = 1; // a double click does not open the node as well
        return tell(onActivate, *chosen);
    }
    default:
        return false;
    }
}

void tree_view::tellContextMenu(POINT on_screen)
{
    POINT at = on_screen;
    ScreenToClient(handle(), &at);
    const bool is_key = on_screen.x == -1 && on_screen.y == -1;
    const HTREEITEM item = is_key ? reinterpret_cast<HTREEITEM>(send(TVM_GETNEXTITEM, TVGN_CARET)) : itemAt(at);
    if (item == nullptr)
        return;
    send(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item)); // a right click alone does not
    if (is_key)
    {
        const RECT area = textRectangle(item);
        on_screen = {area.left, area.bottom};
        ClientToScreen(handle(), &on_screen);
    }
    tell(onContextMenu, nodeOf(item), on_screen);
}

LRESULT tree_view::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    switch (message)
    {
    case WM_GETDLGCODE:
        if (isAboutEnter(lparam) && onActivate && selected())
            return control::handleMessage(message, wparam, lparam) | DLGC_WANTMESSAGE;
        break;
    case WM_CHAR:
        if (wparam == VK_RETURN || wparam == VK_ESCAPE)
            return 0; // it would beep
        break;
    case WM_CONTEXTMENU:
        if (onContextMenu)
            return tellContextMenu({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}), 0;
        break;
    case WM_MOUSEMOVE:
        if (const HTREEITEM item = itemAt({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}); item != m_pointed_at)
        {
            m_pointed_at = item;
            restartTip();
        }
        break;
    case WM_SETFONT: // which comes with another density, too
        if (const auto dpi = static_cast<unsigned>(scaled(96)); dpi != std::exchange(m_dpi, dpi))
            createPictures();
        break;
    default:
        break;
    }
    return control::handleMessage(message, wparam, lparam);
}

HTREEITEM tree_view::itemAt(POINT at) const
{
    TVHITTESTINFO hit{};
    hit.pt = at;
    send(TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    return (hit.flags & TVHT_ONITEM) != 0 ? hit.hItem : nullptr;
}

RECT tree_view::textRectangle(HTREEITEM item) const
{
    RECT area{};
    std::memcpy(&area, &item, sizeof item); // where the system looks for what is asked about
    return send(TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&area)) != 0 ? area : RECT{};
}

std::string tree_view::tipAt(POINT at) const
{
    const HTREEITEM item = itemAt(at);
    if (item == nullptr)
        return {};
    const node of = nodeOf(item);
    const RECT area = textRectangle(item);
    const std::string tip = m_po_model->tip(of);
    return area.right <= clientWidth() ? tip : tip.empty() ? m_po_model->text(of) : m_po_model->text(of) + "\r\n" + tip;
}

} // namespace korvane
