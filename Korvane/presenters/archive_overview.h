#pragma once

// All archives in the order in which they count, and of each what it overrides, what it loses, and why.

#include "EASY_GUI/services/list_model.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

class archive_overview : public list_model
{
public:
    // Looks at every file of every archive: a fraction of a second for a million. A stop leaves numbers out.
    archive_overview(std::shared_ptr<const path_tree> tree, const work_port& work);

    // The strongest first.
    const archive_record& archiveAt(std::size_t row) const { return *m_po_tree->archives()[numberAt(row)]; }
    std::size_t numberAt(std::size_t row) const { return m_relations.size() - 1 - row; } // in the tree's order
    // What is known of it, as sentences; lines end in "\r\n".
    std::string facts(std::size_t row) const;

    std::span<const list_column> columns() const override;
    std::size_t rowCount() const override { return m_relations.size(); }
    std::string text(std::size_t row, std::size_t column) const override;

private:
    using counts = std::map<std::size_t, std::size_t>; // of files, by the other archive's number
    struct relations
    {
        counts overrides;
        counts loses;
        std::size_t compressed = 0;
        std::uint64_t bytes = 0;
    };
    std::string namesOf(const counts& files) const;

    std::shared_ptr<const path_tree> m_po_tree;
    std::vector<relations> m_relations; // in the tree's order
};

} // namespace korvane
