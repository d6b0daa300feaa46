#include "Korvane/archives/pack_reader.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/archive_indexing.h"
#include "Korvane/archives/mod_folder.h"

#include <algorithm>
#include <utility>

namespace korvane
{

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
    m_has_written_cache = false;
    if (folders.empty())
        return false;
    for (const std::string& folder : folders)
        if (!findValidPakFiles(folder))
            return false;
    sortArchives();
    indexed_archives indexed;
    if (!loadFromCache(indexed))
    {
        if (!indexArchives(m_archives, m_work, indexed))
            return false;
        writeCache(indexed);
    }
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
    if (folder.ends_with('\\') || folder.ends_with('/'))
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
    std::stable_sort(m_archives.begin(), m_archives.end(), [](const std::string& left, const std::string& right) {
        return fileName(left) > fileName(right);
    });
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

void pack_reader::writeCache(const indexed_archives& indexed)
{
    const bool is_certain = std::all_of(indexed.archives.begin(), indexed.archives.end(),
                                        [](const archive_listing& archive) { return archive.is_certain; });
    if (!m_po_cache || !is_certain)
        return;
    failure why;
    m_has_written_cache = m_po_cache->write(indexed, why);
    if (!m_has_written_cache)
        tell(m_work.log, "[PACK CACHE] " + m_po_cache->path() + " : not written, " + why.what);
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
