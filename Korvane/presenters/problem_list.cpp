#include "Korvane/presenters/problem_list.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/jobs/check_run.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::array problem_columns = {list_column{"Severity", 80}, list_column{"Where", 170}, list_column{"What", 0},
                                        list_column{"File", 160}};
enum problem_column : std::size_t
{
    column_severity,
    column_where,
    column_what
};

std::string capitalised(std::string text)
{
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
        text[0] = static_cast<char>(text[0] - ('a' - 'A'));
    return text;
}

} // namespace

problem_check problemCheckOf(const open_files& document)
{
    problem_check check{document.game(), std::nullopt, document.definition().path()};
    if (document.model().hasModel())
        check.model = snapshotOf(*document.model().file());
    return check;
}

problem_check_result checkProblems(const problem_check& check, const work_port& work)
{
    problem_check_result result;
    result.definition = check.definition;
    check_run run(*check.game);
    if (check.model)
    {
        result.model = check.model->path;
        run.addOpen(*check.model);
    }
    if (!check.definition.empty())
        run.add(check.definition);
    run.run(work, [&result](const std::vector<finding>& found) {
        std::copy(found.begin(), found.end(), std::back_inserter(result.findings));
    });
    std::stable_sort(result.findings.begin(), result.findings.end(),
                     [](const finding& left, const finding& right) { return left.severity > right.severity; });
    result.files = run.doneCount();
    result.is_stopped = work.isStopped();
    return result;
}

void problem_list::show(problem_check_result result)
{
    m_result = std::move(result);
    m_is_checked = true;
    m_is_outdated = false;
}

void problem_list::clear()
{
    *this = {};
}

std::span<const list_column> problem_list::columns() const
{
    return problem_columns;
}

std::string problem_list::text(std::size_t row, std::size_t column) const
{
    const finding& of = m_result.findings[row];
    return column == column_severity ? capitalised(severityName(of.severity))
           : column == column_where  ? placeText(of.place, first_number)
           : column == column_what   ? capitalised(of.text)
                                     : displayText(fileName(of.file));
}

row_mark problem_list::mark(std::size_t row) const
{
    switch (m_result.findings[row].severity)
    {
    case finding_severity::note:
        return row_mark::note;
    case finding_severity::warning:
        return row_mark::warning;
    case finding_severity::error:
        break;
    }
    return row_mark::error;
}

std::string problem_list::tip(std::size_t row) const
{
    return capitalised(m_result.findings[row].text) + "\r\n" + displayText(m_result.findings[row].file);
}

std::string problem_list::caption() const
{
    const auto count = std::count_if(m_result.findings.begin(), m_result.findings.end(),
                                     [](const finding& each) { return each.severity != finding_severity::note; });
    return count == 0 ? "Problems" : "Problems (" + grouped(static_cast<std::uint64_t>(count)) + ")";
}

std::string problem_list::heading() const
{
    if (!m_is_checked || m_result.is_stopped)
        return "It was not checked to the end";
    std::string names;
    for (const std::string& path : {m_result.definition, m_result.model})
        if (!path.empty())
            names += (names.empty() ? "" : " and ") + displayText(fileName(path));
    return "Nothing is wrong with " + names;
}

std::string problem_list::summary() const
{
    if (!m_is_checked)
        return "Open a model or a definition: what would go wrong with it is listed here.";
    std::array<std::size_t, 3> counts{};
    for (const finding& each : m_result.findings)
        ++counts[static_cast<std::size_t>(each.severity)];
    std::string text;
    for (const finding_severity severity : {finding_severity::error, finding_severity::warning, finding_severity::note})
        if (const std::size_t count = counts[static_cast<std::size_t>(severity)]; count > 0)
            text += (text.empty() ? "" : ", ") + counted(count, severityName(severity));
    text = (text.empty() ? "No problems" : text) + " in " + counted(m_result.files, "file") + ".";
    if (m_result.is_stopped)
        text += " The check was stopped before its end.";
    if (m_is_outdated)
        text += " The model was edited since: it is checked again.";
    return text;
}

problem_list::problem_target problem_list::target(std::size_t row) const
{
    const finding& of = m_result.findings[row];
    if (!m_result.model.empty() && of.file == m_result.model)
        return {true, of.place, of.file};
    return {false, of.place, of.file};
}

std::string problem_list::copyText(std::size_t row) const
{
    return displayText(m_result.findings[row].file) + ": " + describe(m_result.findings[row], first_number);
}

std::string problem_list::copyText() const
{
    std::string lines;
    for (std::size_t row = 0; row < rowCount(); ++row)
        lines += copyText(row) + "\r\n";
    return lines;
}

} // namespace korvane
