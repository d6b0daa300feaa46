#pragma once

// The search behind a browser of the archives: all files of a tree whose path contains a text, in the order of the
// paths. It works piece by piece, so that a window shows the first rows at once and stays alive, and it narrows what it
// has when somebody types on. One thread at a time; the tree lives as long as the search.

#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

class path_search
{
public:
    // Puts the tree's files in order: a fraction of a second for a million.
    explicit path_search(std::shared_ptr<const path_tree> tree);

    // What is looked for: any part of a path, in any case, with '\' or '/'; an empty text finds all files.
    void find(std::string_view text);
    // Looks at so many further files. False when there are none left.
    bool advance(std::size_t file_count);
    bool isDone() const { return m_next == m_files.size(); }

    // Found so far, in the order of their paths.
    std::span<const pack_file_node* const> hits() const { return m_hits; }
    std::size_t fileCount() const { return m_files.size(); }
    std::size_t lookedAt() const { return m_next; }

private:
    std::shared_ptr<const path_tree> m_po_tree;
    std::vector<const pack_file_node*> m_files;
    std::vector<const pack_file_node*> m_hits;
    std::string m_text; // as paths are spelled
    std::size_t m_next = 0;
};

} // namespace korvane
