#include "Korvane/presenters/help_texts.h"

#include "EASY_GUI/services/version.h"
#include "Korvane/document/command_table.h"

namespace korvane
{

namespace
{

// Without mnemonics and without what stands behind a tab: "Save As...".
std::string nameOf(std::string_view text)
{
    std::string name;
    for (const char character : text.substr(0, text.find('\t')))
        if (character != '&')
            name += character;
    while (name.ends_with(' '))
        name.pop_back();
    return name;
}

std::string shortcutLines()
{
    std::string lines;
    for (const command_row& row : commandTable())
    {
        const std::size_t tab = row.text.find_last_of('\t');
        if (tab == row.text.npos)
            continue;
        std::string keys(row.text.substr(tab + 1));
        keys.erase(0, keys.find_first_not_of(' '));
        lines += keys + ": " + nameOf(row.text) + ". " + std::string(row.help) + "\n";
    }
    return lines +
           "Ctrl+1 to Ctrl+9: the files that were opened last.\n"
           "Ctrl+Tab, Ctrl+Shift+Tab: the next page, the page before.\n"
           "Tab, Shift+Tab: the next field, the field before. Alt and an underlined letter: that field or menu.\n";
}

} // namespace

std::vector<help_paragraph> guideTexts()
{
    return {
        {"Say where the game is",
         "Choose Tools, Setup Game Folders... and add the folder \"data\" of your game, or let \"Find Games\" propose "
         "it. "
         "Then textures, skeletons and whole units are found in the game's archives. Add the folder of your mod there, "
         "too: what lies in it counts before everything in the archives.\n"},
        {"Open a unit",
         "Choose File, Open, or drop a file on the window. A definition (.variantmeshdefinition) is a whole unit: the "
         "page Definition shows what it is made of, and the 3D view draws it. A double click or Enter on one of its "
         "models opens that on the page Model.\n"},
        {"Find out what is wrong",
         "The page Problems says what would go wrong in the game: missing textures, broken references and the like. A "
         "double click or Enter on a finding leads to the place. Edit, Test... reads the open model again and compares "
         "it with what is shown.\n"},
        {"Repaint it",
         "On the page Model, choose LOD and group. Drop a picture (PNG, Targa, DDS) on a texture row, or press "
         "\"Replace "
         "Picture...\": it becomes a texture like the one that it replaces, in your mod folder, and the view shows it "
         "at "
         "once. \"Edit Picture...\" opens the texture in your picture editor and takes it up each time you save.\n"},
        {"Let a model use other textures",
         "Type the path into the texture row, paste it, or choose a file with \"....\". With \"Fill all LODs in "
         "GROUP\" "
         "every change reaches the same group of all LODs. Edit, Replace Path Prefix... changes the beginning of many "
         "paths at once, after showing which. Each change can be undone with Ctrl+Z.\n"},
        {"Take textures out",
         "\"Find+Upack DDS\" writes the textures of the open model below the folder that \"Select Dir...\" chooses, as "
         "DDS, PNG or Targa files. Edit, Copy textures paths puts their paths on the clipboard.\n"},
        {"Convert normal maps", "The games keep normal maps in an orange form, picture editors use the blue one. File, "
                                "Normal Maps... converts "
                                "one into the other, several files at once.\n"},
        {"Bring an animation in",
         "Animations, Convert FBX animation to .ANIM takes the FBX file of your 3D program and, as template, the "
         "skeleton's .anim file. It shows which bones match, writes the animation, and \"Play\" shows it in the 3D "
         "view.\n"},
        {"Save, and patch",
         "File, Save writes the changes into the model's own file, Save As... into another one. A model out of an "
         "archive gets a file of its own; the game's archives are never written to. File, Patch from v6 to v7 (WH) "
         "makes a version 7 model of a version 6 one, in another file. When the program or the system ends by itself, "
         "what "
         "was not saved is offered at the next start.\n"},
        {"The 3D view",
         "Drag with the left button: turn, with Shift the light. Right or middle button: move. Wheel: closer, away. A "
         "click chooses the group there. Double click, Escape: fill the screen, and back.\n"
         "H shows all keys of the view; a click with the right button opens its menu, with everything that can be "
         "shown: skeleton, weights of a bone, channels of the textures, edges, shadow.\n"},
        {"Keys of this window", shortcutLines()},
    };
}

std::vector<help_paragraph> legalTexts()
{
    return {
        {"FBX files",
         "This program reads and writes FBX files with code of its own, written by its contributors for it. It is part "
         "of the program and stands under the program's own licence (MIT).\n"},
        {"No library of a vendor",
         "The FBX SDK, or any other library of the format's vendor, is neither linked nor loaded nor delivered with "
         "this "
         "program, so no licence of such a library applies to it. FBX is a format of its vendor, who has no part in "
         "this program and does not answer for it.\n"},
        {"What is used", "The compressed arrays in FBX files are packed and unpacked by libdeflate (MIT licence). "
                         "Help, Info And Credits "
                         "names all libraries of the program.\n"},
    };
}

std::string aboutText()
{
    return std::string(program_name) + ' ' + std::string(program_version) +
           "\r\n\r\nOpens, checks, repaints and draws the rigid_model_v2 models of the Total War games, alone or as "
           "variant mesh definitions put them together, from the disk and from .pack archives."
           "\r\n\r\nMade by the Korvane contributors; free software under the MIT licence."
           "\r\n\r\nUses GLM, JSON for Modern C++, libdeflate, liblzma (XZ Utils), libsquish, LodePNG, LZ4, pugixml "
           "and "
           "Zstandard, and of Windows its common controls and Direct3D 11."
           "\r\n\r\nFBX files are read and written by code of its own.";
}

} // namespace korvane
