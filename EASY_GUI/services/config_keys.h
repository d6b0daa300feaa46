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
inline constexpr std::string_view first_time = "first_time";   // empty until the notice of the first start was shown
inline constexpr std::string_view folder_box_text = "folder_box_text_saved"; // last typed into the dialog of folders

inline constexpr std::array known = {data_folders, mod_folders, recent_files,   converted_files,
                                     packs_cache,  first_time,  folder_box_text};

} // namespace korvane::config_keys
