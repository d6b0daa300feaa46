#pragma once

// A picture in place of a texture: it becomes a DDS file like the texture (format, mip maps, form of normal maps) below
// the mod folder, at the texture's internal path or another one. The window's way to repaint; the console has "dds".

#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_data.h"

#include <memory>
#include <string>
#include <string_view>

namespace korvane
{

struct replace_picture_request
{
    std::shared_ptr<const game_data> game; // never null
    std::string picture;                   // PNG, Targa or DDS, on the disk
    std::string internal_path;             // of the texture that it is like
    std::string model_path;                // around which the texture is looked for, too
    std::string mod_folder;                // empty: refused
    std::string target_path = {};          // internal, where it goes; empty: internal_path
    bool is_normal_map = false;            // for a texture that is nowhere
};

struct replaced_picture
{
    std::string internal_path; // that the row is to have
    std::string path;          // on the disk, as it was written
    bool was_there = false;    // with the same bytes
    std::string text;          // one line for a status bar
};
// False, with the reason, when nothing was written: what stood at the path stands there still. A texture that is
// nowhere makes a new one, BC7. A DDS file of the texture's own format is taken as it is. A worker's.
[[nodiscard]] bool replacePicture(const replace_picture_request& request, const work_port& work,
                                  replaced_picture& result, failure& why);

inline constexpr std::string_view no_mod_folder_text = "No mod folder is set yet: what you paint or put in goes there, "
                                                       "and the game's archives stay as they are. Set one in "
                                                       "Tools > Setup Game Folders.";

// The internal path of a new texture beside another one, named after the picture.
[[nodiscard]] std::string newTexturePath(std::string_view internal_path, const std::string& picture);

} // namespace korvane
