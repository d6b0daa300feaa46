#pragma once

// The port through which portable code speaks to the person in front of the program. The window program shows message
// boxes and pickers, the console program prints, tests record and answer. Texts are UTF-8.

#include <optional>
#include <string>
#include <vector>

namespace korvane
{

enum class prompt_icon
{
    information,
    warning,
    error
};

enum class prompt_answer
{
    no,
    yes
};

enum class save_answer
{
    save,
    discard,
    cancel
};

struct file_filter
{
    std::string label;   // "Rigid Model v2 Files (*.rigid_model_v2)"
    std::string pattern; // "*.rigid_model_v2"
};

// What a picker of a path to write begins with.
struct save_suggestion
{
    std::string folder = {}; // one that exists; empty: that of the last time
    std::string name = {};   // of the file; empty: none
};

class user_prompt
{
public:
    virtual ~user_prompt() = default;

    // Shows a text with a title and waits until it was read.
    virtual void show(const std::string& title, const std::string& text, prompt_icon icon) = 0;
    // A question answered with yes or no; Enter alone gives the preset answer, which loses nothing.
    [[nodiscard]] virtual bool confirm(const std::string& title, const std::string& text, prompt_answer preset) = 0;
    // What becomes of changes that are not saved, before something else takes their place. Escape cancels.
    [[nodiscard]] virtual save_answer askToSave(const std::string& title, const std::string& text) = 0;
    // A path to open or to write; nothing when the person changed their mind. It begins in a folder that exists; in an
    // empty one: that of the last time.
    [[nodiscard]] virtual std::optional<std::string>
    pickOpenPath(const std::string& title, const std::vector<file_filter>& filters, const std::string& folder = {}) = 0;
    // Several files of one folder; none when the person changed their mind.
    [[nodiscard]] virtual std::vector<std::string> pickOpenPaths(const std::string& title,
                                                                 const std::vector<file_filter>& filters) = 0;
    // A folder that exists, without a separator at its end unless it is a drive's root.
    [[nodiscard]] virtual std::optional<std::string> pickFolder(const std::string& title) = 0;
    [[nodiscard]] virtual std::optional<std::string> pickSavePath(const std::string& title,
                                                                  const std::vector<file_filter>& filters,
                                                                  const std::string& default_extension,
                                                                  const save_suggestion& suggestion) = 0;
};

} // namespace korvane
