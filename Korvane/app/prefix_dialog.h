#pragma once

// "Replace Path Prefix...": the beginning of texture paths, what is to stand there instead, and a list of what would
// change, which follows the typing. It ends with replaced when the person wants that; the caller replaces.

#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "Korvane/app/page.h"
#include "Korvane/document/change_list.h"
#include "Korvane/document/open_model.h"

#include <string>
#include <utility>

namespace korvane
{

class prefix_dialog : public dialog_box
{
public:
    static constexpr int replaced = 1;

    // The model stays open meanwhile. wanted stands in the first field at first.
    prefix_dialog(const open_model& model, std::string wanted)
        : dialog_box({"Replace Path Prefix", {640, 420}, true, helpContext(help_topic::path_prefix)})
        , m_model(model)
        , m_wanted(std::move(wanted))
    {
    }
    ~prefix_dialog() override { destroy(); }

    const std::string& wanted() const { return m_wanted; }
    const std::string& replacement() const { return m_replacement; }

protected:
    std::optional<layout> onFill(failure& why) override;

private:
    void showPreview();

    const open_model& m_model;
    std::string m_wanted, m_replacement;
    change_list m_changes;
    field_name m_wanted_name, m_replacement_name;
    edit_box m_wanted_field, m_replacement_field;
    label m_summary;
    list_view m_list;
    button m_replace, m_cancel;
};

} // namespace korvane
