#include "Korvane/presenters/animation_rows.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <array>

namespace korvane
{

namespace
{

constexpr std::array animation_columns = {list_column{"Animation", 170}, list_column{"Folder", 0},
                                          list_column{"Archive", 90}};
enum animation_column : std::size_t
{
    cell_animation,
    cell_folder
};

std::string_view folderOf(std::string_view path)
{
    return path.substr(0, path.size() - fileName(path).size());
}

std::string folded(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), foldedCharacter);
    return result;
}

std::vector<std::string> wordsOf(const std::string& text)
{
    std::vector<std::string> words;
    for (std::size_t begin = 0; (begin = text.find_first_not_of(' ', begin)) != text.npos;)
    {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        words.push_back(text.substr(begin, end - begin));
        begin = end;
    }
    return words;
}

} // namespace

std::string animation_choice::label() const
{
    if (isBindPose())
        return "[-- Bind/A-Pose --]";
    return entry != nullptr ? displayText(entry->fileName()) : "[DISK]: " + displayText(fileName(disk_path));
}

std::string_view animation_choice::path() const
{
    return entry != nullptr ? entry->internalPath() : std::string_view(disk_path);
}

std::string animation_choice::place() const
{
    return entry != nullptr ? entry->packPath() + "|" + std::string(path()) : disk_path;
}

void animation_rows::begin(std::span<const std::string> converted_files)
{
    m_choices.assign(m_has_bind_pose ? 1 : 0, {});
    for (const std::string& path : converted_files)
        m_choices.push_back({nullptr, path});
    m_shown.clear();
    for (std::size_t i = 0; i < m_choices.size(); ++i)
        if (passes(m_choices[i]))
            m_shown.push_back(static_cast<std::uint32_t>(i));
}

void animation_rows::add(std::span<const pack_file_node* const> found)
{
    for (const pack_file_node* const entry : found)
    {
        m_choices.push_back({entry, {}});
        if (passes(m_choices.back()))
            m_shown.push_back(static_cast<std::uint32_t>(m_choices.size() - 1));
    }
}

void animation_rows::setFilter(std::string_view words)
{
    const bool is_narrower = words.starts_with(m_filter); // a letter more: only what is shown can still pass
    m_filter = words;
    m_words = wordsOf(folded(words));
    if (is_narrower)
    {
        std::erase_if(m_shown, [this](std::uint32_t number) { return !passes(m_choices[number]); });
        return;
    }
    m_shown.clear();
    for (std::size_t i = 0; i < m_choices.size(); ++i)
        if (passes(m_choices[i]))
            m_shown.push_back(static_cast<std::uint32_t>(i));
}

bool animation_rows::passes(const animation_choice& choice) const
{
    if (choice.isBindPose() || m_words.empty())
        return true;
    const auto holdsAll = [this](std::string_view text) {
        return std::all_of(m_words.begin(), m_words.end(),
                           [text](const std::string& word) { return text.find(word) != text.npos; });
    };
    if (choice.entry != nullptr)
        return holdsAll(choice.entry->internalPath()); // lower case already
    return holdsAll("[disk]: " + folded(choice.disk_path));
}

std::span<const list_column> animation_rows::columns() const
{
    return animation_columns;
}

std::string animation_rows::text(std::size_t row, std::size_t column) const
{
    const animation_choice& shown = choice(row);
    if (column == cell_animation)
        return shown.label();
    if (shown.isBindPose())
        return {};
    if (column == cell_folder)
        return displayText(folderOf(shown.path()));
    return shown.entry != nullptr ? displayText(shown.entry->archive().name) : std::string();
}

row_mark animation_rows::mark(std::size_t row) const
{
    return !choice(row).isBindPose() && choice(row).entry == nullptr ? row_mark::good : row_mark::plain;
}

std::optional<std::size_t> animation_rows::rowOf(const std::string& place) const
{
    for (std::size_t row = 0; row < m_shown.size(); ++row)
        if (place.ends_with(choice(row).path()) && choice(row).place() == place) // few are made for that
            return row;
    return std::nullopt;
}

} // namespace korvane
