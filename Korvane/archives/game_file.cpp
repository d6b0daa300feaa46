#include "Korvane/archives/game_file.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"

namespace korvane
{

namespace
{
constexpr std::string_view pack_prefix = "pack:";
}

bool isPackPath(std::string_view path)
{
    return path.starts_with(pack_prefix);
}

std::string_view internalPathOf(std::string_view path)
{
    return isPackPath(path) ? path.substr(pack_prefix.size()) : path;
}

bool readGameFile(const std::string& path, memory_file& bytes, failure& why)
{
    if (!isPackPath(path))
        return bytes.read(path, why);
    if (!pack_file::sm_poPathTree)
        return fail(why, failure_kind::not_found, "no archives are loaded", path);
    // First as a listing spells it: some archives have a '/' in a name.
    const std::shared_ptr<const path_tree> tree = pack_file::sm_poPathTree;
    const path_node* const stored = tree->findStored(toLower(internalPathOf(path)));
    const path_node* const node = stored && stored->file() ? stored : tree->find(internalPathOf(path));
    if (!node || !node->file())
        return fail(why, failure_kind::not_found,
                    node ? "this is a folder of the archives, not a file" : "no archive holds this path", path);
    return readEntry(*node->file(), bytes, why);
}

} // namespace korvane
