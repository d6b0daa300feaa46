#include "Korvane/animation/anim_search.h"

#include "EASY_GUI/services/byte_reader.h"
#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/archives/pack_entry.h"

#include <algorithm>
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

// Reads no more than a match needs: start is as long as that.
verdict examine(const pack_file_node& entry, std::string_view skeleton_id, std::span<std::byte> start, failure& why)
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
    return is_match ? verdict::matches : verdict::differs;
}

// Several threads take blocks of candidates; what they found is put in order at the end.
class block_search
{
public:
    block_search(std::span<const pack_file_node* const> candidates, std::string_view skeleton_id,
                 const std::stop_token& stop)
        : m_candidates(candidates)
        , m_skeleton_id(skeleton_id)
        , m_stop(stop)
        , m_blocks(candidates.size(), block_size)
    {
    }

    bool run(entry_list& found, failure& why)
    {
        constexpr std::size_t worth_a_thread = 1024; // candidates
        std::vector<outcome> outcomes(threadsFor(1 + m_candidates.size() / worth_a_thread));
        runOnThreads(outcomes.size(), [&](std::size_t thread) { work(outcomes[thread]); });
        return collect(outcomes, found, why);
    }

private:
    static constexpr std::size_t block_size = 128;
    static constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

    struct outcome
    {
        std::vector<std::size_t> matches;
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
                    const verdict found = examine(*m_candidates[at], m_skeleton_id, start, result.why);
                    if (found == verdict::matches)
                        result.matches.push_back(at);
                    else if (found == verdict::unreadable)
                        return stopAt(at, result);
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
    return block_search(candidates, skeleton_id, stop).run(found, why);
}

animation_listing listAnimations(const path_tree& tree, std::string_view skeleton_id, const found_port& found,
                                 const std::stop_token& stop, const log_port& log)
{
    constexpr std::size_t piece_size = 4096; // worth several threads, and seen a moment later
    tell(log, "seaching for compatible animations");
    const entry_list all = animationCandidates(tree);
    const std::span<const pack_file_node* const> candidates(all);
    animation_listing listing;
    failure why;
    for (std::size_t done = 0; done < candidates.size() && !why && !stop.stop_requested();)
    {
        const auto piece = candidates.subspan(done, std::min(piece_size, candidates.size() - done));
        entry_list more;
        if (findAnimations(piece, skeleton_id, more, why, stop))
            done += piece.size();
        listing.found += more.size();
        found(more, done, candidates.size());
    }
    listing.is_stopped = stop.stop_requested();
    if (why)
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

compatible_search::compatible_search(std::shared_ptr<const path_tree> tree, std::string skeleton_id)
    : m_po_tree(std::move(tree))
    , m_skeleton_id(std::move(skeleton_id))
    , m_candidates(animationCandidates(*m_po_tree))
    , m_start(name_at + m_skeleton_id.size())
{
}

bool compatible_search::step()
{
    if (isStopped() || m_next == m_candidates.size())
        return false;
    const pack_file_node& entry = *m_candidates[m_next++];
    failure why;
    const verdict found = examine(entry, m_skeleton_id, m_start, why);
    m_unreadable_count += found == verdict::unreadable ? 1u : 0u;
    std::string name;
    failure reason;
    if (found == verdict::matches && anim_file::readHeaderName(m_start, name, reason))
        m_matches.push_back({&entry, m_skeleton_id});
    return true;
}

} // namespace korvane
