#include "Korvane/presenters/help_texts.h"

#include "EASY_GUI/services/version.h"

namespace korvane
{

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
