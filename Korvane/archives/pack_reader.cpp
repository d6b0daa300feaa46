#include "Korvane/archives/pack_reader.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/archive_indexing.h"
#include "Korvane/archives/mod_folder.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

void sortByName(std::vector<std::string>& archives)
{
    std::stable_sort(archives.begin(), archives.end(), [](const std::string& left, const std::string& right) {
        return fileName(left) > fileName(right);
    });
}

bool mayHoldArchives(const std::string& folder)
{
    return folder.ends_with('\\') || folder.ends_with('/');
}

} // namespace

std::vector<std::string> archivesInOrder(const std::vector<std::string>& folders, const std::stop_token& stop)
{
    std::vector<std::string> archives;
    failure ignored; // what was found counts
    for (const std::string& folder : folders)
        if (mayHoldArchives(folder))
            static_cast<void>(listArchives(folder, archives, ignored, stop));
    sortByName(archives);
    return archives;
}

std::vector<std::string> describeLeftOut(const archive_listing& archive)
{
    constexpr std::size_t shown = 3;
    const std::vector<std::string>& paths = archive.left_out;
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < std::min(shown, paths.size()); ++i)
        lines.push_back(
            archive.path + " : left out, " +
            (paths[i].empty() ? "it has no name" : "its data is not inside the archive: " + terminalText(paths[i])));
    if (paths.size() > shown)
        lines.push_back(
            archive.path + " : left out, " + counted(paths.size() - shown, "more file") +
            " whose data is not inside the archive; it is cut short or damaged, and the rest of it is read");
    return lines;
}

bool pack_reader::loadAllArchives(const std::vector<std::string>& folders)
{
    m_archives.clear();
    m_po_tree = nullptr;
    m_listings.clear();
    m_notices.clear();
    if (folders.empty())
        return false;
    for (const std::string& folder : folders)
        if (!findValidPakFiles(folder))
            return false;
    sortArchives();
    indexed_archives indexed;
    m_is_from_cache = loadFromCache(indexed);
    if (!m_is_from_cache && !indexArchives(m_archives, m_work, indexed))
        return false;
    m_po_tree = std::move(indexed.tree);
    m_listings = std::move(indexed.archives);
    report();
    return true;
}

bool pack_reader::addModFolder(const std::string& folder, failure& why)
{
    if (!m_po_tree)
        m_po_tree = std::make_shared<path_tree>();
    return enterModFolder(*m_po_tree, folder, m_work, why) && !m_work.isStopped();
}

bool listArchives(const std::string& folder, std::vector<std::string>& archives, failure& why,
                  const std::stop_token& stop)
{
    std::vector<std::filesystem::path> matches;
    std::error_code error;
    for (auto entry = std::filesystem::directory_iterator(toPath(existingPathAnyCase(folder)), error);
         !error && entry != std::filesystem::directory_iterator() && !stop.stop_requested(); entry.increment(error))
    {
        std::error_code ignored;
        if (endsWithIgnoringCase(toUtf8(entry->path().filename()), ".pack") && !entry->is_directory(ignored))
            matches.push_back(entry->path());
    }
    std::sort(matches.begin(), matches.end());
    for (const std::filesystem::path& match : matches)
        archives.push_back(toUtf8(match));
    return !error ||
           fail(why, failure_kind::unreadable, "the folder cannot be listed: " + displayText(error.message()), folder);
}

bool pack_reader::findValidPakFiles(const std::string& folder)
{
    const std::size_t known = m_archives.size();
    failure ignored; // what was found counts
    if (mayHoldArchives(folder))
        static_cast<void>(listArchives(folder, m_archives, ignored));
    if (m_archives.size() > known)
        return true;
    m_notices.push_back({"Error!", "Function: findValidPakFiles() : File Not Found.Content:\r\n '" + folder +
                                       "' \r\nPossibly invalid data folder set."});
    return false;
}

void pack_reader::sortArchives()
{
    tell(m_work.log, ".pack files being sorted...");
    sortByName(m_archives);
    tell(m_work.log, ".pack files is sorted in the following order: ");
    for (std::size_t i = 0; i < m_archives.size(); ++i)
        tell(m_work.log, "[PACK FILE] " + std::to_string(i) + " : " + m_archives[i]);
}

bool pack_reader::loadFromCache(indexed_archives& indexed) const
{
    if (!m_po_cache)
        return false;
    failure why;
    if (m_po_cache->load(m_archives, indexed, why))
        return true;
    if (why.kind != failure_kind::not_found)
        tell(m_work.log, "[PACK CACHE] " + m_po_cache->path() + " : not used, " + why.what);
    return false;
}

bool pack_reader::wantsCache(cache_use use) const
{
    return m_po_cache && m_po_tree && !m_is_from_cache &&
           (use == cache_use::always ||
            (use == cache_use::where_it_pays && pack_cache::pays({m_archives.size(), m_po_tree->entryCount()})));
}

bool pack_reader::writeCache() const
{
    failure why;
    if (m_po_cache->write({m_po_tree, m_listings}, why, m_work.stop))
        return true;
    tell(m_work.log, "[PACK CACHE] " + m_po_cache->path() + " : not written, " + why.what);
    return false;
}

// The same whether the archives were indexed or came out of the cache.
void pack_reader::report()
{
    constexpr std::size_t shown = 20;
    std::string text(archive_damage_heading);
    std::size_t damaged = 0;
    for (const archive_listing& archive : m_listings)
    {
        for (const std::string& line : describeLeftOut(archive))
            tell(m_work.log, "[PACK FILE] " + line);
        if (archive.damage.empty())
            continue;
        tell(m_work.log, "[PACK FILE] " + archive.damage);
        if (++damaged <= shown)
            text += "\r\n" + archive.damage;
    }
    if (damaged > shown)
        text += "\r\nand " + std::to_string(damaged - shown) + " more (see log.txt)";
    if (damaged > 0)
        m_notices.push_back({"Error!", std::move(text)});
}

} // namespace korvane
