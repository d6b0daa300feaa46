#pragma once

// Files of the archives as other programs get them by copy or by drag: the names that they have there. Made on the
// window's thread, read on any; holds the archives, so that it serves on after they were read again.

#include "EASY_GUI/services/virtual_files.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvane
{

class file_offer : public virtual_files
{
public:
    // Of more the descriptions alone would take what a system gives for them; taking out serves for any number.
    static constexpr std::size_t most_files = 50000;

    explicit file_offer(std::shared_ptr<const path_tree> tree) : m_po_tree(std::move(tree)) {}

    // A file by its name, or below a folder that was chosen: by its path from that folder on. Two files never get one
    // name: the second one is numbered. What no disk can hold is left out and counted.
    void add(const pack_file_node& file) { take(file, file.fileName()); }
    void add(const path_node& folder); // with all that is below it
    bool isFull() const { return m_files.size() + m_left_out > most_files; }
    std::size_t leftOut() const { return m_left_out; }

    std::size_t count() const override { return m_files.size(); }
    std::string path(std::size_t number) const override { return m_files[number].second; }
    std::optional<std::uint64_t> size(std::size_t number) const override;
    byte_source open(std::size_t number) const override;

private:
    void take(const pack_file_node& file, std::string_view name);

    std::shared_ptr<const path_tree> m_po_tree;
    extraction_folder m_names{"", extraction_layout::numbered};
    std::vector<std::pair<const pack_file_node*, std::string>> m_files;
    std::size_t m_left_out = 0;
};

} // namespace korvane
