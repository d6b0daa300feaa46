#pragma once

// Changes of fields as rows of a list: what replacing a prefix would do, what is not saved yet.

#include "EASY_GUI/services/list_model.h"
#include "Korvane/document/model_editor.h"

#include <string>
#include <vector>

namespace korvane
{

class change_list : public list_model
{
public:
    explicit change_list(std::vector<field_change> changes = {}) : m_changes(std::move(changes)) {}

    std::span<const list_column> columns() const override; // place, before, after
    std::size_t rowCount() const override { return m_changes.size(); }
    std::string text(std::size_t row, std::size_t column) const override;
    // A path that no lookup can find is marked, and the tip says why.
    row_mark mark(std::size_t row) const override;
    std::string tip(std::size_t row) const override;

private:
    std::vector<field_change> m_changes;
};

} // namespace korvane
