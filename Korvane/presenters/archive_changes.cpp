#include "Korvane/presenters/archive_changes.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/pack_reader.h"

#include <algorithm>

namespace korvane
{

archive_stamps stampArchives(const std::vector<std::string>& folders, const std::stop_token& stop)
{
    archive_stamps stamps;
    for (const std::string& path : archivesInOrder(folders, stop))
        if (!stop.stop_requested())
            stamps[path] = stampOf(path);
    return stamps;
}

archive_stamps stampsAsRead(const path_tree& tree, archive_stamps now)
{
    for (const std::unique_ptr<archive_record>& archive : tree.archives())
        if (!archive->is_folder)
            now[archive->path] = {true, archive->file.size(), archive->file.modificationTime()};
    return now;
}

std::string describeChanges(const archive_stamps& as_read, const archive_stamps& now)
{
    std::vector<std::string> changed, gone, added;
    for (const auto& [path, stamp] : as_read)
        if (const auto found = now.find(path); found == now.end() || !found->second.is_there)
            gone.push_back(path);
        else if (found->second != stamp)
            changed.push_back(path);
    for (const auto& [path, stamp] : now)
        if (!as_read.contains(path))
            added.push_back(path);

    std::string text;
    const auto say = [&text](const std::vector<std::string>& paths, const char* one, const char* many) {
        if (paths.empty())
            return;
        constexpr std::size_t most = 3;
        text += text.empty() ? "" : ", ";
        for (std::size_t i = 0; i < std::min(most, paths.size()); ++i)
            text += (i == 0 ? "" : ", ") + displayText(fileName(paths[i]));
        text += paths.size() > most ? " and " + grouped(paths.size() - most) + " more" : "";
        text += paths.size() == 1 ? one : many;
    };
    say(changed, " has changed", " have changed");
    say(gone, " is gone", " are gone");
    say(added, " is new", " are new");
    return text.empty() ? text : "On the disk " + text + ".";
}

} // namespace korvane
