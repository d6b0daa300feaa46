#pragma once

// The panel of the chosen group's textures: one row for each of the first eight, with kind, directory and file name.

#include "Korvane/app/panel.h"
#include "Korvane/document/panel_contents.h"

#include <array>

namespace korvane
{

class texture_field_group : public panel
{
public:
    texture_field_group() : panel(static_cast<int>(texture_row_count)) {}
    ~texture_field_group() override { destroy(); }

    void show(const texture_rows& rows);

protected:
    bool createFields() override;
    void placeFields() override;

private:
    struct texture_field
    {
        edit_box type, directory, file;
    };
    std::array<texture_field, texture_row_count> m_rows;
};

} // namespace korvane
