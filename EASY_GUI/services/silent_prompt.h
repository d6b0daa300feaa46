#pragma once

// For work that nobody watches: keeps the last message for whoever asked, answers no, and picks nothing.

#include "EASY_GUI/services/user_prompt.h"

namespace korvane
{

class silent_prompt : public user_prompt
{
public:
    void show(const std::string&, const std::string& text, prompt_icon) override { m_message = text; }
    bool confirm(const std::string&, const std::string&) override { return false; }
    std::optional<std::string> pickOpenPath(const std::string&, const std::vector<file_filter>&) override { return {}; }
    std::optional<std::string> pickSavePath(const std::string&, const std::vector<file_filter>&,
                                            const std::string&) override
    {
        return {};
    }

    const std::string& message() const { return m_message; }

private:
    std::string m_message;
};

} // namespace korvane
