#include "Korvane/animation/anim_search.h"

#include "EASY_GUI/services/byte_reader.h"
#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/archives/pack_entry.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t name_length_at = 12;
constexpr std::size_t name_at = 14;

enum class verdict
{
    matches,
    differs, // and whatever cannot be an animation
    unreadable
};

enum class search_rule
{
    any_version, // the first archive that cannot be read ends the search
    exportable   // of versions 5 and 7; whatever cannot be read is passed over
};

// Reads no more than a match needs: start is as long as that.
verdict examine(const pack_file_node& entry, std::string_view skeleton_id, search_rule rule, std::span<std::byte> start,
                failure& why)
{
    if (entry.compression() == 0 && entry.size() < start.size())
        return verdict::differs;
    std::size_t count = 0;
    failure found;
    if (!readEntryStart(entry, start, count, found))
    {
        const bool is_archive = found.kind == failure_kind::unreadable;
        if (is_archive && !why)
            why = std::move(found);
        return is_archive ? verdict::unreadable : verdict::differs;
    }
    const bool is_match = count == start.size() &&
                          littleEndian<std::uint16_t>(start.data() + name_length_at) == skeleton_id.size() &&
                          std::memcmp(start.data() + name_at, skeleton_id.data(), skeleton_id.size()) == 0;
    std::string name;
    failure refused;
    return is_match && (rule == search_rule::any_version || anim_file::readHeaderName(start, name, refused))
               ? verdict::matches
               : verdict::differs;
}

// Several threads take blocks of candidates; what they found is put in order at the end.
class block_search
{
public:
    block_search(std::span<const pack_file_node* const> candidates, std::string_view skeleton_id, search_rule rule,
                 const std::stop_token& stop)
        : m_candidates(candidates)
        , m_skeleton_id(skeleton_id)
        , m_rule(rule)
        , m_stop(stop)
        , m_blocks(candidates.size(), block_size)
    {
    }

    bool run(entry_list& found, failure& why)
    {
        constexpr std::size_t worth_a_thread = 1024; // candidates
        std::vector<outcome> outcomes(threadsFor(1 + m_candidates.size() / worth_a_thread));
        runOnThreads(outcomes.size(), [&](std::size_t thread) { work(outcomes[thread]); });
        for (const outcome& part : outcomes)
            m_unreadable += part.unreadable;
        return collect(outcomes, found, why);
    }
    std::size_t unreadableCount() const { return m_unreadable; } // that were passed over

private:
    static constexpr std::size_t block_size = 128;
    static constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

    struct outcome
    {
        std::vector<std::size_t> matches;
        std::size_t unreadable = 0;
        std::size_t failed_at = nowhere;
        failure why;
    };

    void work(outcome& result)
    {
        std::size_t at = 0;
        try
        {
            std::vector<std::byte> start(name_at + m_skeleton_id.size());
            for (std::size_t end = 0; !m_stop.stop_requested() && m_blocks.take(at, end);)
                for (; at < end; ++at)
                {
                    if (at >= m_end.load())
                        return;
                    const verdict found = examine(*m_candidates[at], m_skeleton_id, m_rule, start, result.why);
                    if (found == verdict::matches)
                        result.matches.push_back(at);
                    else if (found == verdict::unreadable && m_rule == search_rule::any_version)
                        return stopAt(at, result);
                    else if (found == verdict::unreadable)
                        ++result.unreadable;
                }
        }
        catch (const std::bad_alloc&) // an exception must not leave a thread
        {
            result.why = {};
            fail(result.why, failure_kind::unreadable, "not enough memory for the search");
            stopAt(at, result);
        }
    }

    // Nobody needs to look at what comes behind, but what comes before is still wanted.
    void stopAt(std::size_t at, outcome& result)
    {
        result.failed_at = at;
        std::size_t end = m_end.load();
        while (at < end && !m_end.compare_exchange_weak(end, at))
        {
        }
    }

    bool collect(std::vector<outcome>& outcomes, entry_list& found, failure& why)
    {
        std::vector<std::size_t> matches;
        for (const outcome& part : outcomes)
            matches.insert(matches.end(), part.matches.begin(), part.matches.end());
        std::sort(matches.begin(), matches.end());
        for (const std::size_t match : matches)
            if (match < m_end.load())
                found.push_back(m_candidates[match]);
        for (outcome& part : outcomes)
            if (part.failed_at != nowhere && part.failed_at == m_end.load() && !why)
                why = std::move(part.why);
        return m_end.load() == nowhere;
    }

    std::span<const pack_file_node* const> m_candidates;
    std::string_view m_skeleton_id;
    search_rule m_rule;
    std::size_t m_unreadable = 0;
    std::stop_token m_stop;
    shared_range m_blocks;
    std::atomic<std::size_t> m_end{nowhere}; // the first candidate that could not be read
};

template <typename condition>
entry_list entriesThat(const path_tree& tree, condition isWanted)
{
    entry_list list;
    for (const std::span<const pack_file_node>& entries : tree.entries())
        for (const pack_file_node& entry : entries)
            if (isWanted(entry))
                list.push_back(&entry);
    return list;
}

// One search after the other over pieces of the candidates, each of which takes a moment: what comes of them is seen
// soon, on a slow disk, too, and large pieces are worth several threads. False when one of them failed.
class piecewise_search
{
public:
    piecewise_search(const path_tree& tree, std::string_view skeleton_id, search_rule rule)
        : m_skeleton_id(skeleton_id)
        , m_rule(rule)
    {
        if (skeleton_id.size() <= std::numeric_limits<std::uint16_t>::max()) // else no header can hold it
            m_candidates = animationCandidates(tree);
    }

    bool run(const found_port& tellFound, const std::stop_token& stop, failure& why)
    {
        using clock = std::chrono::steady_clock;
        constexpr std::chrono::milliseconds a_moment{60};
        constexpr std::size_t smallest = 128, largest = 16384;
        const std::span<const pack_file_node* const> all(m_candidates);
        std::size_t size = 1024;
        for (std::size_t done = 0; done < all.size() && !stop.stop_requested();)
        {
            const auto begin = clock::now();
            const auto piece = all.subspan(done, std::min(size, all.size() - done));
            entry_list more;
            block_search search(piece, m_skeleton_id, m_rule, stop);
            const bool is_read = search.run(more, why);
            m_found += more.size();
            m_unreadable += search.unreadableCount();
            if (is_read && !stop.stop_requested())
                done += piece.size();
            tellFound(more, done, all.size());
            if (!is_read)
                return false;
            size = clock::now() - begin < a_moment ? std::min(size * 2, largest) : std::max(size / 2, smallest);
        }
        return true;
    }
    std::size_t foundCount() const { return m_found; }
    std::size_t unreadableCount() const { return m_unreadable; }

private:
    std::string_view m_skeleton_id;
    search_rule m_rule;
    entry_list m_candidates;
    std::size_t m_found = 0, m_unreadable = 0;
};

} // namespace

entry_list findSkeletons(const path_tree& tree, std::string_view skeleton_id, const log_port& log)
{
    tell(log, "Searching fpr skeletons...");
    entry_list found = skeletonEntries(tree, skeleton_id);
    tell(log, "Number of skeletons added to combobox: " + std::to_string(found.size()));
    return found;
}

entry_list animationCandidates(const path_tree& tree)
{
    return entriesThat(tree, [](const pack_file_node& entry) { return entry.extension() == "anim"; });
}

bool findAnimations(std::span<const pack_file_node* const> candidates, std::string_view skeleton_id, entry_list& found,
                    failure& why, const std::stop_token& stop)
{
    if (skeleton_id.size() > std::numeric_limits<std::uint16_t>::max()) // no header can hold it
        return true;
    return block_search(candidates, skeleton_id, search_rule::any_version, stop).run(found, why);
}

animation_listing listAnimations(const path_tree& tree, std::string_view skeleton_id, const found_port& found,
                                 const std::stop_token& stop, const log_port& log)
{
    tell(log, "seaching for compatible animations");
    piecewise_search search(tree, skeleton_id, search_rule::any_version);
    animation_listing listing;
    failure why;
    const bool is_read = search.run(found, stop, why);
    listing.found = search.foundCount();
    listing.is_stopped = stop.stop_requested();
    if (!is_read)
    {
        tell(log, describe(why));
        listing.said = notice{"Error!", "Error reading .pack files. Are they being used by another program?"};
        return listing;
    }
    tell(log, "Number of animations found " + std::to_string(listing.found));
    if (!listing.is_stopped)
        tell(log, "Skeletopn + Animation find+load SUCCESSFUL!");
    return listing;
}

compatible_listing listCompatible(const path_tree& tree, std::string_view skeleton_id, const found_port& found,
                                  const std::stop_token& stop)
{
    piecewise_search search(tree, skeleton_id, search_rule::exportable);
    failure ignored; // memory: what was found so far is listed
    const bool is_through = search.run(found, stop, ignored);
    return {search.foundCount(), search.unreadableCount(), !is_through || stop.stop_requested()};
}

std::optional<std::uint32_t> readFrameCount(const pack_file_node& entry)
{
    constexpr std::size_t enough = std::size_t{32} << 10; // for 256 bones with their names, maps and still values
    memory_file start(enough);
    std::size_t count = 0;
    failure why;
    if (!readEntryStart(entry, start.mutableBytes(), count, why))
        return std::nullopt;
    anim_file file;
    file.openFromMemory(memory_file(start.bytes().first(count)), std::string());
    if (!file.loadTemplate({}, why))
        return std::nullopt;
    return file.data().frame_count;
}

} // namespace korvane
