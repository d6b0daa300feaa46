#include "Korvane/game/game_model.h"

#include <utility>

namespace korvane
{

bool readModelBytes(const game_data& game, const game_path& path, memory_file& bytes, failure& why)
{
    return path.isInternal() ? game.read(path, bytes, why) : readModelFile(path.text(), bytes, why);
}

bool openModel(const game_data& game, const game_path& path, rmv2_file& model, failure& why)
{
    if (!path.isInternal())
        return model.open(path.text(), why);
    memory_file bytes;
    return game.read(path, bytes, why) && model.openFromMemory(std::move(bytes), path.text(), why);
}

} // namespace korvane
