#pragma once

// The list beside the folders of the archives: what a folder holds, what a search has found, or the files that use or
// are used by another one. Made for a million rows: a row is a pointer into the archives, which the owner holds.

#include "EASY_GUI/services/list_model.h"
#include "Korvane/archives/hidden_copies.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

class archive_rows : public list_model
{
public:
    enum column : std::size_t
    {
        name,
        type,
        size,
        archive,
        overrides,
        folder
    };

    void clear();
    // Folders stand before files, files that are missing behind them.
    void setFolders(std::vector<const path_node*> folders);
    void add(std::span<const pack_file_node* const> files); // behind those that are there
    void setMissing(std::vector<std::string> paths);
    // Known a little later than the files themselves; null: not yet.
    void setHidden(std::shared_ptr<const hidden_copies> hidden) { m_po_hidden = std::move(hidden); }
    // By a column; files that are alike there keep the order of their paths. A stop of a million rows' order is a
    // fraction of a second.
    void sort(column wanted, bool is_descending);

    std::span<const list_column> columns() const override;
    std::size_t rowCount() const override { return m_folders.size() + m_files.size() + m_missing.size(); }
    std::string text(std::size_t row, std::size_t column) const override;
    row_mark mark(std::size_t row) const override;

    const path_node* folderAt(std::size_t row) const;    // null: it is no folder
    const pack_file_node* fileAt(std::size_t row) const; // null: it is no file, or a missing one
    std::string_view pathAt(std::size_t row) const;      // internal, of whatever it is
    std::size_t fileCount() const { return m_files.size(); }
    std::size_t folderCount() const { return m_folders.size(); }
    std::size_t missingCount() const { return m_missing.size(); }

private:
    bool comesBefore(column wanted, const pack_file_node& left, const pack_file_node& right) const;
    std::size_t hiddenBy(const pack_file_node& file) const { return m_po_hidden ? m_po_hidden->of(file).size() : 0; }

    std::vector<const path_node*> m_folders;
    std::vector<const pack_file_node*> m_files;
    std::vector<std::string> m_missing;
    std::shared_ptr<const hidden_copies> m_po_hidden;
};

// "data.pack"; of a mod folder "Mod folder (NAME)".
[[nodiscard]] std::string archiveName(const archive_record& archive);
// "DDS texture", "Model", or the ending in capitals.
[[nodiscard]] std::string typeName(std::string_view extension);

} // namespace korvane
