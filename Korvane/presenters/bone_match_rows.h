#pragma once

// The list of a conversion's bones: which of the template's bones the FBX file has, and what is missing on either side,
// with the name that is near. Window thread.

#include "EASY_GUI/services/list_model.h"
#include "Korvane/jobs/convert_look.h"

#include <utility>
#include <vector>

namespace korvane
{

class bone_match_rows : public list_model
{
public:
    void show(std::vector<convert_look::bone> bones) { m_bones = std::move(bones); }

    std::span<const list_column> columns() const override; // template, FBX file, what is to be said
    std::size_t rowCount() const override { return m_bones.size(); }
    std::string text(std::size_t row, std::size_t column) const override;
    row_mark mark(std::size_t row) const override;

private:
    std::vector<convert_look::bone> m_bones;
};

} // namespace korvane
