#pragma once

// "Setup Game Folders...": the list of data folders and mod folders with what they hold; folders are typed, chosen, or
// found where game stores put games. What it decides is game_folders'. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/game_folders.h"

#include <memory>
#include <string>
#include <vector>

namespace korvane
{

class game_folders_dialog : public dialog_box
{
public:
    explicit game_folders_dialog(page_host& host);
    ~game_folders_dialog() override { destroy(); }

    // True: saved, and the archives are to be read again. A reason says that there was no dialog.
    [[nodiscard]] bool ask(HWND owner, failure& why);
    std::string summary() const { return m_folders.summary(); }

protected:
    std::optional<layout> onFill(failure& why) override;

private:
    class folder_box : public edit_box // Enter adds what is in it
    {
    public:
        std::function<void()> onEnter;

    protected:
        LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;
    };

    void nameHandlers();
    layout rows();
    void browse();
    void add(game_folders::folder_kind kind);
    void findGamesOfStores();
    void change(const std::function<void(std::size_t row)>& change, int selected_after);
    void show();
    void showAdded(); // what was added last, selected
    void lookAtFolders();

    page_host& m_host;
    game_folders m_folders;
    list_view m_list;
    field_name m_box_name;
    folder_box m_box;
    button m_browse, m_add_data, m_add_mod, m_remove, m_up, m_down, m_find, m_ok, m_cancel;
    label m_summary;
    background_task m_looking; // the last member: its work ends first
};

} // namespace korvane
