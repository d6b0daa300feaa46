#pragma once

// The list from which an animation is picked: the bind pose, the animations that conversions have written, and what a
// search has found in the archives, with a filter over it. Made for 50,000 rows and a filter that is typed. Entries
// live as long as their archives, which the owner holds.

#include "EASY_GUI/services/list_model.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// An animation that can be picked; one without a place is the bind pose.
struct animation_choice
{
    const pack_file_node* entry = nullptr; // in an archive
    std::string disk_path = {};            // of a converted file

    bool isBindPose() const { return entry == nullptr && disk_path.empty(); }
    std::string label() const;     // "walk.anim", "[DISK]: walk.anim", "[-- Bind/A-Pose --]"
    std::string_view path() const; // internal, or on the disk; empty for the bind pose
    std::string place() const;     // tells it from all others, also after the archives were read again
};

class animation_rows : public list_model
{
public:
    explicit animation_rows(bool has_bind_pose = true) : m_has_bind_pose(has_bind_pose) { begin({}); }

    // The bind pose, where there is one, and these files, in their order. The filter stays.
    void begin(std::span<const std::string> converted_files);
    void add(std::span<const pack_file_node* const> found); // behind what is there
    // Words of which each is a part of a row's path, in any case, '/' or '\' between its folders. The bind pose is
    // always shown.
    void setFilter(std::string_view words);
    const std::string& filter() const { return m_filter; }

    std::span<const list_column> columns() const override; // animation, folder, archive
    std::size_t rowCount() const override { return m_shown.size(); }
    std::string text(std::size_t row, std::size_t column) const override;
    row_mark mark(std::size_t row) const override;

    const animation_choice& choice(std::size_t row) const { return m_choices[m_shown[row]]; }
    std::optional<std::size_t> rowOf(const std::string& place) const; // nothing: it is not shown
    // Without the bind pose.
    std::size_t animationCount() const { return m_choices.size() - m_has_bind_pose; }
    std::size_t shownAnimationCount() const { return m_shown.size() - m_has_bind_pose; }

protected:
    std::size_t numberOf(std::size_t row) const { return m_shown[row]; } // among all, as they were added
    const animation_choice& choiceOf(std::size_t number) const { return m_choices[number]; }

private:
    bool passes(const animation_choice& choice) const;

    bool m_has_bind_pose;
    std::vector<animation_choice> m_choices; // the bind pose first
    std::vector<std::uint32_t> m_shown;      // of them, ascending
    std::string m_filter;                    // as it was typed
    std::vector<std::string> m_words;        // folded
};

} // namespace korvane
