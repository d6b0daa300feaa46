#include "Korvane/app/file_viewer.h"

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/wide_text.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/jobs/file_preview.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace korvane
{

namespace
{

constexpr std::uint64_t shown_text = std::uint64_t{2} << 20; // bytes; what follows is seen as bytes
constexpr int text_form = 0;
constexpr int byte_form = 1;
constexpr UINT message_read_pages = WM_APP + 40;

std::wstring lowered(std::wstring text)
{
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

} // namespace

// --- file_content_panel
// --------------------------------------------------------------------------------------------------

bool file_content_panel::createIn(HWND parent, const hex_rows& rows, failure& why)
{
    return createChild(parent, WS_VISIBLE | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT, why) &&
           text.createLines(handle(), control_viewer_text, edit_box::access::read_only) &&
           bytes.create(handle(), control_viewer_bytes, rows);
}

void file_content_panel::useFixedFont()
{
    m_fixed_font.emplace(dpi(), font::weight::fixed_width);
    text.setFont(*m_fixed_font);
    bytes.setFont(*m_fixed_font);
}

void file_content_panel::showText(bool is_text)
{
    m_is_text = is_text;
    text.setVisible(is_text);
    bytes.setVisible(!is_text);
}

void file_content_panel::onSize(int width, int height, size_change)
{
    text.place(0, 0, width, height);
    bytes.place(0, 0, width, height);
}

// --- file_viewer
// ---------------------------------------------------------------------------------------------------------

file_viewer::file_viewer(page_host& host)
    : file_window(host, {"View File", {760, 520}, true, helpContext(help_topic::archives)})
    , m_opening(host.thread(),
                {{}, {}, [this](const std::string& what) { m_status.setText("Cannot be shown: " + what); }})
    , m_reading(host.thread(), {})
    , m_finding(host.thread(), {})
{
    // Rows are asked for while the list is drawn: the worker is given all that one drawing has asked for.
    m_rows.onWanted = [this] { PostMessageW(handle(), message_read_pages, 0, 0); };
}

std::optional<layout> file_viewer::onFill(failure& why)
{
    constexpr auto editable = edit_box::access::editable;
    if (!m_form_name.create(handle(), "Show &as:") || !m_form.create(handle(), control_viewer_form) ||
        !m_find_name.create(handle(), "&Find:") || !m_find.create(handle(), control_viewer_find, editable) ||
        !m_next.create(handle(), control_viewer_next, "&Next") || !m_position_name.create(handle(), "&Go to:") ||
        !m_position.create(handle(), control_viewer_position, editable) || !m_content.createIn(handle(), m_rows, why) ||
        !m_status.create(handle(), control_viewer_status) || !m_close.create(handle(), control_dialog_close, "Close"))
        return std::nullopt;
    m_form.add("Text");
    m_form.add("Bytes");
    m_find.setTip("Enter or F3 goes to the next place. Among bytes 0x1f8b looks for two bytes");
    m_position.setTip("A line of the text; of the bytes a position, as in 8000 or 0x1f40");
    m_form.onSelect = [this](int chosen) { showForm(chosen == text_form); };
    m_find.onKey = [this](unsigned key) { return (key == VK_RETURN || key == VK_F3) && (findNext(), true); };
    m_next.onClick = [this] { findNext(); };
    m_position.onKey = [this](unsigned key) { return key == VK_RETURN && (goTo(), true); };
    m_close.onClick = [this] { onCancel(); };
    m_content.bytes.onKey = [this](unsigned key) { return key == VK_F3 && (findNext(), true); };
    setFirstFocus(m_content.text);
    using way = layout::direction;
    layout rows(way::down);
    rows.setMargins(10);
    rows.add(layout(way::across)
                 .add(m_form_name)
                 .add(m_form, fixed(90))
                 .add(m_find_name)
                 .add(m_find, share(1, 120))
                 .add(m_next)
                 .add(m_position_name)
                 .add(m_position, fixed(90)));
    rows.add(m_content, share(1, 160));
    rows.add(layout(way::across).add(m_status, share(1, 200)).add(m_close));
    return rows;
}

void file_viewer::onShown()
{
    m_content.useFixedFont();
}

void file_viewer::onDestroyed()
{
    m_opening.stop();
    m_reading.stop();
    m_finding.stop();
    m_po_content = nullptr;
    m_rows.restart(0);
    file_window::onDestroyed();
}

void file_viewer::onDpiChanged(unsigned dpi)
{
    dialog_box::onDpiChanged(dpi);
    m_content.useFixedFont();
}

LRESULT file_viewer::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == message_read_pages)
        return readWanted(), 0;
    return dialog_box::handleMessage(message, wparam, lparam);
}

void file_viewer::load()
{
    m_status.setText("Reading...");
    m_content.text.setText("");
    m_po_content = nullptr;
    m_rows.restart(0);
    m_content.bytes.refresh();
    m_opening.start([this, file = file()](const work_port&) -> background_task::answer {
        auto read = std::make_shared<content>();
        read->file = file;
        if (read->bytes.open(file, read->why))
        {
            std::vector<std::byte> start(static_cast<std::size_t>(std::min(shown_text, read->bytes.size())));
            read->is_whole = start.size() == read->bytes.size();
            if (!read->bytes.readAt(0, start))
                fail(read->why, failure_kind::unreadable, "the file cannot be read", file.path());
            else if (!readText(start, read->text, read->encoding))
                read->encoding.clear();
        }
        return [this, read] { take(read); };
    });
}

void file_viewer::take(std::shared_ptr<const content> read)
{
    m_po_content = std::move(read);
    m_rows.restart(m_po_content->why ? 0 : m_po_content->bytes.size());
    m_content.text.setText(m_po_content->text);
    m_content.bytes.refresh();
    const bool is_text = !m_po_content->encoding.empty();
    m_form.setEnabled(is_text);
    m_form.select(is_text ? text_form : byte_form);
    showForm(is_text);
    if (is_text)
        m_content.text.focus();
    else
    {
        m_content.bytes.select(m_rows.rowCount() > 0 ? 0 : -1);
        m_content.bytes.focus();
    }
}

void file_viewer::showForm(bool is_text)
{
    m_content.showText(is_text);
    showStatus();
}

void file_viewer::showStatus(const std::string& addition)
{
    if (m_po_content == nullptr)
        return;
    const content& shown = *m_po_content;
    std::string text = shown.why ? "Cannot be shown: " + displayText(describe(shown.why))
                                 : counted(static_cast<std::size_t>(shown.bytes.size()), "byte");
    if (!shown.why && m_content.isText())
        text = "Text, " + shown.encoding + ", " + text +
               (shown.is_whole ? "" : ", of which the first 2 MB are shown; Bytes has all of them");
    m_status.setText(addition.empty() ? text : addition + "   (" + text + ")");
}

void file_viewer::readWanted()
{
    if (m_po_content == nullptr)
        return;
    using page = std::pair<std::uint64_t, std::vector<std::byte>>;
    m_reading.start([this, read = m_po_content, wanted = m_rows.takeWanted()](const work_port& work) {
        auto pages = std::make_shared<std::vector<page>>();
        for (const std::uint64_t number : wanted)
        {
            if (work.isStopped())
                break;
            const std::uint64_t from = number * hex_rows::page_size;
            std::vector<std::byte> bytes(
                static_cast<std::size_t>(std::min(hex_rows::page_size, read->bytes.size() - from)));
            if (!read->bytes.readAt(from, bytes))
                bytes.clear(); // the rows say so
            pages->emplace_back(number, std::move(bytes));
        }
        return background_task::answer([this, read, pages] {
            if (read != m_po_content)
                return;
            for (page& each : *pages)
                m_rows.take(each.first, std::move(each.second));
            m_content.bytes.refresh();
        });
    });
}

void file_viewer::findNext()
{
    if (m_po_content == nullptr || m_find.text().empty())
        return;
    m_content.isText() ? findInText() : findInBytes();
}

void file_viewer::findInText()
{
    const HWND field = m_content.text.handle();
    const std::wstring all = lowered(toWide(m_po_content->text));
    const std::wstring wanted = lowered(toWide(m_find.text()));
    DWORD begin = 0;
    DWORD end = 0;
    SendMessageW(field, EM_GETSEL, reinterpret_cast<WPARAM>(&begin), reinterpret_cast<LPARAM>(&end));
    std::size_t found = all.find(wanted, end);
    const bool is_again = found == std::wstring::npos;
    if (is_again)
        found = all.find(wanted);
    if (found == std::wstring::npos)
        return showStatus("\"" + m_find.text() + "\" is not in here.");
    SendMessageW(field, EM_SETSEL, found, static_cast<LPARAM>(found + wanted.size()));
    SendMessageW(field, EM_SCROLLCARET, 0, 0);
    const LRESULT line = SendMessageW(field, EM_LINEFROMCHAR, found, 0) + 1;
    showStatus("Found in line " + grouped(static_cast<std::size_t>(line)) +
               (is_again ? ", from the beginning again." : "."));
}

void file_viewer::findInBytes()
{
    const int row = m_content.bytes.selected();
    const std::uint64_t from = row < 0 ? 0 : m_rows.positionOf(static_cast<std::size_t>(row) + 1);
    showStatus("Looking for it...");
    m_finding.start([this, read = m_po_content, from, wanted = bytesIn(m_find.text())](const work_port& work) {
        std::optional<std::uint64_t> found = findBytes(read->bytes, wanted, from, work);
        const bool is_again = !found && from > 0;
        if (is_again)
            found = findBytes(read->bytes, wanted, 0, work);
        return background_task::answer([this, read, found, is_again] {
            if (read != m_po_content)
                return;
            if (!found)
                return showStatus("\"" + m_find.text() + "\" is not in here.");
            m_content.bytes.select(static_cast<int>(m_rows.rowOf(*found)));
            showStatus("Found at " + grouped(static_cast<std::size_t>(*found)) +
                       (is_again ? ", from the beginning again." : "."));
        });
    });
}

void file_viewer::goTo()
{
    const std::optional<std::uint64_t> wanted = positionIn(m_position.text());
    if (m_po_content == nullptr || !wanted)
        return showStatus("\"" + m_position.text() + "\" is no number.");
    if (!m_content.isText())
    {
        if (*wanted >= m_po_content->bytes.size())
            return showStatus("The file ends before that.");
        m_content.bytes.select(static_cast<int>(m_rows.rowOf(*wanted)));
        m_content.bytes.focus();
        return showStatus();
    }
    const HWND field = m_content.text.handle();
    const auto lines = static_cast<std::uint64_t>(SendMessageW(field, EM_GETLINECOUNT, 0, 0));
    const std::uint64_t line = std::min(std::max<std::uint64_t>(*wanted, 1), lines) - 1;
    const LRESULT at = SendMessageW(field, EM_LINEINDEX, static_cast<WPARAM>(line), 0);
    SendMessageW(field, EM_SETSEL, static_cast<WPARAM>(at), at);
    SendMessageW(field, EM_SCROLLCARET, 0, 0);
    m_content.text.focus();
    showStatus();
}

} // namespace korvane
