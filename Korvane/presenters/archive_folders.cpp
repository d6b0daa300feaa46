#include "Korvane/presenters/archive_folders.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"

namespace korvane
{

const path_node* archive_folders::folderAt(node of) const
{
    return m_po_tree == nullptr ? nullptr : &m_po_tree->node(of == everything ? 0 : of);
}

const std::vector<const path_node*>& archive_folders::foldersOf(node parent) const
{
    const path_node* const folder = folderAt(parent);
    const auto [row, is_new] = m_folders.try_emplace(folder);
    if (is_new)
        row->second = m_po_tree->folders(*folder);
    return row->second;
}

std::size_t archive_folders::childCount(node parent) const
{
    if (m_po_tree == nullptr)
        return 0;
    return parent == root ? 1 : foldersOf(parent).size();
}

std::optional<tree_model::node> archive_folders::parent(node of) const
{
    if (of == everything || m_po_tree == nullptr)
        return root;
    return find(folderAround(pathOf(of)));
}

tree_model::node archive_folders::child(node parent, std::size_t position) const
{
    return parent == root ? everything : m_po_tree->numberOf(*foldersOf(parent)[position]);
}

std::string archive_folders::text(node of) const
{
    return of == everything ? "All archives" : displayText(folderAt(of)->name());
}

std::string_view archive_folders::pathOf(node of) const
{
    return of == everything || of == root ? std::string_view() : folderAt(of)->path();
}

tree_model::node archive_folders::find(std::string_view folder) const
{
    while (m_po_tree != nullptr && !folder.empty())
    {
        const path_node* const found = m_po_tree->findStored(folder);
        if (found != nullptr && m_po_tree->isFolder(*found))
            return m_po_tree->numberOf(*found);
        folder = folderAround(folder);
    }
    return everything;
}

} // namespace korvane
