#include "Korvane/presenters/fbx_to_anim_form.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/game/game_path.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <utility>

namespace korvane
{

namespace
{

constexpr const char* box_title = "Error!";
// The words run into each other: the text is documented so.
constexpr const char* no_rate = "The field Framerate is not a valid floating poinLPARAM lParam. Has to xxx.xxxx";
constexpr const char* no_end_time = "The >>End Time< field does not contain a valid float";
constexpr const char* no_frames = "The Frame Count field does not contain a valid integer";
constexpr std::string_view games_word = "games", no_prefix = "none";

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

std::optional<double> typedDecimal(std::string_view text) // a comma counts as a point
{
    std::string plain(trimmed(text));
    std::replace(plain.begin(), plain.end(), ',', '.');
    double value = 0;
    const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
    const bool is_whole = error == std::errc() && end == plain.data() + plain.size();
    return is_whole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<std::int64_t> typedWhole(std::string_view text)
{
    const std::string_view plain = trimmed(text);
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
    return error == std::errc() && end == plain.data() + plain.size() ? std::optional(value) : std::nullopt;
}

std::string decimalText(double value) // as many digits as a person wants to see
{
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 7);
    return std::string(text.data(), end.ptr);
}

std::string folderOfPath(const std::string& path)
{
    return game_path(path).isInternal() ? std::string() : toUtf8(toPath(path).parent_path());
}

std::string_view keyOf(fbx_to_anim_form::file which)
{
    using file = fbx_to_anim_form::file;
    return which == file::fbx             ? config_keys::last_fbx_folder
           : which == file::template_anim ? config_keys::last_anim_folder
                                          : config_keys::bone_list_path;
}

} // namespace

std::string typedPath(std::string_view text)
{
    text = trimmed(text);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = text.substr(1, text.size() - 2);
    return std::string(text);
}

fbx_to_anim_form::fbx_to_anim_form(shared_config& config) : m_config(config)
{
    for (const std::string& word : config.get(config_keys::conversion_choices))
        if (word == games_word)
            m_layout = anim_layout::games;
}

fbx_to_anim_form::picker fbx_to_anim_form::pickerOf(file which)
{
    if (which == file::fbx)
        return {"Select .fbx file", {{"fbx Files (*.fbx)", "*.fbx"}, {"All Files (*.*)", "*.*"}}};
    if (which == file::template_anim)
        return {"Select .ANIM File", {{"TW Animation FIles (*.anim)", "*.anim"}}};
    return {"Select .bone_table File", {{"Bone_Table files (*.bone_table)", "*.bone_table"}}};
}

fbx_to_anim_form::picker fbx_to_anim_form::outputPicker()
{
    return {"Select .ANIM file", {{"ANIM Files (*.anim)", "*.anim"}, {"All Files (*.*)", "*.*"}}};
}

std::string fbx_to_anim_form::folderOf(file which) const
{
    const std::vector<std::string> known = m_config.get(keyOf(which));
    return known.empty() ? std::string() : existingPathAnyCase(known.front());
}

save_suggestion fbx_to_anim_form::suggestion() const
{
    const std::vector<std::string> known = m_config.get(config_keys::last_export_folder);
    save_suggestion suggested;
    suggested.folder = known.empty() ? std::string() : existingPathAnyCase(known.front());
    const std::string name(fileName(path(file::fbx)));
    suggested.name = name.substr(0, name.rfind('.')) + ".anim";
    return suggested;
}

void fbx_to_anim_form::rememberFolder(std::string_view key, const std::string& path)
{
    const std::string folder = folderOfPath(path);
    if (!folder.empty() && folder.find('"') == std::string::npos)
        m_config.set(key, {folder});
}

bool fbx_to_anim_form::choose(file which, std::string_view typed)
{
    std::string path = typedPath(typed);
    std::string& former = m_paths[static_cast<std::size_t>(which)];
    if (former == path)
        return false;
    former = std::move(path);
    if (!former.empty())
        rememberFolder(keyOf(which), former);
    if (which == file::fbx) // what was chosen and typed was about the other file
        chooseTake(0);
    return true;
}

convert_job_options fbx_to_anim_form::lookOptions() const
{
    convert_job_options options;
    options.fbx = path(file::fbx);
    options.template_anim = path(file::template_anim);
    options.bone_table = path(file::bone_table);
    if (!m_prefix.empty())
        options.prefix = m_prefix == no_prefix ? std::string() : m_prefix;
    return options;
}

bool fbx_to_anim_form::take(convert_look look)
{
    if (look.fbx != path(file::fbx) || look.template_anim != path(file::template_anim))
        return false;
    const auto same_name = [](const convert_look::take& left, const convert_look::take& right) {
        return left.name == right.name;
    };
    const bool is_other = look.fbx != m_look.fbx || !std::equal(look.takes.begin(), look.takes.end(),
                                                                m_look.takes.begin(), m_look.takes.end(), same_name);
    m_look = std::move(look);
    m_bones.show(m_look.bones);
    if (is_other)
        chooseTake(0);
    else if (!m_is_rate_typed && !m_length_typed) // it may have been saved again with another length
        presetTimes();
    return true;
}

bool fbx_to_anim_form::isReplaced() const
{
    return !m_look.fbx.empty() && m_look.fbx == path(file::fbx) && stampOf(m_look.fbx) != m_look.fbx_stamp;
}

std::vector<std::string> fbx_to_anim_form::takes() const
{
    std::vector<std::string> texts;
    for (const convert_look::take& each : m_look.takes)
        texts.push_back(each.name + ": " +
                        (each.has_keys ? decimalText(each.seconds) + " s, " +
                                             counted(frameCount(m_look.frame_rate, each.seconds), "frame") + " at " +
                                             decimalText(m_look.frame_rate) + " a second"
                                       : "nothing moves"));
    return texts;
}

void fbx_to_anim_form::chooseTake(std::size_t take)
{
    m_take = take;
    m_is_rate_typed = false;
    m_length_typed.reset();
    presetTimes();
}

void fbx_to_anim_form::presetTimes()
{
    for (std::string& text : m_texts)
        text.clear();
    if (m_look.fbx.empty() || m_look.fbx_failure || m_look.fbx != path(file::fbx))
        return;
    setText(field::rate, decimalText(m_look.frame_rate));
    setText(field::end_time, decimalText(takeSeconds()));
    setText(field::frames, std::to_string(frameCount(m_look.frame_rate, takeSeconds())));
}

void fbx_to_anim_form::type(field which, std::string text)
{
    m_texts[static_cast<std::size_t>(which)] = std::move(text);
    if (which == field::rate)
        m_is_rate_typed = true;
    else
        m_length_typed = which;
    follow(which);
}

// What was typed leads; a new rate changes the frames, unless their number was typed.
void fbx_to_anim_form::follow(field typed)
{
    const bool leads_frames =
        typed == field::frames || (typed == field::rate && m_length_typed == std::optional(field::frames));
    const std::optional<double> rate = typedDecimal(text(field::rate));
    if (!rate || !problem(field::rate).empty())
        return;
    if (leads_frames)
    {
        const std::optional<std::int64_t> frames = typedWhole(text(field::frames));
        if (frames && *frames > 0)
            setText(field::end_time, decimalText(static_cast<double>(*frames - 1) / *rate));
        return;
    }
    const std::optional<double> seconds = m_length_typed ? typedDecimal(text(field::end_time)) : takeSeconds();
    if (seconds && *seconds >= 0)
        setText(field::frames, std::to_string(frameCount(*rate, *seconds)));
}

std::string fbx_to_anim_form::problem(field which) const
{
    const bool has_proposals = !m_look.fbx.empty() && m_look.fbx == path(file::fbx) && !m_look.fbx_failure;
    if (!has_proposals && text(which).empty()) // nor was anything typed: the file's own are taken
        return {};
    if (which == field::frames)
    {
        const std::optional<std::int64_t> frames = typedWhole(text(which));
        if (!frames)
            return no_frames;
        return *frames < 1                       ? "At least 1 frame is needed"
               : *frames <= max_converted_frames ? ""
                                                 : "At most " + grouped(max_converted_frames) + " frames can be made";
    }
    const std::optional<double> number = typedDecimal(text(which));
    if (which == field::rate)
    {
        if (!number)
            return no_rate;
        return *number >= slowest_converted_rate && *number <= fastest_converted_rate
                   ? ""
                   : "The frame rate has to be between 0.001 and 1,000,000";
    }
    if (!number)
        return no_end_time;
    if (*number < 0)
        return "The end time cannot be below 0";
    const double rate = typedDecimal(text(field::rate)).value_or(m_look.frame_rate);
    const double longest =
        (max_converted_frames - 1) / std::clamp(rate, slowest_converted_rate, fastest_converted_rate);
    return *number <= longest ? "" : "At most " + decimalText(longest) + " seconds can be made at this rate";
}

// In the order in which the fields are looked at, which is not that of the dialog.
std::optional<std::pair<notice, fbx_to_anim_form::field>> fbx_to_anim_form::firstProblem() const
{
    for (const field each : {field::rate, field::frames, field::end_time})
        if (const std::string what = problem(each); !what.empty())
            return std::pair(notice{box_title, what}, each);
    return std::nullopt;
}

std::optional<std::pair<notice, fbx_to_anim_form::file>> fbx_to_anim_form::fileProblem() const
{
    const auto told = [](std::string text, file which) { return std::pair(notice{box_title, std::move(text)}, which); };
    for (const file which : {file::fbx, file::template_anim, file::bone_table})
    {
        std::error_code error;
        const game_path named(path(which));
        if (!path(which).empty() && !named.isInternal() && !std::filesystem::exists(toPath(path(which)), error))
            return told("There is no file " + displayText(path(which)), which);
    }
    if (m_look.fbx == path(file::fbx) && m_look.fbx_failure)
        return told(displayText(describe(m_look.fbx_failure)), file::fbx);
    if (m_look.template_anim != path(file::template_anim))
        return std::nullopt;
    if (m_look.template_failure)
        return told(displayText(describe(m_look.template_failure)), file::template_anim);
    if (m_look.table_failure)
        return told(displayText(describe(m_look.table_failure)), file::bone_table);
    return std::nullopt;
}

bool fbx_to_anim_form::setPrefix(std::string_view typed)
{
    return std::exchange(m_prefix, std::string(trimmed(typed))) != trimmed(typed);
}

void fbx_to_anim_form::setForGames(bool is_for_games)
{
    m_layout = is_for_games ? anim_layout::games : anim_layout::tools;
    m_config.set(config_keys::conversion_choices,
                 is_for_games ? std::vector{std::string(games_word)} : std::vector<std::string>());
}

std::string fbx_to_anim_form::boneSummary() const
{
    if (path(file::fbx).empty())
        return "Choose an FBX file.";
    if (m_look.fbx != path(file::fbx) || m_look.template_anim != path(file::template_anim))
        return "Reading...";
    for (const failure* const why : {&m_look.fbx_failure, &m_look.template_failure, &m_look.table_failure})
        if (*why)
            return displayText(describe(*why));
    if (path(file::template_anim).empty())
        return counted(m_look.fbx_bones.size(), "bone") +
               " in the FBX file. Choose a template: the skeleton's .anim file, " + "or an animation of it.";
    const auto matched = static_cast<std::size_t>(std::count_if(
        m_look.bones.begin(), m_look.bones.end(), [](const convert_look::bone& bone) { return bone.isMatched(); }));
    const auto wanted = static_cast<std::size_t>(
        std::count_if(m_look.bones.begin(), m_look.bones.end(),
                      [](const convert_look::bone& bone) { return !bone.template_name.empty(); }));
    std::string text = grouped(matched) + " of " + counted(wanted, "bone") + " matched";
    if (!m_look.prefix.empty())
        text += "; the prefix \"" + m_look.prefix + "\" is taken off";
    return text + (matched == 0 ? ". Is that the right template?" : ".");
}

// Its name, or its number where several have that name.
std::string fbx_to_anim_form::takeText() const
{
    const std::string& name = m_look.takes[m_take].name;
    const auto same = std::count_if(m_look.takes.begin(), m_look.takes.end(),
                                    [&name](const convert_look::take& each) { return each.name == name; });
    return same == 1 && !name.empty() ? name : std::to_string(m_take);
}

double fbx_to_anim_form::takeSeconds() const
{
    return m_take < m_look.takes.size() ? m_look.takes[m_take].seconds : 0;
}

convert_job_options fbx_to_anim_form::options(const std::string& output)
{
    rememberFolder(config_keys::last_export_folder, output);
    convert_job_options options = lookOptions();
    options.output = m_newest = output;
    options.config_path = m_config.path();
    options.layout = m_layout;
    if (m_version > 0)
        options.version = m_version == 1 ? 5 : 7;
    if (m_take > 0)
        options.take = takeText();
    if (m_is_rate_typed)
        options.rate = typedDecimal(text(field::rate));
    if (m_length_typed == std::optional(field::end_time))
        options.end_time = typedDecimal(text(field::end_time));
    if (m_length_typed == std::optional(field::frames))
        options.frames = static_cast<std::uint32_t>(typedWhole(text(field::frames)).value_or(1));
    return options;
}

std::vector<std::string> fbx_to_anim_form::converted() const
{
    std::vector<std::string> paths = m_config.get(config_keys::converted_files);
    std::reverse(paths.begin(), paths.end());
    return paths;
}

} // namespace korvane
