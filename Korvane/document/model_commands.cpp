#include "Korvane/document/model_commands.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/document/pasted_path.h"
#include "Korvane/document/save_place.h"
#include "Korvane/document/texture_path_fault.h"
#include "Korvane/game/game_path.h"
#include "Korvane/models/rmv2_writer.h"

namespace korvane
{

namespace
{

// The missing bracket stays: the text is documented so.
const std::vector<file_filter> model_filters = {
    {"Rigid Model v2 Files (*.rigid_model_v2)", "*.rigid_model_v2"},
    {"All File (*.*", "*.*"},
};
constexpr const char* model_extension = "rigid_model_v2";

} // namespace

bool model_commands::isEnabled(document_command command, const window_facts& facts) const
{
    const open_model& model = m_document.model();
    if (facts.is_busy)
        return false;
    switch (command)
    {
    case document_command::open:
    case document_command::open_recent:
    case document_command::normal_map_to_orange:
    case document_command::normal_map_to_blue:
    case document_command::reread_archives:
    case document_command::exit:
    case document_command::copy:
    case document_command::paste:
    case document_command::game_folders:
    case document_command::index_cache:
    case document_command::convert_animation:
    case document_command::generate_bone_table:
    case document_command::open_definition:
    case document_command::about:
    case document_command::legal:
    case document_command::guide:
    case document_command::choose_texture_folder:
    case document_command::open_texture_folder:
    case document_command::fill_all_lods:
        return true;
    case document_command::undo:
        return model.canUndo();
    case document_command::redo:
        return model.canRedo();
    case document_command::reset:
    case document_command::export_static:
    case document_command::export_animated:
    case document_command::show_view:
    case document_command::play_animation:
        return m_document.shown() != open_files::kind::nothing;
    case document_command::save_picture:
        return facts.has_view && m_document.shown() != open_files::kind::nothing;
    case document_command::open_folder:
        return hasModel() && !game_path(model.file()->path()).isInternal();
    case document_command::choose_alpha_mode:
        return model.selectedGroup() != nullptr;
    case document_command::choose_texture:
    case document_command::set_texture_path:
    case document_command::replace_picture:
    case document_command::edit_picture:
        return model.selectedGroup() != nullptr && !model.selectedGroup()->textures.empty();
    case document_command::save: // without edits it says so
    case document_command::save_as:
    case document_command::patch: // offered for every model: those that cannot be patched are told why
    case document_command::test:
    case document_command::replace_path_prefix:
    case document_command::copy_texture_paths:
    case document_command::choose_lod_and_group:
    case document_command::extract_textures:
        return hasModel();
    }
    return false;
}

bool model_commands::mayUseArchives()
{
    if (!m_config.get(config_keys::data_folders).empty())
        return true;
    m_prompt.show("Error!", "Setup up your games' \\data\\ folder in tools->setup game data folder first",
                  prompt_icon::error);
    return false;
}

command_outcome model_commands::done(std::string action)
{
    m_last_action = std::move(action);
    return command_outcome::done;
}

command_outcome model_commands::save()
{
    m_last_action.clear();
    if (!hasModel())
        return command_outcome::cancelled;
    const std::string path = m_document.model().file()->path();
    if (!m_document.model().isEdited())
        return saveUnedited(path);
    return game_path(path).isInternal() || m_document.model().savesElsewhere() ? saveAs() : saveTo(path);
}

command_outcome model_commands::saveAs()
{
    m_last_action.clear();
    if (!hasModel())
        return command_outcome::cancelled;
    const save_place place(m_document.model().file()->path(), diskPath(), modFolder(), "");
    const auto path = pickModelPath("Save RigidModel File As", place.suggestion());
    return path ? saveTo(*path) : command_outcome::cancelled;
}

command_outcome model_commands::saveUnedited(const std::string& path)
{
    const std::string disk_path = diskPath();
    std::error_code error;
    if (disk_path.empty() || std::filesystem::exists(toPath(disk_path), error))
        return static_cast<void>(done("Nothing to save: " + std::string(fileName(path)) + " has no changes.")),
               command_outcome::cancelled;
    if (!m_prompt.confirm("Save", "This file is gone from the disk:\r\n" + disk_path + "\r\n\r\nWrite it again?",
                          prompt_answer::yes))
        return command_outcome::cancelled;
    return game_path(path).isInternal() ? saveAs() : saveTo(path);
}

std::optional<std::string> model_commands::pickModelPath(const std::string& title, const save_suggestion& suggestion)
{
    auto path = m_prompt.pickSavePath(title, model_filters, model_extension, suggestion);
    return path && !path->empty() ? path : std::nullopt;
}

std::string model_commands::diskPath() const
{
    const game_path path(m_document.model().file()->path());
    return path.isInternal() ? m_document.game()->find(path.internalPath()).diskPath() : path.text();
}

std::string model_commands::modFolder() const
{
    const std::vector<std::string> folders = m_config.get(config_keys::mod_folders);
    return folders.empty() ? std::string() : folders.back();
}

command_outcome model_commands::saveTo(const std::string& path)
{
    open_model& model = m_document.model();
    if (!mayWriteOver(path))
        return command_outcome::cancelled;
    if (hasMixedVersions(*model.file()))
        if (const command_outcome answer = confirmMixedVersions(); answer != command_outcome::done)
            return answer;
    std::string lost;
    for (const field_change& change : model.changes())
        if (!change.is_saved)
            lost += "\r\n" + describe(change, first_number);
    failure why;
    if (!model.save(path, why))
    {
        m_prompt.show("Error!", "The model could not be saved.\r\n\r\n" + describe(why), prompt_icon::error);
        return command_outcome::failed;
    }
    m_document.modelWasWritten();
    if (!lost.empty())
        m_prompt.show("Saved",
                      "The model was saved. The alpha mode of a group without textures is never written to the file; "
                      "these changes are not in it:\r\n" +
                          lost,
                      prompt_icon::warning);
    return done("Saved " + std::string(fileName(path)));
}

command_outcome model_commands::confirmMixedVersions()
{
    open_model& model = m_document.model();
    const std::string explanation =
        "This model was patched: since then it says version 7 over the headers of version 6. A file with that in it "
        "cannot be read by the games, nor by this program when it has several LODs.\r\n\r\n";
    const std::string patched = model.patchedPath();
    if (!patched.empty() && m_prompt.confirm("Save",
                                             explanation + "Open the patched file instead?\r\n" + patched +
                                                 (model.isEdited() ? "\r\n\r\nUnsaved changes are lost then." : ""),
                                             model.isEdited() ? prompt_answer::no : prompt_answer::yes))
    {
        failure why;
        if (m_document.open(patched, why))
            return command_outcome::opened_other;
        const open_error error = describeOpenFailure(patched, why, *m_document.game());
        m_prompt.show(error.title, error.text, prompt_icon::error);
        return command_outcome::failed;
    }
    return m_prompt.confirm("Save", explanation + "Save it nevertheless?", prompt_answer::no)
               ? command_outcome::done
               : command_outcome::cancelled;
}

command_outcome model_commands::patch()
{
    m_last_action.clear();
    if (!hasModel())
        return command_outcome::cancelled;
    open_model& model = m_document.model();
    if (const std::string reason = patchRefusal(*model.file()); !reason.empty())
    {
        const std::string& patched = model.patchedPath();
        m_prompt.show("Invalid Operation Requested!", patched.empty() ? reason : reason + "\r\n" + patched,
                      prompt_icon::error);
        return command_outcome::failed;
    }
    const save_place place(model.file()->path(), diskPath(), modFolder(), "_v7");
    const auto path = pickModelPath("Save Patched RigidModel File", place.suggestion());
    if (!path)
        return command_outcome::cancelled;
    failure why;
    if (!model.patch(*path, why))
    {
        m_prompt.show("Error!", "The patched model could not be written.\r\n\r\n" + describe(why), prompt_icon::error);
        return command_outcome::failed;
    }
    if (model.isEdited())
        m_prompt.show("Patched",
                      "The patched file holds the model as it was loaded or saved last: the unsaved changes are not in "
                      "it. Open it and make them there.\r\n" +
                          *path,
                      prompt_icon::warning);
    else if (m_prompt.confirm("Patched",
                              "The patched model was written:\r\n" + *path +
                                  "\r\n\r\nWhat is open here is still the model of version 6. Open the patched one "
                                  "instead?",
                              prompt_answer::yes))
    {
        if (m_document.open(*path, why))
            return static_cast<void>(done("Patched, and opened: " + *path)), command_outcome::opened_other;
        const open_error error = describeOpenFailure(*path, why, *m_document.game());
        m_prompt.show(error.title, error.text, prompt_icon::error);
    }
    return done("Patched: " + *path);
}

command_outcome model_commands::reset()
{
    m_last_action.clear();
    if (!isEnabled(document_command::reset) ||
        !m_prompt.confirm("Clear", "Are you sure you want to clear all fields?",
                          m_document.model().isEdited() ? prompt_answer::no : prompt_answer::yes))
        return command_outcome::cancelled;
    if (command_outcome saved{}; !mayLeaveModel(saved))
        return saved;
    m_document.close();
    return done("Everything is closed.");
}

command_outcome model_commands::undo()
{
    const std::string undone = m_document.model().undo();
    return undone.empty() ? command_outcome::cancelled : done("Undone: " + undone);
}

command_outcome model_commands::redo()
{
    const std::string redone = m_document.model().redo();
    return redone.empty() ? command_outcome::cancelled : done("Done again: " + redone);
}

command_outcome model_commands::chooseTexture(std::size_t row)
{
    if (!isEnabled(document_command::choose_texture) || row >= m_chosen_folders.size() ||
        row >= m_document.model().selectedGroup()->textures.size())
        return command_outcome::cancelled;
    const auto path = m_prompt.pickOpenPath("Choose DDS G", {{" Texture Files (*.dds)", "*.dds"}});
    if (!path || path->empty())
        return command_outcome::cancelled;
    m_chosen_folders[row] = path->substr(0, path->size() - fileName(*path).size());
    return showNotes(m_document.model().chooseTexture(row, *path));
}

command_outcome model_commands::chooseAlphaMode(int position)
{
    return showNotes(m_document.model().chooseAlphaMode(position));
}

command_outcome model_commands::setTexturePath(std::size_t row, const std::string& directory, const std::string& file)
{
    const command_outcome outcome = showNotes(m_document.model().setTexturePath(row, directory, file));
    if (outcome == command_outcome::done)
        if (const texture_path_fault fault = texturePathFault(directory + file); !fault.text.empty())
            m_last_action += " (beware: " + fault.text + ")";
    return outcome;
}

command_outcome model_commands::pasteIntoTexture(std::size_t row, std::string_view text)
{
    m_last_action.clear();
    const group_data* const group = m_document.model().selectedGroup();
    if (group == nullptr || row >= group->textures.size())
        return command_outcome::cancelled;
    const std::string path = pastedPath(text, group->textures[row].path_field.text(), internalRoots(m_config));
    const std::size_t cut = path.size() - fileName(path).size();
    return path.empty() ? command_outcome::cancelled : setTexturePath(row, path.substr(0, cut), path.substr(cut));
}

command_outcome model_commands::replacePathPrefix(std::string_view wanted, std::string_view replacement)
{
    return showNotes(m_document.model().replacePathPrefix(wanted, replacement));
}

copied_texture_paths model_commands::copyTexturePaths()
{
    copied_texture_paths copied{std::string(copy_paths_announcement), {}, {}, {}};
    if (const auto model = m_document.model().data())
    {
        copied.table = texturePathTable(*model, m_document.model().file()->path());
        std::vector<wanted_texture> wanted;
        addWantedTextures(*model, wanted);
        for (wanted_texture& texture : wanted)
        {
            copied.clipboard += texture.path + "\r\n";
            copied.wanted.push_back(std::move(texture.path));
        }
    }
    m_last_action = copy_paths_success;
    return copied;
}

command_outcome model_commands::showNotes(const edit_result& result)
{
    m_last_action = result.changed > 0 ? "Changed: " + result.summary : "";
    std::string text;
    for (const std::string& note : result.notes)
        text += (text.empty() ? "" : "\r\n") + note;
    if (!text.empty())
        m_prompt.show("Please note", text, prompt_icon::information);
    return result.changed > 0 ? command_outcome::done : command_outcome::cancelled;
}

bool model_commands::mayWriteOver(const std::string& path)
{
    return path != m_document.model().file()->path() || !m_document.isModelChangedOnDisk() ||
           m_prompt.confirm("Save",
                            "Another program has changed this file since it was opened here. Write over it?\r\n" + path,
                            prompt_answer::no);
}

command_outcome model_commands::offerReread(const disk_change& change)
{
    const std::string name(fileName(change.path));
    m_last_action.clear();
    if (change.is_gone)
        return done(name + " is gone from the disk. What was read of it is still here.");
    const bool is_edited = change.is_model && m_document.model().isEdited();
    if (!m_prompt.confirm("Changed on the disk",
                          "Another program has changed this file:\r\n" + change.path + "\r\n\r\nRead it again?" +
                              (is_edited ? " The changes that you made here and did not save are lost then." : ""),
                          is_edited ? prompt_answer::no : prompt_answer::yes))
        return command_outcome::cancelled;
    failure why;
    if (m_document.reread(change.path, why))
        return done("Read again: " + name);
    const open_error error = describeOpenFailure(change.path, why, *m_document.game());
    m_prompt.show(error.title, error.text + "\r\n\r\nWhat was open stays.", prompt_icon::error);
    return command_outcome::failed;
}

bool model_commands::mayLeaveModel(command_outcome& outcome)
{
    m_last_action.clear();
    outcome = command_outcome::cancelled;
    if (!m_document.model().isEdited())
        return true;
    switch (m_prompt.askToSave("Unsaved changes",
                               "Save the changes to this model?\r\n" + m_document.model().file()->path()))
    {
    case save_answer::save:
        outcome = save();
        return outcome == command_outcome::done;
    case save_answer::discard:
        return true;
    case save_answer::cancel:
        break;
    }
    return false;
}

} // namespace korvane
