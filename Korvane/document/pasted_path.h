#pragma once

// What copying gives and what pasting into a texture row means, as texts.

#include "EASY_GUI/services/config_file.h"
#include "Korvane/document/open_model.h"
#include "Korvane/game/game_data.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// The folders below which a file of the disk has an internal path: the mod folders, and the data folders.
[[nodiscard]] std::vector<std::string> internalRoots(const config_file& config);

// The path for a texture row into which a text was pasted or a file dropped. Of the text the first line counts, without
// blanks and quotation marks around it. A file below one of the roots becomes its internal path, any other file of the
// disk, or a mere name, stands behind the row's directory; what has folders of its own is taken as it is. former is the
// row's path, whose kind of separator is used. Empty: there is nothing to paste.
[[nodiscard]] std::string pastedPath(std::string_view text, std::string_view former,
                                     const std::vector<std::string>& roots);

// What can be opened of a text that was pasted into nothing: a model or a definition, as a path with "pack:", as an
// internal path that the game holds, which gets "pack:", or as a whole path of the disk. Of the text the first line
// counts. Empty: nothing.
[[nodiscard]] std::string openablePath(std::string_view text, const game_data& game);

// The selected group told as a text; empty: none is selected.
[[nodiscard]] std::string selectedGroupText(const open_model& model);

} // namespace korvane
