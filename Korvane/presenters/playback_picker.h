#pragma once

// The box in which an animation is picked and played: which skeletons are shown, which animations are made for them,
// which of these move the scene, and what is said about all that. The window's thread owns it; a worker runs an
// animation_finder and readAnimation().

#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/animation/anim_search.h"
#include "Korvane/game/game_data.h"
#include "Korvane/posing/playback.h"
#include "Korvane/presenters/animation_rows.h"
#include "Korvane/scene/loaded_scene.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// One search for the animations of a skeleton.
class animation_finder
{
public:
    animation_finder(std::shared_ptr<const game_data> game, std::string skeleton_id)
        : m_po_game(std::move(game))
        , m_skeleton_id(std::move(skeleton_id))
    {
    }

    animation_listing run(const work_port& work); // the worker's; reports whenever there is something to take
    entry_list take();                            // what was found since the last time; any thread

private:
    std::shared_ptr<const game_data> m_po_game;
    std::string m_skeleton_id;
    std::mutex m_mutex; // guards m_found
    entry_list m_found;
};

struct read_animation
{
    animation_choice choice;
    std::string skeleton_id;               // that was shown when it was chosen
    std::shared_ptr<const anim_data> data; // null: it cannot be read
    std::string problem;                   // then
    std::optional<notice> said;            // what a person is to be told then, if that is a box
};
// The bind pose needs no reading. Any thread that keeps the archives.
[[nodiscard]] read_animation readAnimation(animation_choice choice, std::string skeleton_id);

// A skeleton of the scene that was found. Of several for one id the first moves the scene until another is chosen.
struct skeleton_choice
{
    std::string id;
    std::string label;                     // file name
    std::string tip;                       // where it is
    const pack_file_node* entry = nullptr; // null: it is not in the archives, or nowhere
};

class playback_picker
{
public:
    explicit playback_picker(log_port log = {}) : m_log(std::move(log)) {}

    // The box is opened, or what is open has changed. True: another search is to be run. A null scene: it is being
    // loaded.
    struct surroundings
    {
        bool has_view = false;
        bool has_document = false;
        scene_pointer scene;
        std::shared_ptr<const game_data> game; // never null
        std::vector<std::string> converted_files;
    };
    [[nodiscard]] bool show(surroundings now);
    // Always when the view shows another scene: of another path it starts in the bind pose.
    void follow(const scene_pointer& scene);
    void forget(); // the box is closed: the next show() searches again

    const std::vector<skeleton_choice>& skeletons() const { return m_skeletons; }
    int shownSkeleton() const { return m_skeleton; } // -1: none
    [[nodiscard]] bool chooseSkeleton(int position); // true: another search is to be run
    // After that: the entry that the scene is to be moved by from now on (skeleton_exchange.h); null: it is already.
    const pack_file_node* wantedSkeleton() const;
    // The next scene to be shown has it. What hung on the lost bones (skeleton_exchange.h) is told until the next
    // choice.
    void exchanged(const pack_file_node& entry, const scene_rig& by, const std::vector<std::string>& lost);
    void keepSkeleton(const failure& why); // it cannot be had: the one before stays
    std::string shownId() const;

    // In place of one that runs.
    std::shared_ptr<animation_finder> beginSearch();
    void progress(std::size_t done, std::size_t total);
    bool take(animation_finder& finder); // true: there are more rows
    void end(const animation_listing& listing);
    bool isSearching() const { return m_search == search::running; }

    animation_rows& rows() { return m_rows; }
    const animation_rows& rows() const { return m_rows; }
    std::optional<std::size_t> chosenRow() const; // of the shown skeleton; nothing: it is not shown

    // What was picked; animations() has changed then. False: it could not be read, and all stays.
    bool choose(read_animation read);
    // How the scene moves; what was picked last leads.
    std::vector<std::shared_ptr<const anim_data>> animations() const;
    void setProblems(std::vector<std::string> problems) { m_problems = std::move(problems); } // what does not fit
    std::optional<playback_length> length() const; // of the leading animation; nothing: the bind pose is shown

    std::string status() const;  // how far the search is, or how much there is
    std::string message() const; // what moves and what does not fit, or why there is nothing and what to do
    bool needsFolders() const;   // no archives are there: what helps are the game's folders

private:
    enum class search
    {
        none,
        running,
        stopped,
        failed,
        done
    };
    struct played
    {
        std::string skeleton_id;
        std::string label;
        std::string place;
        std::shared_ptr<const anim_data> data;
    };
    struct exchange
    {
        const pack_file_node* entry;
        std::shared_ptr<const anim_data> skeleton;
    };
    void findSkeletonsOfScene();
    int movingSkeleton(const std::string& id) const;
    std::string missing() const;
    const scene_rig* rigOf(const std::string& id) const; // null: there is none

    log_port m_log;
    surroundings m_now;
    std::string m_path;             // of the scene that is shown
    std::vector<std::string> m_ids; // of the scene's skeletons, each once; one empty id where there is none
    bool m_is_known = false;        // what was searched is what is shown
    bool m_is_view_missed = false;  // and that was said
    std::vector<skeleton_choice> m_skeletons;
    int m_skeleton = -1;
    std::shared_ptr<const game_data> m_po_skeleton_game, m_po_row_game; // keep the entries that are listed
    search m_search = search::none;
    std::size_t m_done = 0, m_total = 0; // candidates
    animation_rows m_rows;
    std::vector<exchange> m_exchanged; // skeletons, for other ones than the first
    std::vector<played> m_played;      // the leading one last
    std::vector<std::string> m_problems;
    std::string m_unread; // what was picked last and could not be read
};

// Numbers of playing as a person reads and types them; a comma counts as a point. Frames count from 0.
[[nodiscard]] std::string frameText(const playback_position& position);
[[nodiscard]] std::string timeText(const playback_position& position, const playback_length& length); // seconds
[[nodiscard]] std::uint32_t lastFrame(const playback_length& length);
// Nothing for what is no number of 0 or more; beyond the end is the end.
[[nodiscard]] std::optional<playback_position> typedFrame(std::string_view text, const playback_length& length);
[[nodiscard]] std::optional<playback_position> typedTime(std::string_view text, const playback_length& length);
// Frames from one to another, in either order; a field that holds no frame is that end of the animation. One frame
// alone is no range, and neither is all of it.
[[nodiscard]] frame_range typedRange(std::string_view first, std::string_view last, const playback_length& length);

inline constexpr float slowest_speed = 0.1f;
inline constexpr float fastest_speed = 4;
inline constexpr float offered_speeds[] = {0.1f, 0.25f, 0.5f, 0.75f, 1, 1.5f, 2, 4};
[[nodiscard]] std::optional<float> typedSpeed(std::string_view text); // nothing: out of these bounds

} // namespace korvane
