#include "Korvane/archives/hidden_copies.h"

#include "EASY_GUI/services/parallel.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace korvane
{

namespace
{
constexpr std::size_t worth_a_search = 20000; // files for each thread
}

hidden_copies::hidden_copies(std::shared_ptr<const path_tree> tree) : m_po_tree(std::move(tree))
{
    if (!m_po_tree)
        return;
    struct hidden
    {
        const pack_file_node* winner;
        const pack_file_node* copy;
    };
    const auto& entries = m_po_tree->entries();
    std::vector<std::vector<hidden>> found(entries.size()); // archive by archive
    parallelFor(entries.size(), threadsFor(m_po_tree->entryCount() / worth_a_search), [&](std::size_t i) {
        for (const pack_file_node& file : entries[i])
            if (const pack_file_node* const winner = m_po_tree->winnerOf(file); winner != &file)
                found[i].push_back({winner, &file});
    });
    std::vector<hidden> all;
    for (std::size_t i = 0; i < found.size(); ++i)
    {
        all.insert(all.end(), found[i].begin(), found[i].end());
        if (!found[i].empty())
            m_lost[m_po_tree->archives()[i].get()] = found[i].size();
    }
    std::stable_sort(all.begin(), all.end(), [](const hidden& left, const hidden& right) {
        return std::less<const pack_file_node*>()(left.winner, right.winner);
    });
    m_winners.reserve(all.size());
    m_copies.reserve(all.size());
    for (const hidden& each : all)
    {
        m_winners.push_back(each.winner);
        m_copies.push_back(each.copy);
    }
}

std::span<const pack_file_node* const> hidden_copies::of(const pack_file_node& file) const
{
    const auto [begin, end] =
        std::equal_range(m_winners.begin(), m_winners.end(), &file, std::less<const pack_file_node*>());
    return std::span(m_copies).subspan(static_cast<std::size_t>(begin - m_winners.begin()),
                                       static_cast<std::size_t>(end - begin));
}

std::size_t hidden_copies::lostBy(const archive_record& archive) const
{
    const auto found = m_lost.find(&archive);
    return found == m_lost.end() ? 0 : found->second;
}

} // namespace korvane
