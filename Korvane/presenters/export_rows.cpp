#include "Korvane/presenters/export_rows.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::array export_columns = {list_column{"Animation", 196}, list_column{"Folder", 0},
                                       list_column{"Archive", 90}, list_column{"Size", 70, true},
                                       list_column{"Frames", 56, true}};
enum export_column : std::size_t
{
    cell_size = 3,
    cell_frames
};

constexpr std::chrono::milliseconds between_reports{40};

std::string sizeText(std::uint64_t bytes)
{
    return bytes < 1024 ? std::to_string(bytes) + " B" : grouped((bytes + 1023) / 1024) + " KB";
}

} // namespace

void export_finder::run(const work_port& work)
{
    std::size_t told = 0;
    auto reported = std::chrono::steady_clock::now();
    work.report(0, m_search.candidateCount());
    const auto isDue = [&reported] {
        const auto now = std::chrono::steady_clock::now();
        return now - reported >= between_reports ? (reported = now, true) : false;
    };
    while (!work.isStopped() && m_search.step())
        if ((m_search.doneCount() % 64 == 0 || m_search.matches().size() == 1) && isDue())
        {
            hand(told);
            work.report(m_search.doneCount(), m_search.candidateCount());
        }
    hand(told);
    work.report(m_search.doneCount(), m_search.candidateCount());
    std::vector<std::uint32_t> frames;
    const auto handFrames = [&] {
        const std::lock_guard lock(m_mutex);
        m_finds.frames.insert(m_finds.frames.end(), frames.begin(), frames.end());
        frames.clear();
    };
    for (const compatible_search::match& match : m_search.matches())
    {
        if (work.isStopped())
            break;
        frames.push_back(readFrameCount(*match.entry).value_or(no_frames));
        if (isDue())
        {
            handFrames();
            work.report(m_search.doneCount(), m_search.candidateCount());
        }
    }
    handFrames();
}

void export_finder::hand(std::size_t& told)
{
    const std::lock_guard lock(m_mutex);
    for (; told < m_search.matches().size(); ++told)
        m_finds.entries.push_back(m_search.matches()[told].entry);
}

export_finder::finds export_finder::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_finds, {});
}

void export_rows::restart()
{
    begin({});
    m_is_chosen.clear();
    m_frames.clear();
}

void export_rows::add(const export_finder::finds& found)
{
    animation_rows::add(found.entries);
    m_frames.insert(m_frames.end(), found.frames.begin(), found.frames.end());
}

std::span<const list_column> export_rows::columns() const
{
    return export_columns;
}

std::string export_rows::text(std::size_t row, std::size_t column) const
{
    if (column == cell_size)
        return sizeText(choice(row).entry->size());
    if (column != cell_frames)
        return animation_rows::text(row, column);
    const std::size_t number = numberOf(row);
    if (number >= m_frames.size())
        return {};
    return m_frames[number] == export_finder::no_frames ? "?" : grouped(m_frames[number]);
}

void export_rows::choose(std::span<const std::size_t> rows)
{
    m_is_chosen.resize(animationCount());
    for (std::size_t row = 0; row < rowCount(); ++row)
        m_is_chosen[numberOf(row)] = false;
    for (const std::size_t row : rows)
        if (row < rowCount())
            m_is_chosen[numberOf(row)] = true;
}

void export_rows::chooseNone()
{
    m_is_chosen.assign(animationCount(), false);
}

std::vector<std::size_t> export_rows::chosenRows() const
{
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < rowCount(); ++row)
        if (isChosen(numberOf(row)))
            rows.push_back(row);
    return rows;
}

std::size_t export_rows::chosenCount() const
{
    return static_cast<std::size_t>(std::count(m_is_chosen.begin(), m_is_chosen.end(), true));
}

std::vector<const pack_file_node*> export_rows::chosen() const
{
    std::vector<const pack_file_node*> entries;
    for (std::size_t number = 0; number < m_is_chosen.size(); ++number)
        if (m_is_chosen[number])
            entries.push_back(choiceOf(number).entry);
    return entries;
}

} // namespace korvane
