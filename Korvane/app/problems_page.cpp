#include "Korvane/app/problems_page.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/menu.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/copy_paste.h"
#include "Korvane/document/window_place.h"

#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view problem_columns_name = "problems";
constexpr UINT_PTR check_timer = 1;
constexpr UINT check_pause = 500; // milliseconds, behind the last edit

enum problem_command : int
{
    go_to_problem = 1,
    copy_problems,
    copy_all_problems,
    check_again
};

} // namespace

problems_page::problems_page(page_host& host, std::function<void(const std::string& caption)> caption_changed)
    : rows_page(host, {&m_summary, &m_list, &m_go, &m_check_again})
    , m_caption_changed(std::move(caption_changed))
    , m_check(host.thread(), {[this](const work_progress& at) {
                                  m_summary.setText("Checking " + std::string(fileName(displayText(at.what))) +
                                                    "... (" + grouped(at.done) + " of " + counted(at.total, "file") +
                                                    ")");
                              },
                              [&host](const std::string& line) { host.logLine(line); },
                              [this](const std::string& what) {
                                  this->host().logLine("problems_page: the check ended early: " + what);
                                  m_summary.setText("The check could not be finished: " + what);
                              }})
{
    m_layout.add(m_summary);
    m_layout.add(m_list, share(1, 80));
    m_layout.add(layout(layout::direction::across).add(share()).add(m_go).add(m_check_again));
}

bool problems_page::createControls(failure& why)
{
    list_view_options options;
    options.has_many = options.has_pictures = true;
    const bool is_whole = m_summary.create(handle(), control_problem_summary) &&
                          m_list.create(handle(), control_problem_list, m_problems, options) &&
                          m_go.create(handle(), control_problem_go, "&Go to It") &&
                          m_check_again.create(handle(), control_problem_check, "&Check Again") &&
                          m_empty.createIn(handle(), why);
    if (!is_whole)
        return false;
    m_list.setColumnWidths(keptColumns(host().config().table(), problem_columns_name, m_problems.columns().size()));
    m_list.onSelect = [this](int row) { m_go.setEnabled(row >= 0); };
    m_list.onActivate = [this](int row) { openProblem(row); };
    m_list.onContextMenu = [this](int, POINT on_screen) { showMenu(on_screen); };
    m_go.onClick = [this] { openProblem(m_list.selected()); };
    m_check_again.onClick = [this] { check(); };
    return true;
}

void problems_page::fillControls()
{
    showList();
    showState();
}

LRESULT problems_page::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_TIMER && wparam == check_timer)
    {
        // While long work runs the document is not to be touched: the timer comes again.
        if (host().isEnabled(document_command::open))
            check();
        return 0;
    }
    return rows_page::handleMessage(message, wparam, lparam);
}

bool problems_page::keep(config_file& config) const
{
    return hasControls() && keepColumns(config, problem_columns_name, m_list.columnWidths());
}

HWND problems_page::firstControl() const
{
    return isEmpty() ? m_empty.firstControl() : m_list.handle();
}

void problems_page::showDocument()
{
    const open_files& document = host().document();
    const bool is_same = m_po_model == document.model().file() && m_po_definition == document.definition().content() &&
                         m_po_game == document.game();
    m_po_model = document.model().file();
    m_po_definition = document.definition().content();
    m_po_game = document.game();
    if (!is_same)
    {
        m_check.stop();
        m_problems.clear();
        showList();
    }
    else
        m_problems.markOutdated();
    if (document.shown() == open_files::kind::nothing)
    {
        m_is_due = false;
        KillTimer(handle(), check_timer);
    }
    else
        checkSoon();
    showState();
}

void problems_page::checkSoon()
{
    m_is_due = true;
    SetTimer(handle(), check_timer, check_pause, nullptr); // which begins anew with each edit
}

void problems_page::check()
{
    KillTimer(handle(), check_timer);
    m_is_due = false;
    m_check.start(
        [this, request = problemCheckOf(host().document())](const work_port& work) -> background_task::answer {
            auto found = std::make_shared<problem_check_result>(checkProblems(request, work));
            return [this, found] { show(std::move(*found)); };
        });
    showState();
}

void problems_page::show(problem_check_result result)
{
    m_problems.show(std::move(result));
    if (m_is_due)
        m_problems.markOutdated();
    showList();
    showState();
}

void problems_page::showList()
{
    if (hasControls())
        m_list.refresh();
}

bool problems_page::isEmpty() const
{
    return m_problems.rowCount() == 0 && !m_problems.isOutdated() && !isChecking();
}

void problems_page::showState()
{
    m_caption_changed(m_problems.caption());
    if (!hasControls())
        return;
    if (isEmpty())
    {
        m_empty.setContent(emptyContent());
        m_empty.showOver(true);
    }
    const bool had_focus = IsChild(handle(), GetFocus()) != 0;
    setRowsVisible(!isEmpty());
    if (!isEmpty())
    {
        layOut();
        m_empty.showOver(false);
        m_summary.setText(m_problems.isChecked() ? m_problems.summary() : "Checking...");
        m_go.setEnabled(m_list.selected() >= 0);
    }
    if (had_focus && (GetFocus() == nullptr || IsWindowVisible(GetFocus()) == FALSE))
        SetFocus(firstControl());
}

empty_content problems_page::emptyContent()
{
    const auto run = [this](document_command command) { return [this, command] { host().runCommand(command); }; };
    const open_files& document = host().document();
    empty_content content;
    if (document.shown() == open_files::kind::nothing)
    {
        content.heading = "Nothing is open";
        content.lines = {m_problems.summary()};
        content.choices = {{"&Open...", run(document_command::open)}};
        return content;
    }
    content.heading = m_problems.heading();
    content.lines = {m_problems.summary()};
    content.choices = {{"&Check Again", [this] { check(); }}};
    return content;
}

void problems_page::openProblem(int row)
{
    if (row < 0 || static_cast<std::size_t>(row) >= m_problems.rowCount())
        return;
    const problem_list::problem_target target = m_problems.target(static_cast<std::size_t>(row));
    if (!target.is_in_open_model && target.file == host().document().definition().path())
        return host().showDefinitionPage();
    if (!target.is_in_open_model && !host().openFile(target.file))
        return;
    if (!target.is_in_open_model && isDefinitionPath(target.file))
        return;
    const finding_place& place = target.place;
    if (place.lod)
        host().select({static_cast<int>(*place.lod), static_cast<int>(place.group.value_or(0))});
    host().showModelPage(place.texture ? static_cast<int>(*place.texture) : -1);
}

std::string problems_page::copiedText() const
{
    std::string lines;
    for (const std::size_t row : m_list.selectedRows())
        lines += m_problems.copyText(row) + "\r\n";
    return lines;
}

void problems_page::showMenu(POINT on_screen)
{
    const int row = m_list.selected();
    const std::vector<menu_row> rows = {
        {go_to_problem, "&Go to It\tEnter", row >= 0},
        {},
        {copy_problems, "&Copy\tCtrl+C", !m_list.selectedRows().empty()},
        {copy_all_problems, "Copy &All", m_problems.rowCount() > 0},
        {},
        {check_again, "Check A&gain"},
    };
    switch (chooseFromMenu(handle(), on_screen, rows))
    {
    case go_to_problem:
        return openProblem(row);
    case copy_problems:
        return copyText(host(), copiedText());
    case copy_all_problems:
        return copyText(host(), m_problems.copyText());
    case check_again:
        return check();
    default:
        return;
    }
}

} // namespace korvane
