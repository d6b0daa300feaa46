#pragma once

// The keys of the configuration that the program knows (docs/formats/config_cfg.md, "Keys"). Others are kept, and
// nobody asks for them.

#include <array>
#include <string_view>

namespace korvane::config_keys
{

inline constexpr std::string_view data_folders = "data_paths";          // of the game, each with a separator at its end
inline constexpr std::string_view mod_folders = "mod_paths";            // over the archives, the last one on top
inline constexpr std::string_view recent_files = "config_recent_files"; // newest first
inline constexpr std::string_view converted_files = "fbx_converted_files";
inline constexpr std::string_view packs_cache = "packs_cache"; // the file's name or path
inline constexpr std::string_view cache_use = "cache_use";     // "always", "never"; else where it pays
inline constexpr std::string_view first_time = "first_time";   // empty until the notice of the first start was shown
inline constexpr std::string_view folder_box_text = "folder_box_text_saved"; // last typed into the dialog of folders

inline constexpr std::string_view internal_folders = "internal_folders"; // last shown in the browser of the archives
inline constexpr std::string_view archive_sorting =
    "archive_sorting"; // of its list: "size", "size down"; none: by path
inline constexpr std::string_view favourite_folders = "favourite_folders";        // of the archives
inline constexpr std::string_view bone_list_path = "bone_list_path";              // the folder of bone tables
inline constexpr std::string_view older_converted_files = "converted_anim_files"; // older name of converted_files: read
// Folders that were last used for a conversion.
inline constexpr std::string_view last_fbx_folder = "fbx_to_anim_dialog__last_fbx_dir";
inline constexpr std::string_view last_anim_folder = "fbx_to_anim_dialog__last_anim_dir";
inline constexpr std::string_view last_export_folder = "fbx_to_anim_dialog__last_export_dir";
inline constexpr std::string_view conversion_choices = "fbx_to_anim_dialog__choices"; // "games": their layout
// Of extracted textures.
inline constexpr std::string_view texture_folder = "texture_folder";
inline constexpr std::string_view texture_choices = "texture_choices"; // "dds", "png" or "tga"; "flat"
// Of saved pictures: "view" or the pixels as in "1920x1080"; "samples" and how many; "transparent"; "free", when own
// sizes need not keep the view's proportions.
inline constexpr std::string_view picture_choices = "picture_choices";
// Of exports: the folder; "fbx", "dae" or "glb", "found", "dds" or "png", "all" levels of detail, "span", "apart".
inline constexpr std::string_view export_folder = "export_folder";
inline constexpr std::string_view export_settings = "export_choices";
// Of files taken out of the archives: the folder; "dds", "png" or "tga", "flat", "replace".
inline constexpr std::string_view take_out_folder = "take_out_folder";
inline constexpr std::string_view take_out_settings = "take_out_choices";
// Of the windows: left top right bottom dpi, and 1 when it is maximised (Korvane/document/window_place.h).
inline constexpr std::string_view main_window_place = "window_place";
inline constexpr std::string_view view_place = "view_place";
inline constexpr std::string_view playback_place = "playback_place"; // of the box of animations
inline constexpr std::string_view page = "page";                     // that was shown last
inline constexpr std::string_view columns_prefix = "columns_";       // and the list's name: the widths of its columns

inline constexpr std::array known = {
    data_folders,    mod_folders,       recent_files,       converted_files,    packs_cache,
    first_time,      folder_box_text,   internal_folders,   bone_list_path,     older_converted_files,
    last_fbx_folder, last_anim_folder,  last_export_folder, conversion_choices, export_folder,
    export_settings, main_window_place, view_place,         playback_place,     page,
    texture_folder,  texture_choices,   picture_choices,    take_out_folder,    take_out_settings,
    cache_use,       archive_sorting,   favourite_folders};

} // namespace korvane::config_keys
