#pragma once

// The user_prompt of the window program: message boxes and the system's file dialogs, over the window that is set as
// the owner. Window thread only; the thread must have COM initialised for the file dialogs.

#include "EASY_GUI/services/user_prompt.h"

#include <windows.h>

namespace korvane
{

class message_box_prompt : public user_prompt
{
public:
    void setOwner(HWND owner) { m_owner = owner; }

    void show(const std::string& title, const std::string& text, prompt_icon icon) override;
    [[nodiscard]] bool confirm(const std::string& title, const std::string& text, prompt_answer preset) override;
    [[nodiscard]] save_answer askToSave(const std::string& title, const std::string& text) override;
    [[nodiscard]] std::optional<std::string> pickOpenPath(const std::string& title,
                                                          const std::vector<file_filter>& filters,
                                                          const std::string& folder = {}) override;
    [[nodiscard]] std::vector<std::string> pickOpenPaths(const std::string& title,
                                                         const std::vector<file_filter>& filters) override;
    [[nodiscard]] std::optional<std::string> pickFolder(const std::string& title) override;
    [[nodiscard]] std::optional<std::string> pickSavePath(const std::string& title,
                                                          const std::vector<file_filter>& filters,
                                                          const std::string& default_extension,
                                                          const save_suggestion& suggestion) override;

private:
    HWND owner() const; // a dialog over the owner, while there is one

    HWND m_owner = nullptr;
};

} // namespace korvane
