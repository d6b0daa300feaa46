#include "Korvane/presenters/archive_overview.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/presenters/archive_rows.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace korvane
{

namespace
{

std::size_t sumOf(const std::map<std::size_t, std::size_t>& files)
{
    std::size_t sum = 0;
    for (const auto& [archive, count] : files)
        sum += count;
    return sum;
}

} // namespace

archive_overview::archive_overview(std::shared_ptr<const path_tree> tree, const work_port& work)
    : m_po_tree(std::move(tree))
    , m_relations(m_po_tree->archives().size())
{
    std::unordered_map<const archive_record*, std::size_t> numbers;
    for (std::size_t i = 0; i < m_relations.size(); ++i)
        numbers.emplace(m_po_tree->archives()[i].get(), i);
    for (std::size_t i = 0; i < m_relations.size() && !work.isStopped(); ++i)
        for (const pack_file_node& file : m_po_tree->entries()[i])
        {
            m_relations[i].compressed += file.compression() != 0;
            m_relations[i].bytes += file.size();
            const path_node* const node = m_po_tree->findStored(file.internalPath());
            if (node == nullptr || node->file() == nullptr || node->file() == &file)
                continue;
            const std::size_t winner = numbers.at(&node->file()->archive());
            ++m_relations[i].loses[winner];
            ++m_relations[winner].overrides[i];
        }
}

std::span<const list_column> archive_overview::columns() const
{
    static constexpr list_column all[] = {{"Order", 50, true},      {"Archive", 190},        {"Format", 60},
                                          {"Files", 70, true},      {"Megabytes", 80, true}, {"Overrides", 75, true},
                                          {"Overridden", 80, true}, {"Lies in", 0}};
    return all;
}

std::string archive_overview::text(std::size_t row, std::size_t column) const
{
    const archive_record& archive = archiveAt(row);
    const relations& known = m_relations[numberAt(row)];
    switch (column)
    {
    case 0:
        return grouped(row + 1);
    case 1:
        return archiveName(archive);
    case 2:
        return archive.is_folder ? "Folder" : archive.format;
    case 3:
        return grouped(m_po_tree->entries()[numberAt(row)].size());
    case 4:
        return grouped(static_cast<std::size_t>((known.bytes + 999'999) / 1'000'000));
    case 5:
        return known.overrides.empty() ? std::string() : grouped(sumOf(known.overrides));
    case 6:
        return known.loses.empty() ? std::string() : grouped(sumOf(known.loses));
    default:
        const std::string_view path = archive.path;
        return displayText(std::string(path.substr(0, path.size() - std::min(path.size(), archive.name.size()))));
    }
}

std::string archive_overview::namesOf(const counts& files) const
{
    std::vector<std::pair<std::size_t, std::size_t>> most(files.begin(), files.end());
    std::stable_sort(most.begin(), most.end(),
                     [](const auto& left, const auto& right) { return left.second > right.second; });
    std::string text;
    for (const auto& [number, count] : most)
        text += "    " + grouped(count) + "   " + displayText(m_po_tree->archives()[number]->name) + "\r\n";
    return text;
}

std::string archive_overview::facts(std::size_t row) const
{
    const archive_record& archive = archiveAt(row);
    const relations& known = m_relations[numberAt(row)];
    std::string text = displayText(archive.path) + "\r\n";
    if (archive.is_folder)
        text += "A mod folder: what lies in it stands before all archives.\r\n";
    else
        text += "Format " + archive.format +
                ". Of archives that hold the same path the one whose name comes first in the "
                "alphabet wins (data.pack before data_1.pack, capitals before small letters); of equal names the one "
                "in the folder that is listed later.\r\n";
    text += "Stands in place " + grouped(row + 1) + " of " + grouped(rowCount()) + ", with " +
            counted(m_po_tree->entries()[numberAt(row)].size(), "file");
    text += known.compressed > 0 ? ", of which " + grouped(known.compressed) + " compressed.\r\n" : ".\r\n";
    text += known.overrides.empty() ? "\r\nIt overrides nothing.\r\n"
                                    : "\r\nIts files count instead of those of:\r\n" + namesOf(known.overrides);
    text += known.loses.empty()
                ? "\r\nAll of its files count.\r\n"
                : "\r\nFiles of it that do not count, because these hold them, too:\r\n" + namesOf(known.loses);
    return text;
}

} // namespace korvane
