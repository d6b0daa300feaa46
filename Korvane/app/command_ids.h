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
// Keys that each page has its own use for, if any: F3, and Alt with an arrow.
constexpr int find_command = 222;
constexpr int back_command = 223;
constexpr int forward_command = 224;

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
    control_fbx_summary,
    control_fbx_tree,
    control_fbx_convert,

    control_dialog_text = 1040, // of the dialogs
    control_dialog_copy,
    control_dialog_close,
    control_prefix_wanted,
    control_prefix_replacement,
    control_prefix_summary,
    control_prefix_changes,
    control_prefix_replace,

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
    control_texture_choose = 1530,
    control_texture_marker = 1540,
    control_preview_channels,
    control_preview_text,
    control_replace_picture,
    control_edit_picture,
    control_extract_textures,
    control_choose_texture_folder,
    control_open_texture_folder,
    control_textures_flat,
    control_textures_as_picture,
    control_picture_kind,
    control_progress,
    control_extraction_status,

    control_folder_list = 1600,
    control_folder_add_data,
    control_folder_add_mod,
    control_folder_remove,
    control_folder_up,
    control_folder_down,
    control_folder_find,
    control_folder_box,
    control_folder_browse,
    control_folder_summary,
    control_folder_ok,
    control_folder_cancel,
    control_found_games,
    control_found_add,
    control_found_cancel,

    control_picture_size = 1640,
    control_picture_width,
    control_picture_height,
    control_picture_proportions,
    control_picture_background,
    control_picture_samples,
    control_picture_note,
    control_picture_save,

    control_export_mode = 1670,
    control_export_format,
    control_export_skeleton,
    control_export_filter,
    control_export_all,
    control_export_none,
    control_export_list,
    control_export_status,
    control_export_stop,
    control_export_progress,
    control_export_lod,
    control_export_textures,
    control_export_span,
    control_export_together,
    control_export_folder,
    control_export_browse,
    control_export_name,
    control_export_message,
    control_export_open,
    control_export_dump,
    control_export_start,

    control_playback_skeleton = 1700,
    control_playback_filter,
    control_playback_list,
    control_playback_status,
    control_playback_folders,
    control_playback_stop,
    control_playback_message,
    control_playback_track,
    control_playback_progress,
    control_playback_play,
    control_playback_back,
    control_playback_next,
    control_playback_frame,
    control_playback_time,
    control_playback_first,
    control_playback_last,
    control_playback_all,
    control_playback_speed,

    control_convert_path = 1760,    // + file
    control_convert_browse = 1765,  // + file
    control_convert_field = 1770,   // + field
    control_convert_problem = 1775, // + field
    control_convert_archives = 1780,
    control_convert_take,
    control_convert_games,
    control_convert_bones,
    control_convert_summary,
    control_convert_log,
    control_convert_progress,
    control_convert_status,
    control_convert_stop,
    control_convert_results,
    control_convert_play,
    control_convert_dump,
    control_convert_run,
    control_convert_version,
    control_convert_prefix,

    control_bone_table_path = 1810,
    control_bone_table_browse,
    control_bone_table_archives,
    control_bone_table_list,
    control_bone_table_status,
    control_bone_table_write,

    control_cache_list = 1830,
    control_cache_details,
    control_cache_rebuild,
    control_cache_delete,
    control_cache_use,
    control_cache_use_text,
    control_cache_status,
    control_cache_progress,
    control_cache_stop,

    control_archive_anim_filter = 1820,
    control_archive_anim_list,
    control_archive_anim_ok,

    control_archive_back = 1840,
    control_archive_forward,
    control_archive_up,
    control_archive_path,
    control_archive_find,
    control_archive_type,
    control_archive_archive,
    control_archive_tree,
    control_archive_list,
    control_archive_text,
    control_archive_caption,
    control_archive_details,
    control_archive_news,
    control_archive_reread,
    control_archive_status,
    control_archive_open,
    control_archive_take_out,
    control_archive_favourites,
    control_archive_overview,

    control_viewer_form = 1870,
    control_viewer_find,
    control_viewer_next,
    control_viewer_position,
    control_viewer_text,
    control_viewer_bytes,
    control_viewer_status,

    control_texture_channels = 1900,
    control_texture_level,
    control_texture_surface,
    control_texture_fit,
    control_texture_actual,
    control_texture_text,
    control_texture_pixel,

    control_overview_list = 1890,
    control_overview_facts,
    control_overview_show,

    control_take_out_files = 1880,
    control_take_out_folder,
    control_take_out_browse,
    control_take_out_layout,
    control_take_out_textures,
    control_take_out_there,
    control_take_out_note,
    control_take_out_ok,

    control_name_field = 1890,
    control_name_note,
    control_name_ok,
};

} // namespace korvane
