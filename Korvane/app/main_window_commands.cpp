// What happens when a command is given to the main window, by menu, shortcut, button or tab, and what the system tells
// it.

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
        {command::guide, [this] { showGuide(helpTopic()); }},
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

LRESULT main_window::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_ENDSESSION && wparam != 0) // the system ends the program now and asks nobody
    {
        std::string where;
        failure why;
        if (m_ports.keeper.keep(where, why) == edit_keeper::outcome::failed)
            logLine("main_window: the changes that were not saved could not be kept: " + describe(why));
    }
    const bool is_activated = message == WM_ACTIVATEAPP && wparam != FALSE;
    if (is_activated && m_po_font != nullptr && !isBusy())
        takeUpConfig();
    if ((message == WM_TIMER && wparam == look_timer) || is_activated)
        followFiles();
    if (message == WM_INITMENUPOPUP)
    {
        takeTyped();
        m_menu.enable([this](document_command command) { return isEnabled(command); });
    }
    if (message == WM_HELP) // of a dialog; the system's own for F1, which is a command here, has no context
        if (const auto* const about = reinterpret_cast<const HELPINFO*>(lparam); about->dwContextId != 0)
            return showGuide(static_cast<help_topic>(about->dwContextId)), TRUE;
    return window::handleMessage(message, wparam, lparam);
}

// Of what is worked with.
help_topic main_window::helpTopic() const
{
    return m_playback_box.isOpen() && GetActiveWindow() == m_playback_box.handle() ? help_topic::playing
                                                                                   : shownPage().helpTopic();
}

void main_window::showGuide(help_topic topic)
{
    failure why;
    const std::optional<std::string> way = wayIntoGuide(m_ports.guide_folder, topic, why);
    if (!way)
        m_ports.prompt.show("Guide", "The guide cannot be shown.\r\n\r\n" + describe(why), prompt_icon::error);
    else if (!m_ports.open_page(*way))
        m_ports.prompt.show("Guide",
                            "No program opens pages here. Open this one with a browser:\r\n\r\n" +
                                m_ports.guide_folder + "guide.html",
                            prompt_icon::error);
}

void main_window::showAbout()
{
    m_ports.prompt.show("Info And Credits", aboutText(), prompt_icon::information);
}

} // namespace korvane
