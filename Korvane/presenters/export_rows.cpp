#include "Korvane/presenters/export_rows.h"

#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <array>
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

std::string sizeText(std::uint64_t bytes)
{
    return bytes < 1024 ? std::to_string(bytes) + " B" : grouped((bytes + 1023) / 1024) + " KB";
}

} // namespace

void export_finder::run(const work_port& work)
{
    const std::stop_callback stop_with_work(work.stop, [this] { stopSearch(); });
    entry_list all;
    const auto take = [&](const entry_list& more, std::size_t done, std::size_t total) {
        all.insert(all.end(), more.begin(), more.end());
        {
            const std::lock_guard lock(m_mutex);
            m_finds.entries.insert(m_finds.entries.end(), more.begin(), more.end());
        }
        work.report(done, total);
    };
    const compatible_listing listing = listCompatible(*m_po_tree, m_skeleton_id, take, m_stop.get_token());
    if (listing.unreadable > 0)
        tell(work.log, counted(listing.unreadable, "animation") + " could not be read. Are the .pack files being used "
                                                                  "by another program?");
    {
        const std::lock_guard lock(m_mutex);
        m_finds.search = listing.is_stopped ? state::stopped : state::through;
    }
    readFrames(all, work);
}

void export_finder::readFrames(const entry_list& found, const work_port& work)
{
    constexpr std::size_t piece_size = 256, worth_a_thread = 32;
    for (std::size_t begin = 0; begin < found.size() && !work.isStopped(); begin += piece_size)
    {
        std::vector<std::uint32_t> frames(std::min(piece_size, found.size() - begin));
        parallelFor(
            frames.size(), threadsFor(frames.size() / worth_a_thread),
            [&](std::size_t i) { frames[i] = readFrameCount(*found[begin + i]).value_or(no_frames); }, 8);
        {
            const std::lock_guard lock(m_mutex);
            m_finds.frames.insert(m_finds.frames.end(), frames.begin(), frames.end());
        }
        work.report(found.size(), found.size()); // there is something to take
    }
}

export_finder::finds export_finder::take()
{
    const std::lock_guard lock(m_mutex);
    finds taken = std::exchange(m_finds, {});
    m_finds.search = taken.search;
    return taken;
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
