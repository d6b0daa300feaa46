#pragma once

// The numbers of commands (menu items, shortcuts) and of controls. Tests find controls by them; resource numbers are in
// resources.h.

#include "Korvane/document/document_command.h"

namespace korvane
{

// Of the command's menu item and shortcut.
constexpr int numberOf(document_command command)
{
    return 100 + static_cast<int>(command);
}
constexpr int recent_file_first = 200; // ten of them
constexpr int next_page_command = 220;
constexpr int former_page_command = 221;

enum control_id : int
{
    control_frame = 1000, // of each panel
    control_status,
    control_show_view,
    control_tabs,
    control_empty_choice, // three of them

    control_definition_counts = 1020,
    control_definition_tree,
    control_definition_attributes,
    control_definition_open,
    control_problem_summary,
    control_problem_list,
    control_problem_go,
    control_problem_check,

    control_file_path = 1100,
    control_file_version,
    control_file_game,
    control_file_skeleton,
    control_open_folder,

    control_lod = 1200,
    control_group,
    control_fill_all_lods,

    control_material_name = 1300,
    control_material_id,
    control_group_name,
    control_shader_name,
    control_vertex_label,
    control_vertex_format,

    control_tool_caption = 1400,
    control_tool_group_name,
    control_tool_vertex_format,
    control_tool_vertex_label,
    control_tool_material_flags,
    control_tool_alpha_mode,

    control_texture_type = 1500, // + row
    control_texture_directory = 1510,
    control_texture_file = 1520,
};

} // namespace korvane
