#include "Korvane/jobs/anim_text_job.h"

#include "Korvane/animation/anim_dump.h"
#include "Korvane/animation/bone_table.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/jobs/output_paths.h"

namespace korvane
{

namespace
{

// The archives are loaded by now when the path names one of their files.
anim_origin originOf(game_source& source, const game_path& path)
{
    if (!path.isInternal())
        return {"", path.text()};
    failure why;
    const std::shared_ptr<const game_data> game = source.archives(why);
    const game_file found = game ? game->find(path.internalPath()) : game_file();
    if (!found.entry())
        return {"", path.text()};
    return {found.entry()->archive().name, found.path()};
}

} // namespace

bool dumpAnim(game_source& source, const game_path& anim, const std::string& output, failure& why)
{
    const auto data = loadAnim(source, anim, anim_depth::animation, why);
    return data && isFreeToWrite({anim.text()}, output, why) &&
           writeAnimDump(*data, originOf(source, anim), output, why);
}

bool tabulateBones(game_source& source, const game_path& anim, const std::string& output, failure& why)
{
    const auto data = loadAnim(source, anim, anim_depth::bones_only, why);
    return data && isFreeToWrite({anim.text()}, output, why) && writeBoneTable(*data, output, why);
}

} // namespace korvane
