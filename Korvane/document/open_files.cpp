#include "Korvane/document/open_files.h"

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/services/version.h"
#include "Korvane/game/game_model.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

// Empty: it lies in an archive, or nowhere.
std::string diskPathIn(const game_data& game, const game_path& path)
{
    return path.isInternal() ? game.find(path.internalPath()).diskPath() : path.text();
}

} // namespace

open_error describeOpenFailure(const std::string& path, const failure& why, const game_data& game)
{
    std::string text = isDefinitionPath(path) // the slips stay: the text is documented so
                           ? "Loading .variantmeshdefintion failed. \r\nErro string: r\n"
                           : "The model could not be opened.\r\n\r\n";
    text += describe(why);
    if (game_path(path).isInternal() && !game.hasArchives())
        text += "\r\n\r\nIt comes out of the game's archives, and no folder with archives is set. " +
                std::string(set_folders_advice);
    return {"Error!", std::move(text)};
}

bool isFbxPath(const std::string& path)
{
    return endsWithIgnoringCase(path, ".fbx");
}

std::string file_choice::describeLeftOut() const
{
    std::string text = "One model, one definition and one FBX file can be open at a time. Not opened:";
    constexpr std::size_t most_named = 5;
    for (std::size_t i = 0; i < std::min(left_out.size(), most_named); ++i)
        text += "\r\n" + left_out[i];
    if (left_out.size() > most_named)
        text += "\r\nand " + counted(left_out.size() - most_named, "other file");
    return text;
}

file_choice chooseFiles(const std::vector<std::string>& paths)
{
    file_choice choice;
    bool has_one[3] = {}; // a model, a definition, an FBX file
    for (const std::string& path : paths)
        (std::exchange(has_one[isDefinitionPath(path) ? 1
                               : isFbxPath(path)      ? 2
                                                      : 0],
                       true)
             ? choice.left_out
             : choice.opened)
            .push_back(path);
    return choice;
}

bool open_files::read(const std::string& path, const game_data& game, opened_file& file, failure& why)
{
    file.disk_path = diskPathIn(game, path);
    file.stamp = stampOf(file.disk_path); // before it is read: what comes later is a change
    if (isDefinitionPath(path))
        return file.definition.open(path, why, game);
    // A fresh reader each time: one that has read a version 5 file keeps that version's text widths.
    file.model = std::make_shared<rmv2_file>();
    return openModel(game, path, *file.model, why);
}

void open_files::take(opened_file file)
{
    m_shown = file.model ? kind::model : kind::definition;
    (file.model ? m_model_follower : m_definition_follower).follow(std::move(file.disk_path), file.stamp);
    if (file.model)
        m_model.take(std::move(file.model));
    else
    {
        if (file.definition.path() == m_definition.path()) // read again: what was chosen stays
            static_cast<void>(file.definition.choose(m_definition.choice()));
        m_definition = std::move(file.definition);
    }
}

bool open_files::open(const std::string& path, failure& why)
{
    opened_file file;
    if (!read(path, *m_po_game, file, why))
        return false;
    take(std::move(file));
    return true;
}

void open_files::openKept(std::shared_ptr<rmv2_file> model, edit_origin origin, bool is_elsewhere,
                          std::unique_ptr<keep_claim> claim)
{
    followModel(origin.path);
    m_model.openKept(std::move(model), std::move(origin), is_elsewhere, std::move(claim));
    m_shown = kind::model;
}

void open_files::close()
{
    m_model_follower = {};
    m_definition_follower = {};
    m_model.close();
    m_definition = {};
    m_shown = kind::nothing;
}

std::vector<open_error> open_files::reopen()
{
    std::vector<open_error> errors;
    const auto openAgain = [&](const std::string& path) {
        failure why;
        if (!reread(path, why))
            errors.push_back(describeOpenFailure(path, why, *m_po_game));
    };
    if (m_model.hasModel() && !m_model.isEdited() && game_path(m_model.file()->path()).isInternal())
        openAgain(std::string(m_model.file()->path()));
    if (m_definition.hasDefinition())
        openAgain(std::string(m_definition.path()));
    return errors;
}

bool open_files::reread(const std::string& path, failure& why)
{
    const kind shown = m_shown;
    const bool is_open = open(path, why);
    m_shown = shown;
    return is_open;
}

void open_files::followModel(const std::string& path)
{
    std::string disk_path = diskPathIn(*m_po_game, path);
    const file_stamp now = stampOf(disk_path);
    m_model_follower.follow(std::move(disk_path), now);
}

std::vector<disk_change> open_files::lookAtDisk()
{
    std::vector<disk_change> changes;
    const auto look = [&changes](disk_follower& follower, bool is_model, const std::string& path) {
        if (const auto what = follower.look(); what != disk_follower::change::none)
            changes.push_back({path, is_model, what == disk_follower::change::gone});
    };
    if (m_model.hasModel())
        look(m_model_follower, true, m_model.file()->path());
    if (m_definition.hasDefinition())
        look(m_definition_follower, false, m_definition.path());
    return changes;
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

std::string open_files::shownName() const
{
    if (m_shown == kind::nothing)
        return {};
    const std::string name(fileName(m_shown == kind::model ? m_model.file()->path() : m_definition.path()));
    return name.substr(0, name.rfind('.'));
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
        return "Open a model or a definition with Ctrl+O, or drop it here.";
    }
}

} // namespace korvane
