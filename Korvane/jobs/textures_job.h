#pragma once

// The textures of models, and of definitions with all their models, taken out of the game or from the disk around them
// (texture_extraction.h).

#include "Korvane/game/game_source.h"
#include "Korvane/jobs/texture_extraction.h"

#include <string>
#include <vector>

namespace korvane
{

struct textures_job_options
{
    std::vector<std::string> models; // models and definitions: on the disk or, with "pack:", in the game
    texture_extraction_options extraction;
};

struct textures_job_result
{
    texture_extraction_result textures;
    std::vector<failure> failures; // of the models, then of the textures
};

// False, with the reason, when the archives cannot be loaded. A model or a texture that fails is in the result, and the
// others go on. The log is told of references that cannot be followed.
[[nodiscard]] bool extractModelTextures(game_source& source, const textures_job_options& options, const work_port& work,
                                        textures_job_result& result, failure& why);

} // namespace korvane
