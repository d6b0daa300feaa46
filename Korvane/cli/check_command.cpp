// check: what would go wrong with models and definitions.

#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/game/game_source.h"
#include "Korvane/jobs/check_run.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace korvane
{

namespace
{

json placeJson(const std::optional<std::size_t>& index)
{
    return index ? json(*index) : json();
}

json findingJson(const finding& each)
{
    return {{"severity", severityName(each.severity)},
            {"file", displayText(each.file)},
            {"lod", placeJson(each.place.lod)},
            {"group", placeJson(each.place.group)},
            {"texture", placeJson(each.place.texture)},
            {"kind", each.kind},
            {"text", each.text}};
}

// What one file has, as a person reads it: the worst first, and what is found in many places once, with the places.
class file_report
{
public:
    explicit file_report(const std::vector<finding>& found)
    {
        for (const finding& each : found)
        {
            const auto same = std::find_if(m_rows.begin(), m_rows.end(), [&](const row& other) {
                return other.first->severity == each.severity && other.first->text == each.text;
            });
            row& its = same == m_rows.end() ? m_rows.emplace_back(row{&each, {}}) : *same;
            if (each.place.lod)
                its.places.push_back(placeText(each.place));
        }
        std::stable_sort(m_rows.begin(), m_rows.end(), [](const row& left, const row& right) {
            return left.first->severity > right.first->severity;
        });
    }

    std::string text() const
    {
        std::string result;
        std::map<std::string, std::size_t> notes; // by kind
        for (const row& each : m_rows)
            if (each.first->severity != finding_severity::note || ++notes[each.first->kind] <= most_notes)
                result += rowText(each);
        for (const auto& [kind, count] : notes)
            if (count > most_notes)
                result += std::string(indent, ' ') + "and " + std::to_string(count - most_notes) +
                          " more notes of the kind " + kind + "; --json has them all\n";
        return result;
    }

private:
    struct row
    {
        const finding* first;
        std::vector<std::string> places;
    };
    static constexpr std::size_t indent = 11;
    static constexpr std::size_t most_places = 4;
    static constexpr std::size_t most_notes = 3; // of a kind

    static std::string rowText(const row& each)
    {
        std::string result = "  ";
        result += severityName(each.first->severity);
        result.resize(indent, ' ');
        result += terminalText(each.first->text) + "\n";
        for (std::size_t i = 0; i < std::min(each.places.size(), most_places); ++i)
            result += std::string(indent, ' ') + "  at " + each.places[i] + "\n";
        if (each.places.size() > most_places)
            result += std::string(indent, ' ') + "  and in " + std::to_string(each.places.size() - most_places) +
                      " more places\n";
        return result;
    }

    std::vector<row> m_rows;
};

class check_printer
{
public:
    explicit check_printer(cli_context& context) : m_context(context) {}

    // Everything that one step found; the findings of several files stand one file after the other.
    void take(const std::vector<finding>& found)
    {
        for (std::size_t begin = 0; begin < found.size();)
        {
            std::size_t end = begin;
            while (end < found.size() && found[end].file == found[begin].file)
                count(found[end++]);
            ++m_files_with_findings;
            const std::vector<finding> its(found.begin() + static_cast<std::ptrdiff_t>(begin),
                                           found.begin() + static_cast<std::ptrdiff_t>(end));
            if (!m_context.is_json)
                m_context.print(terminalText(its.front().file) + "\n" + file_report(its).text() + "\n");
            begin = end;
        }
    }

    void finish(std::size_t files)
    {
        const std::size_t errors = m_counts[static_cast<std::size_t>(finding_severity::error)];
        if (m_context.is_json)
            m_context.printJson(m_list);
        else
            m_context.print(files == 0 ? "no file checked\n"
                                       : counted(files, "file", "files") + " checked: " + sum() + "\n");
        if (files == 0 && m_first_error)
            m_context.fail({failure_kind::not_found, m_first_error->text, m_first_error->file, 0, {}});
        else if (errors > 0)
            m_context.fail({failure_kind::malformed,
                            counted(errors, "error", "errors") + " found in " + counted(files, "file", "files"),
                            {},
                            0,
                            {}});
    }

private:
    void count(const finding& each)
    {
        ++m_counts[static_cast<std::size_t>(each.severity)];
        if (!m_first_error && each.severity == finding_severity::error)
            m_first_error = each;
        if (m_context.is_json)
            m_list.push_back(findingJson(each));
    }

    std::string sum() const
    {
        if (m_files_with_findings == 0)
            return "nothing found";
        const auto of = [this](finding_severity severity) { return m_counts[static_cast<std::size_t>(severity)]; };
        return counted(of(finding_severity::error), "error", "errors") + ", " +
               counted(of(finding_severity::warning), "warning", "warnings") + ", " +
               counted(of(finding_severity::note), "note", "notes") + " in " +
               counted(m_files_with_findings, "file", "files");
    }

    cli_context& m_context;
    json m_list = json::array();
    std::optional<finding> m_first_error;
    std::array<std::size_t, 3> m_counts{};
    std::size_t m_files_with_findings = 0;
};

// The disk alone when there are no data folders and no operand needs them.
std::shared_ptr<const game_data> takeGame(cli_context& context, const std::vector<std::string>& operands, failure& why)
{
    const bool is_needed = std::any_of(operands.begin(), operands.end(),
                                       [](const std::string& operand) { return game_path(operand).isInternal(); });
    if (is_needed || context.game().hasFolders())
        return context.game().archives(why);
    context.note("no data folders: textures and skeletons are looked for on the disk around the models only");
    return std::make_shared<const game_data>();
}

void runCheck(cli_context& context, const std::vector<std::string>& operands)
{
    failure why;
    const std::shared_ptr<const game_data> game = takeGame(context, operands, why);
    if (!game)
        return context.fail(why);
    check_run run(*game);
    for (const std::string& operand : operands)
        run.add(operand);
    check_printer printer(context);
    work_port work;
    work.progress = [&context](const work_progress& step) {
        context.workOn(step.what);
        context.progress("checked " + std::to_string(step.done) + " of " + std::to_string(step.total));
    };
    run.run(work, [&printer](const std::vector<finding>& found) { printer.take(found); });
    printer.finish(run.fileCount());
}

} // namespace

void addCheckCommand(CLI::App& app, cli_context& context)
{
    const auto operands = std::make_shared<std::vector<std::string>>();
    CLI::App* command = app.add_subcommand("check", "Report what would go wrong with models and definitions");
    command
        ->add_option(
            "FILE", *operands,
            "Models, definitions, folders, or patterns with * and ?; on disk, or pack: and an internal path or "
            "pattern")
        ->required();
    context.addJsonOption(*command);
    command->callback([&context, operands] { runCheck(context, *operands); });
}

} // namespace korvane
