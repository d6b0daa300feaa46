#include "Korvane/app/texture_field_group.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/clipboard.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/copy_paste.h"
#include "Korvane/textures/picture_file.h"

#include <algorithm>
#include <shellapi.h>
#include <utility>

namespace korvane
{

namespace
{

// At 96 dots per inch.
constexpr int frame_padding = 10;
constexpr int row_gap = 6;
constexpr int marker_width = 3;
constexpr int type_list_width = 108;
constexpr int preview_width = 176;

enum row_menu : int
{
    menu_choose = 1,
    menu_replace,
    menu_replace_by_new,
    menu_edit,
    menu_copy,
    menu_paste,
    menu_view,
    menu_show_place
};

bool isPicture(const std::string& path)
{
    // Of those that cannot be read the command says what to do.
    return pictureKind(path).has_value() || endsWithIgnoringCase(path, ".dds") || isForeignPicture(path);
}

} // namespace

texture_field_group::texture_field_group(page_host& host, texture_ports ports)
    : m_host(host)
    , m_preview(host.thread())
    , m_window(host)
    , m_commands(host, std::move(ports),
                 {[this] {
                      showRows();
                      showPreview(true);
                  },
                  [this](const work_progress& now) {
                      m_progress.setRange(static_cast<int>(std::max<std::size_t>(1, now.total)));
                      m_progress.setPosition(static_cast<int>(now.done));
                  },
                  [this](const std::string& text) { m_status.setText(text); }})
{
}

bool texture_field_group::createIn(HWND parent, failure& why)
{
    if (createChild(parent, WS_VISIBLE | WS_CLIPSIBLINGS, WS_EX_CONTROLPARENT | WS_EX_ACCEPTFILES, why))
        return true;
    why.what = "the texture panel could not be created: " + why.what;
    return false;
}

bool texture_field_group::onCreated()
{
    if (!m_frame.create(handle(), control_frame, "Textures:") || !m_marker.create(handle(), control_texture_marker))
        return false;
    for (std::size_t i = 0; i < m_rows.size(); ++i)
    {
        if (!m_rows[i].create(handle(), static_cast<int>(i)))
            return false;
        answerOthers();
        m_rows[i].onTyped = [this, i] { setPath(i); };
        m_rows[i].onPaste = [this] { return pasteClipboard(); };
        m_rows[i].onChoose = [this, i] {
            select(static_cast<int>(i), false);
            m_host.runCommand(document_command::choose_texture);
        };
    }
    m_preview.onOpen = [this] { view(); };
    failure why;
    return m_preview.createIn(handle(), why) && createBelow();
}

bool texture_field_group::createBelow()
{
    const auto runs = [this](document_command command) { return [this, command] { m_host.runCommand(command); }; };
    if (!m_replace.create(handle(), control_replace_picture, "Repla&ce Picture...") ||
        !m_edit.create(handle(), control_edit_picture, "Edit Picture...") ||
        !m_extract.create(handle(), control_extract_textures, "Find+Upack DDS") ||
        !m_choose_folder.create(handle(), control_choose_texture_folder, "Select Dir...") ||
        !m_open_folder.create(handle(), control_open_texture_folder, "Open Dir...") ||
        !m_is_flat.create(handle(), control_textures_flat, "Flat") ||
        !m_is_picture.create(handle(), control_textures_as_picture, "As picture:") ||
        !m_picture_kind.create(handle(), control_picture_kind) || !m_progress.create(handle(), control_progress) ||
        !m_status.create(handle(), control_extraction_status))
        return false;
    m_replace.onClick = runs(document_command::replace_picture);
    m_edit.onClick = runs(document_command::edit_picture);
    m_extract.onClick = runs(document_command::extract_textures);
    m_choose_folder.onClick = runs(document_command::choose_texture_folder);
    m_open_folder.onClick = runs(document_command::open_texture_folder);
    m_replace.setTip("A PNG, Targa or DDS picture becomes the texture of the selected row, in the mod folder");
    m_edit.setTip("Opens the texture of the selected row in a paint program; each time it is saved it is taken up");
    m_extract.setTip("Extracts all textures of the model into the folder");
    m_is_flat.setTip("All files in the folder itself; else in folders as in the game");
    m_picture_kind.add("PNG");
    m_picture_kind.add("Targa");
    m_is_flat.onClick = [this](bool is_flat) { m_commands.extraction().setFlat(is_flat); };
    m_is_picture.onClick = [this](bool) { takeForm(); };
    m_picture_kind.onSelect = [this](int) { takeForm(); };
    m_below = belowRows();
    showExtraction();
    return true;
}

layout texture_field_group::belowRows()
{
    layout rows(layout::direction::down);
    layout extraction(layout::direction::across);
    extraction.add(m_extract).add(m_choose_folder).add(m_open_folder).add(m_is_flat).add(m_is_picture);
    extraction.add(m_picture_kind, fixed(70)).add(share());
    rows.add(std::move(extraction));
    rows.add(layout(layout::direction::across).add(m_progress, fixed(type_list_width)).add(m_status, share()));
    return rows;
}

void texture_field_group::takeForm()
{
    using form = texture_extraction_panel::form;
    const bool is_picture = m_is_picture.isChecked();
    m_picture_kind.setEnabled(is_picture);
    m_commands.extraction().setWrittenAs(!is_picture                      ? form::dds
                                         : m_picture_kind.selected() == 1 ? form::targa
                                                                          : form::png);
}

void texture_field_group::showExtraction()
{
    using form = texture_extraction_panel::form;
    const texture_extraction_panel& chosen = m_commands.extraction();
    m_is_flat.check(chosen.isFlat());
    m_is_picture.check(chosen.writtenAs() != form::dds);
    m_picture_kind.select(chosen.writtenAs() == form::targa ? 1 : 0);
    m_picture_kind.setEnabled(chosen.writtenAs() != form::dds);
    m_status.setText(chosen.folderText());
}

void texture_field_group::setFont(const font& used)
{
    m_po_font = &used;
    for (HWND child = GetWindow(handle(), GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(used.handle()), TRUE);
    m_preview.setFont(used);
    const RECT client = clientRectangle();
    onSize(client.right, client.bottom, size_change::restored);
}

int texture_field_group::rowHeight() const
{
    constexpr int borders = 4;
    return (m_po_font != nullptr ? m_po_font->height() : scaled(13)) + scaled(4) + borders;
}

RECT texture_field_group::rowPlace(std::size_t row) const
{
    const int first = (m_po_font != nullptr ? m_po_font->height() : scaled(13)) + scaled(row_gap);
    const LONG top = first + static_cast<LONG>(row) * (rowHeight() + scaled(row_gap));
    return {scaled(frame_padding), top, rowsWidth(), top + rowHeight()};
}

int texture_field_group::rowsWidth() const // right edge
{
    return clientRectangle().right - scaled(frame_padding) - scaled(preview_width) - 2 * scaled(row_gap);
}

int texture_field_group::preferredHeight() const
{
    const int below = m_po_font != nullptr && m_below ? m_below->smallest(*m_po_font, dpi()).cy : 0;
    return rowPlace(texture_row_count).top + m_replace.naturalSize().cy + scaled(row_gap) + below +
           scaled(frame_padding);
}

void texture_field_group::place(int x, int y, int width, int height)
{
    SetWindowPos(handle(), nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void texture_field_group::onSize(int width, int height, size_change)
{
    if (m_po_font == nullptr || !m_below || width == 0) // without a place yet
        return;
    const int gap = scaled(row_gap);
    m_frame.place(0, 0, width, height);
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        m_rows[i].place(rowPlace(i), *m_po_font, gap, scaled(type_list_width));
    const RECT after = rowPlace(texture_row_count);
    const SIZE replace = m_replace.naturalSize();
    const SIZE edit = m_edit.naturalSize();
    m_replace.place(after.left, after.top, replace.cx, replace.cy);
    m_edit.place(after.left + replace.cx + gap, after.top, edit.cx, edit.cy);
    const int below = after.top + replace.cy + gap;
    const RECT first = rowPlace(0);
    SetWindowPos(m_preview.handle(), nullptr, rowsWidth() + 2 * gap, first.top, scaled(preview_width),
                 below - gap - first.top, SWP_NOZORDER | SWP_NOACTIVATE);
    m_below->place({scaled(frame_padding), below, width - scaled(frame_padding), height - scaled(frame_padding)},
                   *m_po_font, dpi());
    placeMarker();
    invalidate();
}

void texture_field_group::placeMarker()
{
    const RECT place = rowPlace(row());
    m_marker.place(place.left - 2 * scaled(marker_width), place.top, scaled(marker_width), place.bottom - place.top);
    m_marker.setVisible(m_commands.isUsed(row()));
}

int texture_field_group::rowOf(HWND control) const
{
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        if (control != nullptr && m_rows[i].has(control))
            return static_cast<int>(i);
    return -1;
}

int texture_field_group::rowAt(POINT at) const
{
    for (std::size_t i = 0; i < m_rows.size(); ++i)
    {
        RECT place = rowPlace(i);
        InflateRect(&place, scaled(row_gap), scaled(row_gap) / 2);
        if (PtInRect(&place, at))
            return static_cast<int>(i);
    }
    return -1;
}

void texture_field_group::showDocument()
{
    m_commands.showDocument();
    showSelection();
}

void texture_field_group::showSelection()
{
    showRows();
    if (!m_commands.isUsed(row()))
        m_selected = 0;
    placeMarker();
    showPreview(false);
}

void texture_field_group::showRows()
{
    const group_data* const group = m_host.document().model().selectedGroup();
    const texture_rows rows = group != nullptr ? textureRows(*group) : texture_rows{};
    const texture_row_states states =
        group != nullptr ? textureRowStates(*m_host.document().game(), *group, m_host.document().model().file()->path())
                         : texture_row_states{};
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        m_rows[i].show(rows[i], states[i]);
}

void texture_field_group::showPreview(bool reads_again)
{
    const bool is_used = m_commands.isUsed(row());
    m_replace.setEnabled(is_used);
    m_edit.setEnabled(is_used);
    if (!is_used)
        return m_preview.showNothing("No texture");
    texture_preview_request wanted{m_host.document().game(), m_commands.path(row()),
                                   m_host.document().model().file()->path()};
    m_preview.show(wanted, reads_again);
}

void texture_field_group::view()
{
    const open_model& model = m_host.document().model();
    if (!model.hasModel())
        return;
    const game_file found = m_host.document().game()->findAround(m_commands.path(row()), model.file()->path());
    if (!found)
        return m_host.setStatus("The texture is nowhere to be found.");
    m_window.view(found);
}

void texture_field_group::setPath(std::size_t row)
{
    m_host.took(m_host.commands().setTexturePath(row, m_rows[row].directory(), m_rows[row].file()));
    m_rows[row].clearTyped(); // where it was not taken
}

std::string texture_field_group::focusedPath() const
{
    const int focused = rowOf(GetFocus());
    return focused < 0 ? std::string() : m_commands.path(static_cast<std::size_t>(focused));
}

bool texture_field_group::paste(const std::string& text)
{
    const int focused = rowOf(GetFocus());
    if (focused < 0 || text.find_first_of("/\\") == std::string::npos)
        return false;
    m_host.took(m_host.commands().pasteIntoTexture(static_cast<std::size_t>(focused), text));
    return true;
}

bool texture_field_group::pasteClipboard()
{
    failure why;
    const std::optional<std::string> text = clipboardText(m_host.frame(), why);
    return text && paste(*text);
}

void texture_field_group::takeTyped()
{
    for (texture_field& row : m_rows)
        row.take();
}

void texture_field_group::select(int row, bool is_focused)
{
    // Not by what the rows show: the focus moves while another document, or none, is about to be shown.
    if (row < 0 || row >= static_cast<int>(m_rows.size()) || !m_commands.isUsed(static_cast<std::size_t>(row)))
        return;
    if (std::exchange(m_selected, row) != row)
    {
        placeMarker();
        showPreview(false);
    }
    if (is_focused)
        m_rows[static_cast<std::size_t>(row)].focus();
}

void texture_field_group::run(document_command command)
{
    switch (command)
    {
    case document_command::choose_texture:
        return m_commands.choose(row());
    case document_command::replace_picture:
        return m_commands.replace(row(), texture_commands::target::same_path);
    case document_command::edit_picture:
        return m_commands.edit(row());
    case document_command::extract_textures:
        return m_commands.extract();
    case document_command::choose_texture_folder:
        return m_commands.chooseFolder();
    case document_command::open_texture_folder:
        return m_commands.openFolder();
    case document_command::copy_texture_paths:
        return m_commands.copyPaths();
    default:
        return;
    }
}

void texture_field_group::onControlFocused(HWND control)
{
    select(rowOf(control), false);
    window::onControlFocused(control);
}

HBRUSH texture_field_group::onControlColour(HDC context, HWND control)
{
    if (control == m_marker.handle())
        return GetSysColorBrush(COLOR_HIGHLIGHT);
    const int row = rowOf(control);
    return row < 0 ? nullptr : m_rows[static_cast<std::size_t>(row)].colour(context, control);
}

LRESULT texture_field_group::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_DROPFILES)
        DragQueryPoint(reinterpret_cast<HDROP>(wparam), &m_dropped_at);
    if (message == WM_CONTEXTMENU)
        return openMenu(reinterpret_cast<HWND>(wparam),
                        {static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))}),
               0;
    return window::handleMessage(message, wparam, lparam);
}

// A picture on a row becomes its texture; everything else is opened.
void texture_field_group::onFilesDropped(const std::vector<std::string>& paths)
{
    const int row = rowAt(m_dropped_at);
    const bool is_for_row =
        paths.size() == 1 && row >= 0 && m_commands.isUsed(static_cast<std::size_t>(row)) && isPicture(paths.front());
    if (!is_for_row)
        return m_host.openFiles(paths);
    select(row, false);
    if (m_host.isEnabled(document_command::replace_picture))
        m_commands.replaceWith(static_cast<std::size_t>(row), paths.front(), texture_commands::target::same_path);
}

void texture_field_group::openMenu(HWND control, POINT on_screen)
{
    int chosen = rowOf(control);
    if (on_screen.x == -1 && on_screen.y == -1) // the key: below the control that has the focus
    {
        RECT place{};
        GetWindowRect(GetFocus(), &place);
        chosen = rowOf(GetFocus());
        on_screen = {place.left, place.bottom};
    }
    else if (chosen < 0)
    {
        POINT at = on_screen;
        ScreenToClient(handle(), &at);
        chosen = rowAt(at);
    }
    if (chosen < 0 || !m_commands.isUsed(static_cast<std::size_t>(chosen)))
        return;
    takeTyped();
    select(chosen, false);
    const auto enabled = [this](document_command command) { return m_host.isEnabled(command); };
    const std::vector<menu_row> rows = {
        {menu_choose, "Choose &DDS...", enabled(document_command::choose_texture)},
        {menu_replace, "&Replace Picture...", enabled(document_command::replace_picture)},
        {menu_replace_by_new, "&New Texture from Picture...", enabled(document_command::replace_picture)},
        {menu_edit, "&Edit Picture...", enabled(document_command::edit_picture)},
        {},
        {menu_copy, "&Copy Path", !m_commands.path(row()).empty()},
        {menu_paste, "&Paste Path", enabled(document_command::set_texture_path)},
        {},
        {menu_view, "&View Texture...", !m_commands.path(row()).empty()},
        {menu_show_place, "&Show Where It Is Found", !m_commands.path(row()).empty()},
    };
    runFromMenu(chooseFromMenu(handle(), on_screen, rows));
}

void texture_field_group::runFromMenu(int chosen)
{
    switch (chosen)
    {
    case menu_choose:
        return m_host.runCommand(document_command::choose_texture);
    case menu_replace:
        return m_host.runCommand(document_command::replace_picture);
    case menu_replace_by_new:
        return m_commands.replace(row(), texture_commands::target::new_path);
    case menu_edit:
        return m_host.runCommand(document_command::edit_picture);
    case menu_copy:
        return copyText(m_host, m_commands.path(row()));
    case menu_paste:
        m_rows[row()].focus();
        return m_host.runCommand(document_command::paste);
    case menu_view:
        return view();
    case menu_show_place:
        return m_commands.showPlace(row());
    default:
        return;
    }
}

} // namespace korvane
