#pragma once

// "Generate .bone_table From .ANIM": the bones of a chosen file with the types that a table gives them, before it is
// written. Window thread.

#include "EASY_GUI/services/list_model.h"
#include "EASY_GUI/services/user_prompt.h"
#include "Korvane/animation/anim_file.h"

#include <memory>
#include <string>

namespace korvane
{

class bone_table_form : public list_model
{
public:
    // What was read of a path; without data the reason why not. An empty path: nothing is chosen.
    void show(std::string path, std::shared_ptr<const anim_data> anim, const failure& why);

    std::span<const list_column> columns() const override; // order, bone, parent, type
    std::size_t rowCount() const override { return m_po_anim ? m_po_anim->bones.size() : 0; }
    std::string text(std::size_t row, std::size_t column) const override;

    const std::string& path() const { return m_path; }
    bool canWrite() const { return rowCount() > 0; }
    std::string summary() const;        // what is shown, or what is to be done
    save_suggestion suggestion() const; // of the table's picker: the skeleton's name, beside a file of the disk

private:
    std::string m_path;
    std::shared_ptr<const anim_data> m_po_anim;
    failure m_why;
};

} // namespace korvane
