#pragma once

// Asks for the new name of a file or folder. Ends with accepted and the name.

#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "Korvane/app/page.h"

#include <functional>
#include <string>
#include <utility>

namespace korvane
{

class name_dialog : public dialog_box
{
public:
    static constexpr int accepted = 1;
    // Takes the name, and says why it does not; empty: it has.
    using take_name = std::function<std::string(const std::string& name)>;

    name_dialog(std::string former, take_name take)
        : dialog_box({"Rename", {420, 0}, false, helpContext(help_topic::own_files)})
        , m_former(std::move(former))
        , m_take(std::move(take))
    {
    }
    ~name_dialog() override { destroy(); }

protected:
    std::optional<layout> onFill(failure& why) override;
    void onShown() override;

private:
    std::string m_former;
    take_name m_take;
    field_name m_name;
    edit_box m_field;
    text_block m_note;
    button m_ok, m_cancel;
};

} // namespace korvane
