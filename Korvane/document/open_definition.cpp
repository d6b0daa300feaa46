#include "Korvane/document/open_definition.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/game/game_path.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view extension = "variantmeshdefinition";

std::string nameOf(const std::string& path)
{
    std::string_view name = fileName(path);
    name.remove_suffix(std::min(extension.size() + 1, name.size())); // with the dot
    return std::string(name.empty() ? fileName(path) : name);
}

} // namespace

bool isDefinitionPath(const std::string& path)
{
    if (const game_path given(path); given.isInternal()) // may be spelled with blanks or separators at its end
        return normalInternalPath(given.internalPath()).ends_with(extension);
    return endsWithIgnoringCase(path, extension);
}

bool open_definition::open(const std::string& path, failure& why, const game_data& game)
{
    const auto fresh = std::make_shared<variant_mesh_def>();
    const game_path where(path);
    const bool is_open = where.isInternal() ? fresh->openFromInternalPath(std::string(where.internalPath()), why,
                                                                          game.definitionReader())
                                            : fresh->open(path, why, game.definitionReader());
    if (!is_open)
    {
        why.path = path; // with its prefix, as the person gave it
        return false;
    }
    m_po_definition = fresh;
    m_choice.clear();
    m_path = path;
    m_in_figure = figure().size();
    m_models = fresh->models();
    m_has_archives = game.hasArchives();
    return true;
}

bool open_definition::choose(const figure_choice& alternatives)
{
    figure_choice changed = m_choice;
    for (const auto& [slot, alternative] : alternatives)
        changed[slot] = alternative;
    if (changed == m_choice)
        return false;
    m_choice = std::move(changed);
    m_in_figure = figure().size();
    return true;
}

std::string open_definition::summary(const std::optional<drawn_models>& drawn) const
{
    const std::size_t failed = drawn ? drawn->failed : 0;
    std::string text = nameOf(m_path) + ": ";
    if (m_in_figure < m_models.size())
        text += grouped(m_in_figure) + " of ";
    text += m_models.empty() ? "names no models" : counted(m_models.size(), "model", "models");
    if (drawn && failed < m_in_figure)
        text += ", " + counted(drawn->triangles, "triangle", "triangles");
    if (failed > 0 && !m_has_archives)
        return text + "; there are no archives to take them from: set the data folders";
    if (failed > 0)
        text += "; " + std::to_string(failed) + " could not be opened";
    if (!problems().empty())
        text += (failed > 0 ? ", " : "; ") + counted(problems().size(), "reference", "references") + " not followed";
    return failed > 0 || !problems().empty() ? text + " (see log.txt)" : text;
}

std::string open_definition::emptyNotice(const drawn_models& drawn) const
{
    const std::string name = nameOf(m_path);
    if (m_models.empty())
        return name + " names no models.";
    if (m_in_figure == 0)
        return name + " shows no models: none of the chosen alternatives has one.";
    if (drawn.failed < m_in_figure)
        return {};
    const std::string count = counted(m_in_figure, "model", "models");
    if (m_has_archives)
        return "None of the " + count + " of " + name + " could be opened: log.txt says why.";
    return name + " names " + count +
           ".\r\nThey come out of the game's archives, and no folder with archives is set.\r\n\r\n" +
           std::string(set_folders_advice);
}

} // namespace korvane
