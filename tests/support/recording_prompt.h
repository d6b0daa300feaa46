#pragma once

// A user_prompt for tests: records what was shown and gives the answers that were laid out for it.

#include "EASY_GUI/services/user_prompt.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvane::test
{

class recording_prompt : public user_prompt
{
public:
    void show(const std::string& title, const std::string& text, prompt_icon) override
    {
        shown.emplace_back(title, text);
    }
    bool confirm(const std::string& title, const std::string& text) override
    {
        shown.emplace_back(title, text);
        return answer;
    }
    std::optional<std::string> pickOpenPath(const std::string&, const std::vector<file_filter>&) override
    {
        return path;
    }
    std::optional<std::string> pickSavePath(const std::string&, const std::vector<file_filter>&,
                                            const std::string&) override
    {
        return path;
    }

    std::vector<std::pair<std::string, std::string>> shown; // title, text
    bool answer = false;
    std::optional<std::string> path;
};

} // namespace korvane::test
