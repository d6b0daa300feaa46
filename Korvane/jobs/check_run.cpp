#include "Korvane/jobs/check_run.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/variant_mesh_def.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/game/game_model.h"
#include "Korvane/jobs/model_check.h"
#include "Korvane/models/rmv2_file.h"
#include "Korvane/models/rmv2_writer.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view model_ending = ".rigid_model_v2";

finding errorOf(const std::string& file, const char* kind, failure why)
{
    why.path.clear(); // stands in file
    return {finding_severity::error, file, {}, kind, displayText(describe(why))};
}

} // namespace

check_run::check_run(game_data game) : m_game(std::move(game)), m_known(m_game) {}

void check_run::add(const std::string& operand)
{
    const std::size_t files = m_operands.files().size(), left_out = m_operands.leftOut().size();
    failure why;
    if (!m_operands.add(operand, m_game, why))
        m_not_found.push_back(errorOf(operand, why.kind == failure_kind::not_found ? "not_found" : "unreadable", why));
    for (std::size_t i = left_out; i < m_operands.leftOut().size(); ++i)
        m_not_found.push_back(errorOf(m_operands.leftOut()[i].path, "unreadable", m_operands.leftOut()[i]));
    for (std::size_t i = files; i < m_operands.files().size(); ++i)
        addFile(m_operands.files()[i].path); // when it does not exist, reading it says so
}

void check_run::addOpen(model_snapshot model)
{
    addFile(model.path);
    m_open = std::move(model);
}

void check_run::addFile(std::string path)
{
    if (m_listed.insert(path).second)
        m_files.push_back(std::move(path));
}

void check_run::run(const work_port& work, const std::function<void(const std::vector<finding>&)>& take)
{
    std::vector<finding> found;
    for (bool goes_on = true; goes_on && !work.isStopped();)
    {
        work.report(doneCount(), fileCount(), m_next < m_files.size() ? m_files[m_next] : std::string());
        goes_on = step(found);
        take(found);
        found.clear();
    }
}

bool check_run::step(std::vector<finding>& found)
{
    std::move(m_not_found.begin(), m_not_found.end(), std::back_inserter(found));
    m_not_found.clear();
    if (m_next == m_files.size())
        return false;
    const std::string path = m_files[m_next]; // the list may grow
    if (isDefinitionPath(path))
        checkDefinition(path, found);
    else
        checkModel(path, found);
    ++m_next;
    return true;
}

void check_run::checkModel(const std::string& path, std::vector<finding>& found)
{
    rmv2_file model;
    failure why;
    const bool is_kept = m_open && m_open->path == path;
    const bool is_open = is_kept ? openSnapshot(*m_open, model, why) : openModel(m_game, path, model, why);
    if (is_kept && hasMixedVersions(model))
        found.push_back({finding_severity::error,
                         path,
                         {},
                         "version_word",
                         "the model was patched, and saving it now would write a file that says version 7 over the "
                         "headers of version 6; open the patched file instead"});
    else if (isVersion7OverVersion6(model.image().bytes())) // what was read of it, if anything, is not what it holds
    {
        found.push_back({finding_severity::error,
                         path,
                         {},
                         "version_word",
                         "the version word says 7, but the LOD headers are those of version 6: the model was saved "
                         "again after it had been patched. korvane patch --repair makes a version 7 file of it"});
        return;
    }
    if (!is_open)
    {
        found.push_back(errorOf(path, why.kind == failure_kind::not_found ? "not_found" : "unreadable", why));
        return;
    }
    std::vector<finding> its = model_check(model, m_known, path).run();
    std::move(its.begin(), its.end(), std::back_inserter(found));
}

// What the game does not find is an error, whatever this program made of the rest.
void check_run::checkReferences(const std::string& path, const std::vector<variant_problem>& problems,
                                std::vector<finding>& found)
{
    for (const variant_problem& problem : problems)
    {
        finding its{finding_severity::error, path, {}, "reference", displayText(problem.line)};
        if (problem.what == variant_problem::kind::not_found)
        {
            const std::string near = m_known.nearest(problem.path, "variantmeshdefinition");
            its.text = "the definition \"" + displayText(problem.path) + "\" is in no archive";
            if (problem.named_in != path && problem.named_in != game_path(path).internalPath())
                its.text += " (named in \"" + displayText(problem.named_in) + "\")";
            if (!near.empty())
                its.text += "; did you mean \"" + displayText(near) + "\"?";
        }
        else if (problem.what == variant_problem::kind::unreadable)
            its.text = "a definition that is referred to cannot be read: " + its.text;
        else
            its.severity = finding_severity::warning;
        found.push_back(std::move(its));
    }
}

void check_run::checkDefinition(const std::string& path, std::vector<finding>& found)
{
    open_definition definition;
    failure why;
    if (!definition.open(path, why, m_game))
    {
        found.push_back(errorOf(path, why.kind == failure_kind::not_found ? "not_found" : "unreadable", why));
        return;
    }
    if (m_game.hasArchives())
        checkReferences(path, definition.problemList(), found);
    if (definition.models().empty())
        found.push_back({finding_severity::warning, path, {}, "no_models", "the definition names no models"});
    else if (!m_game.hasArchives())
        found.push_back({finding_severity::note,
                         path,
                         {},
                         "model_missing",
                         "its models come out of the archives, and none were given: they are not checked"});
    std::unordered_set<std::string> seen;
    for (const std::string& model : definition.models())
    {
        if (!m_game.hasArchives() || !seen.insert(model).second)
            continue;
        if (m_known.isInGame(model))
        {
            addFile(game_path::ofInternal(model).text());
            continue;
        }
        const std::string near = m_known.nearest(model, std::string(model_ending.substr(1)));
        found.push_back({finding_severity::error,
                         path,
                         {},
                         "model_missing",
                         "the model \"" + displayText(model) + "\" is in no archive" +
                             (near.empty() ? "" : "; did you mean \"" + displayText(near) + "\"?")});
    }
}

} // namespace korvane
