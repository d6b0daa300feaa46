#pragma once

// A user_prompt for tests: records what was shown and gives the answers that were laid out for it.

#include "EASY_GUI/services/user_prompt.h"

#include <functional>
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
    bool confirm(const std::string& title, const std::string& text, prompt_answer) override
    {
        shown.emplace_back(title, text);
        if (while_asking)
            while_asking();
        if (confirmations.empty())
            return will_confirm;
        const bool is_yes = confirmations.front();
        confirmations.erase(confirmations.begin());
        return is_yes;
    }
    save_answer askToSave(const std::string& title, const std::string& text) override
    {
        shown.emplace_back(title, text);
        if (while_asking)
            while_asking();
        return will_save;
    }
    std::optional<std::string> pickOpenPath(const std::string& title, const std::vector<file_filter>& filters,
                                            const std::string& = {}) override
    {
        picked_with = title + "|" + filters.at(0).label + "|" + filters.at(0).pattern;
        if (while_picking)
            while_picking();
        return answer;
    }
    std::vector<std::string> pickOpenPaths(const std::string& title, const std::vector<file_filter>& filters) override
    {
        const auto one = pickOpenPath(title, filters);
        return one && answers.empty() ? std::vector{*one} : answers;
    }
    std::optional<std::string> pickFolder(const std::string& title) override { return pickOpenPath(title, {{"", ""}}); }
    std::optional<std::string> pickSavePath(const std::string& title, const std::vector<file_filter>& filters,
                                            const std::string&, const save_suggestion& suggestion) override
    {
        suggested = suggestion;
        return pickOpenPath(title, filters);
    }

    std::vector<std::pair<std::string, std::string>> shown; // title, text
    std::string picked_with;                                // of the last picker: title, first label, first pattern
    std::vector<bool> confirmations;                        // the next answers; then
    bool will_confirm = false;
    save_answer will_save = save_answer::cancel;
    save_suggestion suggested;           // of the last picker of a path to write
    std::function<void()> while_asking;  // before will_confirm is looked at
    std::function<void()> while_picking; // what happens while a file is picked
    std::optional<std::string> answer;   // of the next picker
    std::vector<std::string> answers;    // of the next picker of several files; none: the answer
};

} // namespace korvane::test
