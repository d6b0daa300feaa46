// What happens when a command is given to the main window, by menu, shortcut, button or tab.

#include "Korvane/app/command_ids.h"
#include "Korvane/app/copy_paste.h"
#include "Korvane/app/export_dialog.h"
#include "Korvane/app/main_window.h"
#include "Korvane/app/picture_dialog.h"
#include "Korvane/app/tool_commands.h"
#include "Korvane/document/recent_files.h"
#include "Korvane/presenters/help_texts.h"

namespace korvane
{

void main_window::nameActions()
{
    using command = document_command;
    m_actions = {
        {command::open, [this] { m_opening.chooseFile(); }},
        {command::open_definition, [this] { m_opening.chooseDefinition(); }},
        {command::save, [this] { took(m_commands.save()); }},
        {command::save_as, [this] { took(m_commands.saveAs()); }},
        {command::patch, [this] { took(m_commands.patch()); }},
        {command::reset, [this] { reset(); }},
        {command::undo, [this] { took(m_commands.undo()); }},
        {command::redo, [this] { took(m_commands.redo()); }},
        {command::reread_archives, [this] { rereadArchives(false); }},
        {command::copy, [this] { copySelection(*this, shownPage()); }},
        {command::paste, [this] { pasteText(*this, shownPage()); }},
        {command::save_picture, [this] { savePicture(); }},
        {command::export_static, [this] { exportStatic(*this); }},
        {command::export_animated, [this] { exportAnimated(*this, m_display.scene(), m_ports.open_folder); }},
        {command::exit, [this] { SendMessageW(handle(), WM_CLOSE, 0, 0); }},
        {command::test, [this] { testModel(*this); }},
        {command::replace_path_prefix, [this] { replacePathPrefix(*this); }},
        {command::normal_map_to_orange, [this] { convertNormalMaps(*this, normal_form::orange); }},
        {command::normal_map_to_blue, [this] { convertNormalMaps(*this, normal_form::blue); }},
        {command::legal, [this] { showLegal(*this); }},
        {command::convert_animation, [this] { convertAnimation(*this); }},
        {command::generate_bone_table, [this] { generateBoneTable(*this); }},
        {command::guide, [this] { showGuide(*this); }},
        {command::about, [this] { showAbout(); }},
        {command::game_folders, [this] { setUpFolders(); }},
        {command::index_cache, [this] { showIndexCache(*this); }},
        {command::play_animation, [this] { m_playback_box.open(); }},
        {command::show_view, [this] { showView(scene_display::focus::moves); }},
    };
    for (const command of_textures :
         {command::choose_texture, command::replace_picture, command::edit_picture, command::extract_textures,
          command::choose_texture_folder, command::open_texture_folder, command::copy_texture_paths})
        m_actions[of_textures] = [this, of_textures] { m_model_page.textures().run(of_textures); };
}

// But for the log.
view_events main_window::viewEvents()
{
    view_events events;
    events.picked = [this](const shown_group& group) { picked(group); };
    events.choose_animation = [this] { m_playback_box.open(); };
    events.save_picture = [this] { savePicture(); };
    events.played = [this] { m_playback_box.showPlaying(); };
    return events;
}

// A command looks at the document, and what was typed into a field is meant to be in it.
void main_window::takeTyped()
{
    if (!isBusy())
        for (page* const each : m_pages)
            each->takeTyped();
}

bool main_window::isEnabled(document_command command) const
{
    return m_commands.isEnabled(command, {view() != nullptr, isBusy()});
}

bool main_window::onCommand(int id, int, HWND control)
{
    if (control != nullptr) // controls handle their own
        return false;
    if (id == IDCANCEL || (id >= find_command && id <= forward_command))
        return shownPage().onPageKey(id);
    if (id == next_page_command || id == former_page_command)
        return m_tabs.selectNext(id == former_page_command), true;
    if (id >= recent_file_first && id < recent_file_first + static_cast<int>(max_recent_files))
        return m_opening.openRecent(static_cast<std::size_t>(id - recent_file_first)), true;
    for (const command_row& row : commandTable())
        if (numberOf(row.command) == id)
            return runCommand(row.command), true;
    return false;
}

void main_window::runCommand(document_command command)
{
    takeTyped();
    const auto found = m_actions.find(command);
    if (found == m_actions.end() || !isEnabled(command))
        return;
    if (rowOf(command).needs_archives)
    {
        takeUpConfig();
        if (!m_commands.mayUseArchives())
            return runCommand(document_command::game_folders);
    }
    found->second();
}

void main_window::took(command_outcome outcome)
{
    if (outcome == command_outcome::opened_other)
        m_opening.addRecentFile(m_document.model().file()->path());
    if (!m_commands.lastAction().empty())
        setStatus(m_commands.lastAction());
    if (outcome == command_outcome::done && m_document.model().hasModel())
        showEdited();
    else if (outcome == command_outcome::done || outcome == command_outcome::opened_other)
        showDocument();
}

void main_window::reset()
{
    const command_outcome outcome = m_commands.reset();
    took(outcome);
    if (outcome == command_outcome::done)
        m_fbx_page.show({});
}

void main_window::savePicture()
{
    const picture_maker maker = view()->pictureMaker();
    if (!maker)
        return setStatus("There is nothing to be seen in the 3D view yet.");
    korvane::savePicture(*this, maker, m_document.shownName() + ".png");
}

void main_window::showAbout()
{
    m_ports.prompt.show("Info And Credits", aboutText(), prompt_icon::information);
}

} // namespace korvane
