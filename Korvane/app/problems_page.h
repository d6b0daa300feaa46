#pragma once

// The page "Problems": what a check finds in all that is open. A worker checks whenever the document has become another
// one, and a moment after each edit; what was found before stays in the list until then.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "Korvane/app/rows_page.h"
#include "Korvane/presenters/problem_list.h"

#include <functional>
#include <memory>
#include <string>

namespace korvane
{

class problems_page : public rows_page
{
public:
    // caption_changed is told the caption of the page's tab.
    problems_page(page_host& host, std::function<void(const std::string& caption)> caption_changed);
    ~problems_page() override { destroy(); }

    void showDocument() override;
    HWND firstControl() const override;
    help_topic helpTopic() const override { return help_topic::checks; }
    std::string copiedText() const override; // the chosen findings, a line each
    bool keep(config_file& config) const override;
    bool isChecking() const { return m_is_due || m_check.isRunning(); }

protected:
    bool createControls(failure& why) override;
    void fillControls() override;
    void onDestroyed() override { m_check.stop(); }
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    bool isEmpty() const override; // nothing to list
    void checkSoon();
    void check();
    void show(problem_check_result result);
    void showList();
    void showState();
    void openProblem(int row);
    void showMenu(POINT on_screen);
    empty_content emptyContent();

    std::function<void(const std::string&)> m_caption_changed;
    problem_list m_problems;
    // What was checked last, to tell an edit from another document.
    const rmv2_file* m_po_model = nullptr;
    std::shared_ptr<const variant_mesh_def> m_po_definition;
    std::shared_ptr<const game_data> m_po_game;
    bool m_is_due = false; // a check
    background_task m_check;

    label m_summary;
    list_view m_list;
    button m_go;
    button m_check_again;
};

} // namespace korvane
