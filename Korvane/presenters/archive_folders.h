#pragma once

// The folders of the archives as a tree, one step after the other out of the table of paths: no object per folder.

#include "EASY_GUI/services/tree_model.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace korvane
{

class archive_folders : public tree_model
{
public:
    // Nodes are numbers of that tree: those of another one mean other folders.
    void show(std::shared_ptr<const path_tree> tree)
    {
        m_po_tree = std::move(tree);
        m_folders.clear();
    }

    // The top row stands for all archives: it is the root's only child, for the root itself is not seen.
    static constexpr node everything = static_cast<node>(-1);

    std::size_t childCount(node parent) const override;
    node child(node parent, std::size_t position) const override;
    std::optional<node> parent(node of) const override;
    std::string text(node of) const override;
    bool isOpenAtFirst(node of) const override { return of == everything; }

    std::string_view pathOf(node of) const;   // empty: everything
    node find(std::string_view folder) const; // the nearest folder around it that is there
    const path_node* folderAt(node of) const; // null: there are no archives

private:
    const std::vector<const path_node*>& foldersOf(node parent) const;

    std::shared_ptr<const path_tree> m_po_tree;
    // Of the folders that were asked for: those that were opened, and those in them.
    mutable std::unordered_map<const path_node*, std::vector<const path_node*>> m_folders;
};

} // namespace korvane
