#pragma once

// The animations that an export may take: what a search has found so far, with a filter over it, and which of them are
// chosen. Rows that the filter hides keep their choice. The window's thread owns it; a worker runs an export_finder.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/animation/anim_search.h"
#include "Korvane/presenters/animation_rows.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

// One search for the animations of a skeleton, and then how long each of those is that were found.
class export_finder
{
public:
    export_finder(std::shared_ptr<const path_tree> tree, std::string skeleton_id)
        : m_po_tree(std::move(tree))
        , m_skeleton_id(std::move(skeleton_id))
    {
    }

    // The worker's; reports candidates whenever there is something to take. A stop of the work ends all of it.
    void run(const work_port& work);
    // Any thread: what was found until now is all.
    void stopSearch() { m_stop.request_stop(); }

    enum class state
    {
        searching,
        stopped, // there may be more
        through
    };
    struct finds
    {
        entry_list entries;                // since the last time
        std::vector<std::uint32_t> frames; // of the next entries in their order; no_frames: they cannot be read
        state search = state::searching;   // with these entries
        bool empty() const { return entries.empty() && frames.empty(); }
    };
    static constexpr std::uint32_t no_frames = 0xffffffffu;
    finds take(); // any thread

private:
    void readFrames(const entry_list& found, const work_port& work);

    std::shared_ptr<const path_tree> m_po_tree;
    std::string m_skeleton_id;
    std::stop_source m_stop;
    std::mutex m_mutex; // guards m_finds
    finds m_finds;
};

class export_rows : public animation_rows
{
public:
    export_rows() : animation_rows(false) {}

    void restart(); // without any rows; the filter stays
    void add(const export_finder::finds& found);

    std::span<const list_column> columns() const override; // animation, folder, archive, size, frames
    std::string text(std::size_t row, std::size_t column) const override;

    // What the list shows as selected is chosen, and of what it shows nothing else.
    void choose(std::span<const std::size_t> rows);
    void chooseNone(); // the hidden ones, too
    std::vector<std::size_t> chosenRows() const;
    std::size_t chosenCount() const;
    std::size_t hiddenChosenCount() const { return chosenCount() - chosenRows().size(); }
    // In the order of the list.
    std::vector<const pack_file_node*> chosen() const;

private:
    bool isChosen(std::size_t number) const { return number < m_is_chosen.size() && m_is_chosen[number]; }

    std::vector<bool> m_is_chosen;       // by number
    std::vector<std::uint32_t> m_frames; // of the first ones
};

} // namespace korvane
