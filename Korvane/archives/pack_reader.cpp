#include "Korvane/archives/pack_reader.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/pack_file.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace korvane
{

bool pack_reader::loadAllArchives(const std::vector<std::string>& folders)
{
    pack_file::sm_poPathTree = nullptr;
    m_archives.clear();
    m_damaged.clear();
    if (folders.empty())
        return false;
    for (const std::string& folder : folders)
        if (!findValidPakFiles(folder))
            return false;
    sortArchives();
    indexArchives();
    return true;
}

bool pack_reader::findValidPakFiles(const std::string& folder)
{
    std::vector<std::filesystem::path> matches;
    std::error_code error;
    if (folder.ends_with('\\') || folder.ends_with('/'))
        for (auto entry = std::filesystem::directory_iterator(toPath(existingPathAnyCase(folder)), error);
             !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
        {
            std::error_code ignored;
            if (endsWithIgnoringCase(toUtf8(entry->path().filename()), ".pack") && !entry->is_directory(ignored))
                matches.push_back(entry->path());
        }
    if (matches.empty())
    {
        m_ports.prompt.show("Error!",
                            "Function: findValidPakFiles() : File Not Found.Content:\r\n '" + folder +
                                "' \r\nPossibly invalid data folder set.",
                            prompt_icon::error);
        return false;
    }
    std::sort(matches.begin(), matches.end()); // the same order on every disk
    for (const std::filesystem::path& match : matches)
        m_archives.push_back({toUtf8(match.filename()), toUtf8(match)});
    return true;
}

void pack_reader::sortArchives()
{
    log(".pack files being sorted...");
    std::stable_sort(m_archives.begin(), m_archives.end(),
                     [](const found_archive& left, const found_archive& right)
                     {
                         return left.name > right.name;
                     });
    log(".pack files is sorted in the following order: ");
    for (std::size_t i = 0; i < m_archives.size(); ++i)
        log("[PACK FILE] " + std::to_string(i) + " : " + m_archives[i].path);
}

void pack_reader::indexArchives()
{
    // Read and checked first, all of them: then the tree can be made in its final size.
    auto tree = std::make_shared<path_tree>();
    std::vector<pack_file> archives;
    std::size_t file_count = 0;
    for (const found_archive& found : m_archives)
    {
        if (m_ports.progress)
            m_ports.progress(archives.size() + m_damaged.size(), m_archives.size(), found.path);
        pack_file archive(*tree);
        failure why;
        try
        {
            if (archive.open(found.path, why))
            {
                file_count += archive.entryCount();
                for (const std::string& path : archive.leftOut())
                    log("[PACK FILE] " + found.path + " : left out, its data is not inside the archive: " + path);
                archives.push_back(std::move(archive));
                continue;
            }
        }
        catch (const std::exception& unknown_format)
        {
            why = {failure_kind::unsupported, unknown_format.what(), found.path, 0, "magic"};
        }
        m_damaged.push_back(describe(why));
        log("[PACK FILE] " + m_damaged.back());
    }
    tree->reserve(file_count);
    for (pack_file& archive : archives)
        archive.enter();
    pack_file::sm_poPathTree = std::move(tree);
    if (!m_damaged.empty())
        reportDamaged(m_damaged);
}

void pack_reader::reportDamaged(const std::vector<std::string>& lines) const
{
    std::string text = "An error has occured ";
    constexpr std::size_t shown = 20;
    for (std::size_t i = 0; i < std::min(lines.size(), shown); ++i)
        text += "\r\n" + lines[i];
    if (lines.size() > shown)
        text += "\r\nand " + std::to_string(lines.size() - shown) + " more (see log.txt)";
    m_ports.prompt.show("Error!", text, prompt_icon::error);
}

void pack_reader::log(const std::string& line) const
{
    if (m_ports.log)
        m_ports.log(line);
}

} // namespace korvane
