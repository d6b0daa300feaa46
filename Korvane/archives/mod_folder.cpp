#include "Korvane/archives/mod_folder.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/loose_file.h"
#include "Korvane/archives/pack_file.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace korvane
{

namespace
{

struct listed_file
{
    std::string path; // internal
    std::uint32_t size = 0;
};

// The folder without separators at its end, but for a root.
std::filesystem::path rootOf(const std::string& folder)
{
    const std::filesystem::path path = toPath(existingPathAnyCase(folder));
    return path.has_filename() || !path.has_relative_path() ? path : path.parent_path();
}

class folder_listing
{
public:
    folder_listing(std::filesystem::path root, const work_port& work)
        : m_root(std::move(root))
        , m_shown(toUtf8(m_root))
        , m_work(work)
    {
    }

    bool list(failure& why)
    {
        std::error_code error;
        if (std::filesystem::directory_iterator(m_root, error); error)
            return fail(why, failure_kind::unreadable, "the mod folder cannot be read: " + error.message(), m_shown);
        auto entry = std::filesystem::recursive_directory_iterator(
            m_root, std::filesystem::directory_options::skip_permission_denied, error);
        for (; !error && entry != std::filesystem::recursive_directory_iterator(); entry.increment(error))
        {
            if (m_work.isStopped())
                return true;
            std::error_code ignored;
            if (entry->is_regular_file(ignored))
                add(*entry);
        }
        if (error)
            return fail(why, failure_kind::unreadable, "not all of the mod folder can be read: " + error.message(),
                        m_shown);
        std::sort(m_files.begin(), m_files.end(),
                  [](const listed_file& left, const listed_file& right) { return left.path < right.path; });
        return true;
    }

    const std::vector<listed_file>& files() const { return m_files; }
    const std::string& shown() const { return m_shown; }

private:
    void add(const std::filesystem::directory_entry& entry)
    {
        std::error_code error;
        const std::uint64_t size = entry.file_size(error);
        const std::string path = normalInternalPath(toUtf8(entry.path().lexically_relative(m_root)));
        if (error || path.empty() || path.size() > pack_file::max_path ||
            size > std::numeric_limits<std::uint32_t>::max())
            return tell(m_work.log, "[MOD FOLDER] " + toUtf8(entry.path()) +
                                        " : left out, its path or its size is more than an archive can hold");
        m_files.push_back({path, static_cast<std::uint32_t>(size)});
    }

    std::filesystem::path m_root;
    std::string m_shown;
    const work_port& m_work;
    std::vector<listed_file> m_files;
};

std::span<const pack_file_node> nodesOf(path_tree& tree, const archive_record& record,
                                        const std::vector<listed_file>& files)
{
    std::size_t text_size = path_tree::readable_behind_paths;
    for (const listed_file& file : files)
        text_size += file.path.size();
    char* text = tree.memory().allocate<char>(text_size).data();
    const std::span<pack_file_node> nodes = tree.memory().allocate<pack_file_node>(files.size());
    for (std::size_t i = 0; i < files.size(); ++i)
    {
        const std::string& path = files[i].path;
        std::memcpy(text, path.data(), path.size());
        std::construct_at(&nodes[i], record, std::string_view(text, path.size()), files[i].size, 0u, std::uint8_t{0},
                          0u);
        text += path.size();
    }
    return nodes;
}

} // namespace

bool enterModFolder(path_tree& tree, const std::string& folder, const work_port& work, failure& why)
{
    const std::filesystem::path root = rootOf(folder);
    std::error_code error;
    if (!std::filesystem::is_directory(root, error))
        return fail(why, failure_kind::not_found,
                    std::filesystem::exists(root, error) ? "this is a file, not a mod folder"
                                                         : "there is no such mod folder",
                    folder);
    folder_listing listing(root, work);
    if (!listing.list(why))
        return false;
    if (work.isStopped())
        return true;
    auto record = std::make_unique<archive_record>();
    record->name = toUtf8(root.filename());
    record->path = listing.shown();
    record->format = "folder";
    record->file_count = static_cast<std::uint32_t>(listing.files().size());
    record->is_folder = true;
    const std::span<const pack_file_node> nodes = nodesOf(tree, *record, listing.files());
    tree.enter(std::move(record), nodes);
    tell(work.log, "[MOD FOLDER] " + listing.shown() + " : " + counted(listing.files().size(), "file", "files"));
    return true;
}

std::string diskPathOf(const pack_file_node& entry)
{
    return findFileBelow(entry.packPath(), entry.internalPath());
}

} // namespace korvane
