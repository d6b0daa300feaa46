#include "Korvane/jobs/operands.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/pack_entry.h"

#include <system_error>
#include <utility>

namespace korvane
{

bool readModelBytes(game_source& source, const game_path& path, memory_file& bytes, failure& why)
{
    const std::shared_ptr<const game_data> game = source.gameFor(path, why);
    return game && readModelBytes(*game, path, bytes, why);
}

bool openModel(game_source& source, const game_path& path, rmv2_file& model, const log_port& log, failure& why)
{
    const std::shared_ptr<const game_data> game = source.gameFor(path, why);
    const bool is_open = game && openModel(*game, path, model, why);
    if (is_open && isVersion7OverVersion6(model.image().bytes()))
        tell(log,
             displayText(path.text()) +
                 ": the version word says 7, but the LOD headers are those of version 6, and the games cannot read "
                 "that; korvane patch --repair makes a version 7 file of it");
    return is_open;
}

namespace
{

std::shared_ptr<const anim_data> loadAnim(anim_file& file, const std::string& disk_path, anim_depth depth, failure& why)
{
    const bool is_loaded = depth == anim_depth::skeleton    ? file.loadSkeleton(disk_path, why)
                           : depth == anim_depth::animation ? file.loadAnimation(disk_path, why)
                                                            : file.loadTemplate(disk_path, why);
    return is_loaded ? std::make_shared<const anim_data>(file.takeData()) : nullptr;
}

} // namespace

std::shared_ptr<const anim_data> loadAnim(game_source& source, const game_path& path, anim_depth depth, failure& why)
{
    anim_file file;
    std::string disk_path; // empty: from memory; files on the disk are read no further than needed
    if (path.isInternal() || path.empty())
    {
        memory_file bytes;
        if (!source.read(path, bytes, why))
            return nullptr;
        file.openFromMemory(std::move(bytes), path.text());
    }
    else
    {
        std::error_code ignored;
        disk_path = path.text();
        if (!std::filesystem::exists(toPath(disk_path), ignored))
        {
            fail(why, failure_kind::not_found, "the file does not exist", disk_path);
            return nullptr;
        }
    }
    return loadAnim(file, disk_path, depth, why);
}

std::shared_ptr<const anim_data> loadAnim(const pack_file_node& entry, anim_depth depth, failure& why)
{
    memory_file bytes;
    if (!readEntry(entry, bytes, why))
        return nullptr;
    anim_file file;
    file.openFromMemory(std::move(bytes), placeOf(entry));
    return loadAnim(file, {}, depth, why);
}

} // namespace korvane
