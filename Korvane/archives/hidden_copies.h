#pragma once

// Which copies of a file other archives hold that do not count.

#include "Korvane/archives/path_tree.h"

#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace korvane
{

class hidden_copies
{
public:
    // Looks at every file of every archive: a fraction of a second for a million.
    explicit hidden_copies(std::shared_ptr<const path_tree> tree);

    // Of a file that counts, in the order in which the archives were read.
    std::span<const pack_file_node* const> of(const pack_file_node& file) const;
    // How many files of an archive do not count.
    std::size_t lostBy(const archive_record& archive) const;

private:
    std::shared_ptr<const path_tree> m_po_tree;
    // Beside each other, ordered by the file that counts.
    std::vector<const pack_file_node*> m_winners;
    std::vector<const pack_file_node*> m_copies;
    std::unordered_map<const archive_record*, std::size_t> m_lost;
};

} // namespace korvane
