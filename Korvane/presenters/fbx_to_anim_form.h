#pragma once

// "Convert FBX animation to .ANIM": what the dialog's fields hold, what is wrong with them, what is proposed when an
// FBX file is chosen, and the conversion that comes of it all. Folders and the layout are remembered. For the thread
// that owns the configuration.

#include "EASY_GUI/services/notice.h"
#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/user_prompt.h"
#include "Korvane/jobs/convert_look.h"
#include "Korvane/presenters/bone_match_rows.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// A path as it was typed or pasted, without the blanks and quotation marks around it.
[[nodiscard]] std::string typedPath(std::string_view text);

class fbx_to_anim_form
{
public:
    enum class file
    {
        fbx,
        template_anim,
        bone_table
    };
    struct picker
    {
        std::string title;
        std::vector<file_filter> filters;
    };
    enum class field
    {
        rate,
        end_time,
        frames
    };
    static constexpr std::size_t field_count = 3;

    explicit fbx_to_anim_form(shared_config& config); // which outlives this

    static picker pickerOf(file which);
    static picker outputPicker();
    std::string folderOf(file which) const; // where its picker begins; empty: anywhere
    save_suggestion suggestion() const;     // of the output's picker
    // True: it is another one, and a look is due.
    bool choose(file which, std::string_view typed);
    const std::string& path(file which) const { return m_paths[static_cast<std::size_t>(which)]; }

    // The options that a look needs. What came of it; false: it is about other files by now.
    convert_job_options lookOptions() const;
    bool take(convert_look look);
    bool isReplaced() const; // the FBX file on the disk is not the one that was looked at: another look is due

    // Of the file that was looked at: "walk: 1.033 s, 32 frames". The first is preset.
    std::vector<std::string> takes() const;
    std::size_t chosenTake() const { return m_take; }
    void chooseTake(std::size_t take);
    const bone_match_rows& bones() const { return m_bones; }
    std::string boneSummary() const; // of the list, or what is to be done that there is one

    // As shown. End time and frame count follow each other and the rate, as far as there are numbers.
    const std::string& text(field which) const { return m_texts[static_cast<std::size_t>(which)]; }
    void type(field which, std::string text);
    std::string problem(field which) const; // beside it; empty: there is none

    static constexpr std::array<std::string_view, 3> version_names{"The template's", "5", "7"};
    std::size_t version() const { return m_version; } // a position in them
    void chooseVersion(std::size_t position) { m_version = position; }
    // Of the FBX file's bones: nothing, it is found; "none", it stays; else a text that is taken off. True: it is
    // another one, and a look is due.
    bool setPrefix(std::string_view typed);

    bool isForGames() const { return m_layout == anim_layout::games; }
    void setForGames(bool is_for_games);

    bool canRun() const { return !path(file::fbx).empty() && !path(file::template_anim).empty(); }
    // Why a file that is named cannot be used, for a box, and which; nothing: it can.
    std::optional<std::pair<notice, file>> fileProblem() const;
    // The first that is wrong with the fields, for a box, and whose; nothing: the output may be asked for.
    std::optional<std::pair<notice, field>> firstProblem() const;
    // Without a problem. Remembers the folder.
    convert_job_options options(const std::string& output);

    // What conversions have written, newest first.
    std::vector<std::string> converted() const;
    const std::string& newestConverted() const { return m_newest; } // by the options that were asked for last

private:
    void presetTimes();
    std::string takeText() const;
    double takeSeconds() const;
    void follow(field typed);
    void setText(field which, const std::string& text) { m_texts[static_cast<std::size_t>(which)] = text; }
    void rememberFolder(std::string_view key, const std::string& path);

    shared_config& m_config;
    std::string m_paths[3];
    std::string m_texts[field_count];
    convert_look m_look;
    std::size_t m_take = 0;
    bool m_is_rate_typed = false;        // else the file's own is taken, to the last digit
    std::optional<field> m_length_typed; // end time or frame count: the one that counts; none: up to the last key
    anim_layout m_layout = anim_layout::tools;
    std::size_t m_version = 0;
    std::string m_prefix; // as typed
    bone_match_rows m_bones;
    std::string m_newest;
};

} // namespace korvane
