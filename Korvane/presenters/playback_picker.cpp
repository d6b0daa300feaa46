#include "Korvane/presenters/playback_picker.h"

#include "EASY_GUI/services/byte_reader.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/pack_entry.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

namespace korvane
{

namespace
{

std::string quotedName(std::string_view name)
{
    return "\"" + displayText(name) + "\"";
}

// As sentences: rigs and fits say theirs without a capital and an end mark.
std::string sentence(std::string text)
{
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
        text[0] = static_cast<char>(text[0] - ('a' - 'A'));
    if (!text.empty() && text.back() != '.')
        text += '.';
    return text;
}

std::vector<std::string> idsOf(const loaded_scene& scene)
{
    std::vector<std::string> ids;
    for (const scene_rig& rig : scene.rigs)
        if (std::find(ids.begin(), ids.end(), rig.id) == ids.end())
            ids.push_back(rig.id);
    if (ids.empty())
        ids.emplace_back();
    return ids;
}

// What a conversion wrote, and cannot be read: in the other layout.
bool isOfVersion7(const std::string& disk_path)
{
    memory_file bytes;
    failure ignored;
    return !disk_path.empty() && bytes.read(disk_path, ignored) && bytes.bytes().size() > 4 &&
           littleEndian<std::uint32_t>(bytes.bytes().data()) == 7;
}

} // namespace

animation_listing animation_finder::run(const work_port& work)
{
    if (!m_po_game->archives())
        return listAnimations(path_tree(), m_skeleton_id, {}, work.stop, work.log);
    return listAnimations(
        *m_po_game->archives(), m_skeleton_id,
        [this, &work](const entry_list& more, std::size_t done, std::size_t total) {
            {
                const std::lock_guard lock(m_mutex);
                m_found.insert(m_found.end(), more.begin(), more.end());
            }
            work.report(done, total);
        },
        work.stop, work.log);
}

entry_list animation_finder::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_found, {});
}

read_animation readAnimation(animation_choice choice, std::string skeleton_id)
{
    read_animation read{std::move(choice), std::move(skeleton_id), nullptr, {}, {}};
    anim_file file;
    failure why;
    bool is_there = true; // what is on the disk is opened by the reader, which says so when it is not
    if (const pack_file_node* const entry = read.choice.entry)
    {
        memory_file bytes;
        is_there = readEntry(*entry, bytes, why);
        if (is_there)
            file.openFromMemory(std::move(bytes), placeOf(*entry));
    }
    if (is_there && file.loadAnimation(read.choice.disk_path, why))
        read.data = std::make_shared<const anim_data>(file.takeData());
    else
        read.problem = why ? describe(why) : "it is no animation of version 5 or 7";
    if (!read.data && isOfVersion7(read.choice.disk_path))
        read.problem = "it is laid out for the games' own tools, and cannot be played here. Convert it again with "
                       "\"Version 7: layout of the games' own files\" checked (" +
                       read.problem + ")";
    read.said = file.lastNotice();
    return read;
}

bool playback_picker::show(surroundings now)
{
    const std::vector<std::string> ids = now.scene ? idsOf(*now.scene) : std::vector<std::string>();
    m_is_known = m_is_known && now.game == m_now.game && now.converted_files == m_now.converted_files;
    follow(now.scene);
    m_now = std::move(now);
    if (!m_now.has_view && !std::exchange(m_is_view_missed, true))
        tell(m_log, "playback_box::onDialogInit(LPARAM): m_poD3DWindow == nullptr");
    if (!m_now.has_document)
    {
        forget();
        m_rows.begin({});
        m_skeletons.clear();
        m_skeleton = -1;
    }
    if (!m_now.has_document || !m_now.scene)
        return false;
    if (m_is_known && ids == m_ids) // with another level of detail, or another skeleton of the same id
    {
        m_skeleton = movingSkeleton(shownId());
        return false;
    }
    m_ids = ids;
    m_is_known = true;
    m_unread.clear();
    if (m_ids.front().empty())
        tell(m_log, "playback_box::onDialogInit(LPARAM): strSkeletonId ==  ");
    findSkeletonsOfScene();
    return true;
}

void playback_picker::follow(const scene_pointer& scene)
{
    if (!scene || m_path == scene->path)
        return;
    m_path = scene->path;
    m_exchanged.clear();
    m_played.clear(); // the view has begun anew, too
    m_problems.clear();
    m_unread.clear();
}

void playback_picker::forget()
{
    m_is_known = m_is_view_missed = false;
    m_search = search::none;
}

// The first one for each id is the one that the scene was loaded with.
void playback_picker::findSkeletonsOfScene()
{
    const std::string former = shownId();
    m_skeletons.clear();
    m_po_skeleton_game = m_now.game;
    for (const std::string& id : m_ids)
    {
        const std::size_t count = m_skeletons.size();
        const path_tree none;
        const path_tree& tree = m_now.game->archives() ? *m_now.game->archives() : none;
        for (const pack_file_node* const entry : findSkeletons(tree, id, m_log))
            m_skeletons.push_back({id, displayText(entry->fileName()), displayText(placeOf(*entry)), entry});
        if (m_skeletons.size() > count || id.empty())
            continue;
        const auto rig = std::find_if(m_now.scene->rigs.begin(), m_now.scene->rigs.end(),
                                      [&id](const scene_rig& each) { return each.id == id; });
        if (rig->path.empty())
            m_skeletons.push_back({id, displayText(id) + " (not found)", rig->problem, nullptr});
        else
            m_skeletons.push_back({id, displayText(fileName(rig->path)), displayText(rig->path), nullptr});
    }
    m_skeleton = movingSkeleton(former);
    if (m_skeleton < 0 && !m_skeletons.empty())
        m_skeleton = movingSkeleton(m_skeletons.front().id);
}

std::string playback_picker::shownId() const
{
    return m_skeleton < 0 ? std::string() : m_skeletons[static_cast<std::size_t>(m_skeleton)].id;
}

bool playback_picker::chooseSkeleton(int position)
{
    if (position < 0 || static_cast<std::size_t>(position) >= m_skeletons.size())
        return false;
    const std::string former = shownId();
    m_skeleton = position;
    m_unread.clear();
    return shownId() != former;
}

// The position of the one that moves the rigs of an id; -1: none is found.
int playback_picker::movingSkeleton(const std::string& id) const
{
    const scene_rig* const rig = rigOf(id);
    const pack_file_node* entry = nullptr;
    for (const exchange& each : m_exchanged)
        if (rig != nullptr && each.skeleton == rig->skeleton)
            entry = each.entry;
    int first = -1;
    for (std::size_t i = m_skeletons.size(); i-- > 0;)
        if (m_skeletons[i].id == id)
        {
            if (entry != nullptr && m_skeletons[i].entry == entry)
                return static_cast<int>(i);
            first = static_cast<int>(i);
        }
    return first;
}

const pack_file_node* playback_picker::wantedSkeleton() const
{
    if (m_skeleton < 0 || movingSkeleton(shownId()) == m_skeleton)
        return nullptr;
    return m_skeletons[static_cast<std::size_t>(m_skeleton)].entry;
}

void playback_picker::exchanged(const pack_file_node& entry, const scene_rig& by, const std::vector<std::string>& lost)
{
    m_exchanged.push_back({&entry, by.skeleton});
    std::string names;
    for (const std::string& name : lost)
        names += (names.empty() ? "" : ", ") + quotedName(name);
    if (!lost.empty())
        m_unread = sentence("This skeleton has no bone " + names + ": what hung there hangs on its first bone");
}

void playback_picker::keepSkeleton(const failure& why)
{
    m_unread = sentence("This skeleton cannot be read: " + displayText(describe(why)));
    m_skeleton = movingSkeleton(shownId());
}

std::shared_ptr<animation_finder> playback_picker::beginSearch()
{
    m_search = search::running;
    m_done = m_total = 0;
    m_rows.begin(m_now.converted_files);
    m_po_row_game = m_now.game;
    return std::make_shared<animation_finder>(m_now.game, shownId());
}

void playback_picker::progress(std::size_t done, std::size_t total)
{
    m_done = done;
    m_total = total;
}

bool playback_picker::take(animation_finder& finder)
{
    const entry_list more = finder.take();
    m_rows.add(more);
    return !more.empty();
}

void playback_picker::end(const animation_listing& listing)
{
    m_search = listing.said ? search::failed : listing.is_stopped ? search::stopped : search::done;
}

std::optional<std::size_t> playback_picker::chosenRow() const
{
    const auto found = std::find_if(m_played.begin(), m_played.end(),
                                    [id = shownId()](const played& each) { return each.skeleton_id == id; });
    return m_rows.rowOf(found == m_played.end() ? std::string() : found->place);
}

bool playback_picker::choose(read_animation read)
{
    if (!read.choice.isBindPose() && !read.data)
    {
        m_unread = sentence(quotedName(read.choice.label()) + " is not played: " + displayText(read.problem));
        return false;
    }
    m_unread.clear();
    m_problems.clear();
    std::erase_if(m_played, [&read](const played& each) { return each.skeleton_id == read.skeleton_id; });
    if (read.data)
        m_played.push_back(
            {std::move(read.skeleton_id), read.choice.label(), read.choice.place(), std::move(read.data)});
    return true;
}

std::vector<std::shared_ptr<const anim_data>> playback_picker::animations() const
{
    std::vector<std::shared_ptr<const anim_data>> all;
    for (const played& each : m_played)
        all.push_back(each.data);
    return all;
}

std::optional<playback_length> playback_picker::length() const
{
    const scene_rig* const rig = m_played.empty() ? nullptr : rigOf(m_played.back().skeleton_id);
    if (m_played.empty() || (m_now.scene && (rig == nullptr || !rig->skeleton))) // gone with its archive
        return std::nullopt;
    const anim_data& data = *m_played.back().data;
    return playback_length{data.frame_rate, data.end_time, data.frame_count};
}

std::string playback_picker::status() const
{
    const std::size_t count = m_rows.animationCount();
    const std::string found = counted(count, "animation");
    if (m_search == search::running)
        return m_total == 0 ? std::string("Searching...")
                            : "Searching: " + grouped(m_done) + " of " + grouped(m_total) + " read, " + grouped(count) +
                                  " found";
    if (m_search == search::none)
        return {};
    const std::string listed =
        m_rows.shownAnimationCount() == count ? found : grouped(m_rows.shownAnimationCount()) + " of " + found;
    return listed + (m_search == search::stopped  ? "; the search was stopped"
                     : m_search == search::failed ? "; an archive could not be read"
                                                  : "");
}

const scene_rig* playback_picker::rigOf(const std::string& id) const
{
    if (!m_now.scene)
        return nullptr;
    for (const scene_rig& rig : m_now.scene->rigs)
        if (rig.id == id)
            return &rig;
    return nullptr;
}

bool playback_picker::needsFolders() const
{
    return m_now.game && !m_now.game->hasArchives();
}

// Why there is nothing to play, and what to do; empty: there is something.
std::string playback_picker::missing() const
{
    if (!m_now.has_document)
        return "Nothing is open. Open a model or a definition: its animations are listed here.";
    if (!m_now.has_view)
        return "There is no 3D view that could play an animation.";
    if (!m_now.scene)
        return "The model is being loaded.";
    if (m_now.scene->rigs.empty())
        return "What is open names no skeleton, so there is nothing to move. Units and animals have one; buildings "
               "and weapons mostly have none.";
    const scene_rig* const rig = rigOf(shownId());
    if (rig != nullptr && !rig->skeleton && rig->path.empty())
        return "There is no skeleton " + quotedName(rig->id) +
               (needsFolders()
                    ? ", for no archives are loaded. Set the game's folders: the skeleton and its animations "
                      "are in their archives."
                    : " in the archives, so the model keeps its bind pose. Add the game or the mod that it "
                      "comes from with Tools > Setup Game Folders.");
    if (rig != nullptr && !rig->skeleton)
        return sentence(rig->problem);
    if (m_search == search::running || m_search == search::none)
        return {};
    if (m_rows.animationCount() == 0)
        return needsFolders() ? "There are no animations, for no archives are loaded. Set the game's folders: "
                                "animations are searched in their archives."
                              : "No animation names the skeleton " + quotedName(shownId()) +
                                    " (capital and small letters differ). Add the game or the mod that has some with "
                                    "Tools > Setup Game Folders.";
    if (m_rows.shownAnimationCount() == 0)
        return "No animation has \"" + m_rows.filter() + "\" in its path. Delete a word to see more.";
    return {};
}

std::string playback_picker::message() const
{
    std::string shown;
    for (const played& each : m_played)
        shown += (shown.empty() ? "" : " and ") + each.label;
    if (!m_unread.empty())
        return m_unread + (shown.empty() ? "" : " Still shown: " + shown + ".");
    std::string text;
    for (const std::string& problem : m_problems)
        text += (text.empty() ? "" : " ") + sentence(displayText(problem));
    if (!text.empty())
        return text;
    text = missing();
    if (!text.empty())
        return text;
    if (const scene_rig* const rig = rigOf(shownId()); !shown.empty())
        return "Shown: " + shown + (rig == nullptr || rig->problem.empty() ? "" : ". " + sentence(rig->problem));
    return m_rows.animationCount() == 0 ? "" : "The bind pose is shown. Choose an animation to play it.";
}

namespace
{

// A number of 0 or more; nothing for anything else.
std::optional<double> typedNumber(std::string_view text)
{
    std::string plain(text);
    std::replace(plain.begin(), plain.end(), ',', '.');
    const std::size_t begin = plain.find_first_not_of(' ');
    const std::size_t end = plain.find_last_not_of(' ') + 1;
    double value = 0;
    if (begin == plain.npos)
        return std::nullopt;
    const auto [stop, error] = std::from_chars(plain.data() + begin, plain.data() + end, value);
    if (error != std::errc() || stop != plain.data() + end || !std::isfinite(value) || value < 0)
        return std::nullopt;
    return value;
}

} // namespace

std::uint32_t lastFrame(const playback_length& length)
{
    return length.frame_count == 0 ? 0 : length.frame_count - 1;
}

std::string frameText(const playback_position& position)
{
    return std::to_string(position.frame);
}

std::string timeText(const playback_position& position, const playback_length& length)
{
    const double frames = position.frame + static_cast<double>(position.fraction);
    char text[40] = "0.00";
    if (length.canRun())
        std::snprintf(text, sizeof text, "%.2f", frames / length.frame_rate);
    return text;
}

std::optional<playback_position> typedFrame(std::string_view text, const playback_length& length)
{
    const std::optional<double> number = typedNumber(text);
    if (!number)
        return std::nullopt;
    return positionOfFrame(std::min(*number, static_cast<double>(lastFrame(length))));
}

std::optional<playback_position> typedTime(std::string_view text, const playback_length& length)
{
    const std::optional<double> number = typedNumber(text);
    if (!number || !length.canRun())
        return std::nullopt;
    return positionOfFrame(std::min(*number * length.frame_rate, static_cast<double>(lastFrame(length))));
}

frame_range typedRange(std::string_view first, std::string_view last, const playback_length& length)
{
    const std::uint32_t end = lastFrame(length);
    const auto frameOf = [&length](std::string_view text, std::uint32_t otherwise) {
        const auto position = typedFrame(text, length);
        return position ? position->frame : otherwise;
    };
    const auto [least, most] = std::minmax({frameOf(first, 0), frameOf(last, end)});
    const frame_range range{least, most};
    return range == frame_range{0, end} || range.isWhole() ? frame_range{} : range;
}

std::optional<float> typedSpeed(std::string_view text)
{
    const std::optional<double> number = typedNumber(text);
    if (!number)
        return std::nullopt;
    const auto speed = static_cast<float>(*number);
    return speed >= slowest_speed && speed <= fastest_speed ? std::optional(speed) : std::nullopt;
}

} // namespace korvane
