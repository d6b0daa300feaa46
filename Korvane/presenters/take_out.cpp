#include "Korvane/presenters/take_out.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>

namespace korvane
{

namespace
{

constexpr std::array<std::string_view, 3> texture_words = {"dds", "png", "tga"};
constexpr std::string_view flat_word = "flat", replace_word = "replace";
constexpr std::size_t most_named = 5000; // of each kind: who has more looks into the folder

// A heading with how many there are, and a line for each.
class report_text
{
public:
    explicit report_text(const extract_job_result& result) : m_result(result) {}

    void add(const std::string& heading, const std::function<std::string(const extracted_file&)>& line)
    {
        std::size_t count = 0;
        std::string lines;
        for (const extracted_file& file : m_result.files)
            if (const std::string said = line(file); !said.empty() && ++count <= most_named)
                lines += "  " + displayText(said) + "\r\n";
        if (count == 0)
            return;
        m_text += "\r\n" + heading + " (" + grouped(count) + "):\r\n" + lines;
        if (count > most_named)
            m_text += "  and " + grouped(count - most_named) + " more\r\n";
    }
    bool isEmpty() const { return m_text.empty(); }
    const std::string& text() const { return m_text; }

private:
    const extract_job_result& m_result;
    std::string m_text;
};

std::string withReason(const extracted_file& file, const failure& why)
{
    if (!why)
        return {};
    const std::string reason = describe(why); // which may begin with another path
    return reason.starts_with(file.internal_path) ? reason : file.internal_path + ": " + reason;
}

} // namespace

take_out_choices::take_out_choices(shared_config& config) : m_config(config)
{
    if (const std::vector<std::string> folder = config.get(config_keys::take_out_folder); !folder.empty())
        m_folder = existingPathAnyCase(folder.front());
    for (const std::string& word : config.get(config_keys::take_out_settings))
        if (word == flat_word)
            m_is_flat = true;
        else if (word == replace_word)
            m_replaces = true;
        else if (const auto name = std::find(texture_words.begin(), texture_words.end(), word);
                 name != texture_words.end())
            m_textures = static_cast<texture_form>(name - texture_words.begin());
}

void take_out_choices::setFolder(const std::string& typed)
{
    constexpr const char* around = " \t\"";
    const std::size_t begin = typed.find_first_not_of(around);
    m_folder =
        begin == std::string::npos ? std::string() : typed.substr(begin, typed.find_last_not_of(around) + 1 - begin);
}

std::optional<std::string> take_out_choices::problem() const
{
    if (m_folder.empty())
        return "Choose the folder into which the files go.";
    if (!toPath(m_folder).is_absolute())
        return "Give the whole path of the folder, with its drive.";
    failure why;
    if (!canWriteBelow(m_folder, why))
        return "This folder cannot be written to: " + why.what + ".";
    return std::nullopt;
}

extract_job_options take_out_choices::options() const
{
    extract_job_options options;
    options.folder = m_folder;
    options.overwrites = m_replaces;
    options.is_flat = m_is_flat;
    if (m_textures != texture_form::as_they_are)
        options.form = m_textures == texture_form::png ? picture_kind::png : picture_kind::targa;
    return options;
}

void take_out_choices::remember()
{
    std::vector<std::string> words = {std::string(texture_words[static_cast<std::size_t>(m_textures)])};
    if (m_is_flat)
        words.emplace_back(flat_word);
    if (m_replaces)
        words.emplace_back(replace_word);
    m_config.set(config_keys::take_out_folder, {m_folder});
    m_config.set(config_keys::take_out_settings, words);
}

take_out_report reportOf(const extract_job_result& result, const std::string& folder, bool is_whole)
{
    take_out_report report;
    report.line = filesExtracted(result.written) + " to " + displayText(folder);
    if (result.kept > 0)
        report.line += "; " + counted(result.kept, "file that differs was", "files that differ were") + " left alone";
    if (result.failed > 0)
        report.line += "; " + grouped(result.failed) + " failed";
    report.line += is_whole ? "." : "; stopped.";

    report_text lines(result);
    lines.add("Not taken out", [](const extracted_file& file) { return withReason(file, file.why); });
    lines.add("Left as they are, for a file that differs is there", [](const extracted_file& file) {
        return !file.why && file.outcome == output_outcome::kept ? file.path : std::string();
    });
    lines.add("Taken out as they are, for they could not be made pictures",
              [](const extracted_file& file) { return withReason(file, file.no_picture); });
    lines.add("With another name, for the name was taken by another file", [](const extracted_file& file) {
        return file.why || file.named_like.empty() ? std::string() : file.path + " is " + file.internal_path;
    });
    lines.add("Cubes and arrays: their faces lie one below the other in the picture", [](const extracted_file& file) {
        return !file.why && file.surfaces > 1 ? file.path + ": " + std::to_string(file.surfaces) + " faces"
                                              : std::string();
    });
    if (lines.isEmpty())
        return report;
    report.text = report.line + "\r\n" + lines.text();
    if (!is_whole)
        report.text += "\r\nWhat comes after the stop was not looked at: " +
                       counted(result.matches - result.files.size(), "file") + ".\r\n";
    return report;
}

} // namespace korvane
