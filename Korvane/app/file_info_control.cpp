#include "Korvane/app/file_info_control.h"

#include "Korvane/app/command_ids.h"

namespace korvane
{

bool file_info_control::createFields()
{
    using access = edit_box::access;
    return m_path_name.create(handle(), 0, "File Path: ") &&
           m_path.create(handle(), control_file_path, access::read_only) &&
           m_folder.create(handle(), control_open_folder, "Open Fol&der") &&
           m_version_name.create(handle(), 0, "Format Version: ") &&
           m_version.create(handle(), control_file_version, access::read_only) &&
           m_game_name.create(handle(), 0, "Used in: ") &&
           m_game.create(handle(), control_file_game, access::read_only) &&
           m_skeleton_name.create(handle(), 0, "Skeleton Id String:") &&
           m_skeleton.create(handle(), control_file_skeleton, access::read_only);
}

void file_info_control::placeFields()
{
    placeRow(0, {{&m_path_name, nameColumn()}, {&m_path}, {&m_folder, 90}});
    placeRow(1, {{&m_version_name, nameColumn()}, {&m_version}});
    placeRow(2, {{&m_game_name, nameColumn()}, {&m_game}});
    placeRow(3, {{&m_skeleton_name, nameColumn()}, {&m_skeleton}});
}

void file_info_control::show(const std::optional<file_info_content>& content)
{
    const std::optional<COLORREF> colour = content ? std::optional(systemColour(loaded_colour)) : std::nullopt;
    for (edit_box* const field : {&m_path, &m_version, &m_game, &m_skeleton})
    {
        setFieldColour(*field, colour);
        field->setText(empty_file_field);
    }
    m_folder.setEnabled(content && content->is_on_disk);
    if (!content)
        return;
    m_game.setText(content->game);
    m_path.setText(content->path);
    m_version.setText(content->version);
    m_skeleton.setText(content->skeleton_id);
}

bool file_info_control::onCommand(int id, int notification, HWND)
{
    if (id != control_open_folder || notification != BN_CLICKED)
        return false;
    m_open_folder();
    return true;
}

} // namespace korvane
