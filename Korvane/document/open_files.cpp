#include "Korvane/document/open_files.h"

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/services/version.h"

#include <utility>

namespace korvane
{

open_error describeOpenFailure(const std::string& path, const failure& why, const game_data& game)
{
    std::string text = isDefinitionPath(path) // the slips stay: the text is documented so
                           ? "Loading .variantmeshdefintion failed. \r\nErro string: r\n"
                           : "The model could not be opened.\r\n\r\n";
    text += describe(why);
    if (game_path(path).isInternal() && !game.hasArchives())
        text += "\r\n\r\nIt comes out of the game's archives, and no folder with archives is set. Type in a command "
                "window, with your folder:\r\n\r\n" +
                std::string(set_folders_command) + "\r\n\r\nThen choose File, Re-read .pack files... here.";
    return {"Error!", std::move(text)};
}

std::string file_choice::describeLeftOut() const
{
    std::string text = "One model and one definition can be open at a time. Not opened:";
    for (const std::string& path : left_out)
        text += "\r\n" + path;
    return text;
}

file_choice chooseFiles(const std::vector<std::string>& paths)
{
    file_choice choice;
    bool has_one[2] = {}; // a model, a definition
    for (const std::string& path : paths)
        (std::exchange(has_one[isDefinitionPath(path) ? 1 : 0], true) ? choice.left_out : choice.opened)
            .push_back(path);
    return choice;
}

bool open_files::open(const std::string& path, failure& why)
{
    const bool is_definition = isDefinitionPath(path);
    if (!(is_definition ? m_definition.open(path, why, *m_po_game) : m_model.open(path, why, *m_po_game)))
        return false;
    m_shown = is_definition ? kind::definition : kind::model;
    return true;
}

void open_files::openKept(std::shared_ptr<rmv2_file> model, edit_origin origin, bool is_elsewhere)
{
    m_model.openKept(std::move(model), std::move(origin), is_elsewhere);
    m_shown = kind::model;
}

void open_files::close()
{
    m_model.close();
    m_definition = {};
    m_shown = kind::nothing;
}

std::vector<open_error> open_files::reopen()
{
    std::vector<open_error> errors;
    failure why;
    if (m_model.hasModel() && !m_model.isEdited() && game_path(m_model.file()->path()).isInternal())
        if (const std::string path = m_model.file()->path(); !m_model.open(path, why, *m_po_game))
            errors.push_back(describeOpenFailure(path, why, *m_po_game));
    why = {};
    if (m_definition.hasDefinition())
        if (const std::string path = m_definition.path(); !m_definition.open(path, why, *m_po_game))
            errors.push_back(describeOpenFailure(path, why, *m_po_game));
    return errors;
}

std::string open_files::title() const
{
    const auto nameOf = [](const std::string& path) {
        return path.empty() ? "no file loaded" : std::string(fileName(path));
    };
    return std::string(program_name) + ' ' + std::string(program_version) + "   RMV2: [" +
           nameOf(m_model.hasModel() ? m_model.file()->path() : "") + "] VMD: [" + nameOf(m_definition.path()) + "]" +
           (m_model.isEdited() ? "*[edited]" : "");
}

std::string open_files::status(const std::optional<drawn_models>& drawn) const
{
    switch (m_shown)
    {
    case kind::model:
        return modelSummary(m_model.file()->data(), m_model.selection().lod);
    case kind::definition:
        return m_definition.summary(drawn);
    default:
        return m_po_game->archives() ? "Open a model or a definition with Ctrl+O, or drop it here."
                                     : "Ctrl+O opens a model. Game data: " + std::string(set_folders_command);
    }
}

} // namespace korvane
