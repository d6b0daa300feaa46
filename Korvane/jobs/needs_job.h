#pragma once

// Everything that models and figures need: definitions, models, their textures and skeletons, followed to the end.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/file_uses.h"
#include "Korvane/game/game_data.h"
#include "Korvane/game/game_path.h"

#include <string>
#include <vector>

namespace korvane
{

struct needed_file
{
    std::string path; // internal
    use_kind kind = use_kind::texture;
    game_file found;       // where it lies; empty: it is missing
    std::string needed_by; // the file that names it, the first that was met
};

struct needs_result
{
    std::vector<needed_file> files; // each once, ordered by path
    std::vector<failure> damaged;   // files that are there but could not be read, so that what they need is not known

    [[nodiscard]] bool isWhole() const; // nothing is missing, nothing damaged
};

// The files themselves are left out. Of a file on the disk what it names is looked for around it, too. False, with the
// reason, when one of the files cannot be read; a stop gives what was found until then.
[[nodiscard]] bool findNeeds(const game_data& game, const std::vector<game_path>& files, const work_port& work,
                             needs_result& result, failure& why);

} // namespace korvane
