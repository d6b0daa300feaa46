#pragma once

// Every command of the main window, by a name of its own. Where it stands, how it is called and which keys give it is
// the command table's; when it makes sense is model_commands'; the window runs it.

namespace korvane
{

enum class document_command
{
    open,
    open_recent, // the submenu of the files that were opened last
    save_as,
    save,
    export_static,
    export_animated,
    patch,
    normal_map_to_orange,
    normal_map_to_blue,
    reread_archives,
    reset,
    exit,
    save_picture,
    test,
    copy,
    paste,
    undo,
    redo,
    replace_path_prefix,
    copy_texture_paths,
    game_folders,
    index_cache,
    convert_animation,
    generate_bone_table,
    play_animation,
    open_definition,
    about,
    legal,
    guide,

    // of the pages: in no menu
    open_folder, // of the model
    choose_lod_and_group,
    choose_alpha_mode,
    fill_all_lods,
    choose_texture,
    set_texture_path,
    replace_picture,
    edit_picture,
    extract_textures,
    choose_texture_folder,
    open_texture_folder,
    show_view
};

} // namespace korvane
