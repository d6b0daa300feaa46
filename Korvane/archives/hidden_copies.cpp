#include "Korvane/archives/hidden_copies.h"

#include <utility>

namespace korvane
{

hidden_copies::hidden_copies(std::shared_ptr<const path_tree> tree) : m_po_tree(std::move(tree))
{
    if (!m_po_tree)
        return;
    for (const std::span<const pack_file_node>& files : m_po_tree->entries())
        for (const pack_file_node& file : files)
        {
            const path_node* const node = m_po_tree->findStored(file.internalPath());
            if (node == nullptr || node->file() == nullptr || node->file() == &file)
                continue;
            m_copies[node->file()].push_back(&file);
            ++m_lost[&file.archive()];
        }
}

std::span<const pack_file_node* const> hidden_copies::of(const pack_file_node& file) const
{
    const auto found = m_copies.find(&file);
    return found == m_copies.end() ? std::span<const pack_file_node* const>() : std::span(found->second);
}

std::size_t hidden_copies::lostBy(const archive_record& archive) const
{
    const auto found = m_lost.find(&archive);
    return found == m_lost.end() ? 0 : found->second;
}

} // namespace korvane
