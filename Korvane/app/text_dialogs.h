#pragma once

// Dialogs that show a text: help with headings, and reports that can be copied as a whole. Window thread.

#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/rich_edit.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/help_texts.h"

#include <string>
#include <utility>
#include <vector>

namespace korvane
{

class help_dialog : public dialog_box
{
public:
    help_dialog(const std::string& title, SIZE size, std::vector<help_paragraph> shown)
        : dialog_box({title, size, true})
        , m_shown(std::move(shown))
    {
    }
    ~help_dialog() override { destroy(); }

protected:
    std::optional<layout> onFill(failure& why) override;
    void onShown() override;

private:
    std::vector<help_paragraph> m_shown;
    rich_edit m_text;
    button m_close;
};

class report_dialog : public dialog_box
{
public:
    report_dialog(page_host& host, const std::string& title, std::string report)
        : dialog_box({title, {620, 420}, true, helpContext(help_topic::checks)})
        , m_host(host)
        , m_report(std::move(report))
    {
    }
    ~report_dialog() override { destroy(); }

protected:
    std::optional<layout> onFill(failure& why) override;

private:
    page_host& m_host;
    std::string m_report; // lines end in "\r\n"
    edit_box m_text;
    button m_copy, m_close;
};

// Runs a dialog over the main window, or over the dialog on top of it; one that cannot be opened is told.
int runDialog(page_host& host, dialog_box& shown);

} // namespace korvane
