#include "Korvane/app/texture_field_group.h"

#include "Korvane/app/command_ids.h"

namespace korvane
{

bool texture_field_group::createFields()
{
    bool is_made = true;
    for (int i = 0; is_made && i < static_cast<int>(m_rows.size()); ++i)
    {
        texture_field& row = m_rows[static_cast<std::size_t>(i)];
        is_made = row.type.create(handle(), control_texture_type + i, edit_box::access::read_only) &&
                  row.directory.create(handle(), control_texture_directory + i, edit_box::access::read_only) &&
                  row.file.create(handle(), control_texture_file + i, edit_box::access::read_only);
    }
    return is_made;
}

void texture_field_group::placeFields()
{
    int position = 0;
    for (texture_field& row : m_rows)
        placeRow(position++, {{&row.type, 120}, {&row.directory, 0, 11}, {&row.file, 0, 9}});
}

void texture_field_group::show(const texture_rows& rows)
{
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        texture_field& field = m_rows[i];
        field.type.setText(rows[i].type_name);
        field.directory.setText(rows[i].directory);
        field.file.setText(rows[i].file);
        setFieldColour(field.type, systemColour(rows[i].directory_colour));
        setFieldColour(field.directory, systemColour(rows[i].directory_colour));
        setFieldColour(field.file, systemColour(rows[i].file_colour));
    }
}

} // namespace korvane
