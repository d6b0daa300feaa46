#include "Korvane/document/command_table.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace korvane
{

namespace
{

using command = document_command;

constexpr std::string_view file_menu = "&File";
constexpr std::string_view edit_menu = "&Edit";
constexpr std::string_view animations_menu = "&Animations";
constexpr std::string_view help_menu = "&Help";
constexpr std::string_view normal_maps = "&Normal Maps...";
constexpr std::string_view page; // in no menu

// "Save As" and "Save" share their mnemonic, and some words are spelled oddly: both are documented so.
constexpr command_row table[] = {
    {command::open, file_menu, "&Open \t\t Ctrl+O", "Opens a model or a variant mesh definition."},
    {command::open_recent, file_menu, "&Recent Files...", "Opens one of the files that were opened last."},
    {command::save_as, file_menu, "&Save As...", "Writes the model to another file.", "", "", true},
    {command::save, file_menu, "&Save \t\t Ctrl+S", "Writes the changes to the model's own file."},
    {command::export_static, file_menu, "Export S&TATIC model...",
     "Writes the model alone as a scene for other programs.", "", "", true},
    {command::export_animated, file_menu, "Export Model+Skeleton+&ANIM",
     "Writes the model with its skeleton and an animation as a scene for other programs.", "MENU_FILE_EXPORT_ANIM"},
    {command::patch, file_menu, "Patch from v6 to &v7 (WH)", "Writes a version 6 model as version 7 to another file.",
     "MENU_FILE_PATCH"},
    {command::normal_map_to_orange, file_menu, "Convert From &BLUE to ORANGE (CA) type",
     "Converts normal maps of ordinary tools into the games' kind.", "MENU_FILE_NORMALMAP_TO_ORANGE", normal_maps,
     true},
    {command::normal_map_to_blue, file_menu, "Convert From &ORANGE (CA) to BLUE type",
     "Converts normal maps of the games into the kind of ordinary tools.", "MENU_FILE_NORMALMAP_TO_BLUE", normal_maps},
    {command::reread_archives, file_menu, "Re-read .&pack files...", "Reads the archives of the game folders again.",
     "MENU_FILE_UPDATE", "", false, true},
    {command::reset, file_menu, "R&eset \t\t Ctrl+L", "Closes what is open.", "", "", true},
    {command::exit, file_menu, "E&xit \t\t Alt+F4", "Ends the program."},
    {command::save_picture, file_menu, "Save P&icture...", "Writes what the 3D view shows as a picture.", "", "", true},

    {command::test, edit_menu, "&Test...",
     "Reads the open model again and compares: is every byte understood, what is wrong?", "MAIN_EDIT_TEST"},
    {command::copy, edit_menu, "&Copy \t\t Ctrl+C",
     "Copies what is selected: a text, findings, the description of the group.", "", "", true},
    {command::paste, edit_menu, "&Paste \t\t Ctrl+V",
     "Pastes a text, or a file's path into a texture row; elsewhere opens what the path names."},
    {command::undo, edit_menu, "&Undo \t\t Ctrl+Z", "Takes the last change back.", "", "", true},
    {command::redo, edit_menu, "&Redo \t\t Ctrl+Y", "Makes the change again that was taken back last."},
    {command::replace_path_prefix, edit_menu, "Replace Path Pre&fix...",
     "Replaces the beginning of texture paths in the whole model, after showing what would change.", "", "", true},
    {command::copy_texture_paths, edit_menu, "Cop&y textures paths",
     "Puts the model's texture paths on the clipboard and on the list of files to extract."},

    {command::game_folders, "&Tools", "&Setup Game Folders...",
     "Says where the games' data folders and your mod folders are."},
    {command::index_cache, "&Tools", "&Index Cache...",
     "Says what is kept of the archives so that a start is quick, and makes it anew or deletes it."},

    {command::convert_animation, animations_menu, "Convert &FBX animation to .ANIM\t Ctrl+Shift+C",
     "Makes a game animation out of an FBX file."},
    {command::generate_bone_table, animations_menu, "&Generate .bone_table From .ANIM\t Ctrl+Shift+G",
     "Writes the bones of a skeleton as a table."},
    {command::play_animation, animations_menu, "&Play Animation... \t\t Ctrl+P",
     "Lists the animations that are made for what is open, and plays them in the 3D view.", "", "", true},

    {command::open_definition, "&Variants", "&Open .variantmeshdefintion file", "Opens a variant mesh definition.",
     "MENU_VARIANT_OPEN"},

    {command::about, help_menu, "&Info And Credits", "Says what this program is, its version and what it is made of."},
    {command::legal, help_menu, "&Legal Info about FBX SDK", "Says whose code reads and writes FBX files."},
    {command::guide, help_menu, "&Guide \t\t F1", "Shows how to do the usual things."},

    {command::open_folder, page, "Open Folder", "Shows the model's file in its folder."},
    {command::choose_lod_and_group, page, "", "Chooses the group that is shown."},
    {command::choose_alpha_mode, page, "", "Sets the alpha mode of the group."},
    {command::fill_all_lods, page, "Fill all LODs in GROUP", "Lets every change reach the same group of all LODs."},
    {command::choose_texture, page, "....", "Chooses a DDS file for the texture row."},
    {command::set_texture_path, page, "", "Sets the path of the texture row as it was typed."},
    {command::replace_picture, page, "Replace Picture...", "Makes a texture of a picture, and the row points at it."},
    {command::edit_picture, page, "Edit Picture...",
     "Opens the texture in the system's picture editor and follows it."},
    {command::extract_textures, page, "Find+Upack DDS", "Extracts the model's textures from the archives.", "", "",
     false, true},
    {command::choose_texture_folder, page, "Select Dir...", "Chooses the folder into which textures are extracted."},
    {command::open_texture_folder, page, "Open Dir...", "Shows the folder into which textures are extracted."},
    {command::show_view, page, "Show 3D View", "Shows the model in a window of its own."},
};

} // namespace

std::span<const command_row> commandTable()
{
    return table;
}

const command_row& rowOf(document_command wanted)
{
    return *std::find_if(std::begin(table), std::end(table),
                         [wanted](const command_row& row) { return row.command == wanted; });
}

std::optional<key_shortcut> shortcutOf(std::string_view text)
{
    const std::size_t tab = text.find_last_of('\t');
    if (tab == std::string_view::npos)
        return std::nullopt;
    std::string keys;
    for (const char character : text.substr(tab + 1))
        if (character != ' ')
            keys += character;
    key_shortcut found;
    const char* const end = keys.data() + keys.size();
    if (keys.starts_with('F') && std::from_chars(keys.data() + 1, end, found.function_key).ptr == end &&
        found.function_key > 0)
        return found;
    const std::string_view control = "Ctrl+";
    const std::string_view shift = "Shift+";
    if (!keys.starts_with(control))
        return std::nullopt;
    keys.erase(0, control.size());
    const bool with_shift = keys.starts_with(shift);
    keys.erase(0, with_shift ? shift.size() : 0);
    return keys.size() == 1 ? std::optional(key_shortcut{keys[0], with_shift}) : std::nullopt;
}

} // namespace korvane
