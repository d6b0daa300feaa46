#include "Korvane/jobs/needs_job.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"

#include <algorithm>
#include <deque>
#include <unordered_set>
#include <utility>

namespace korvane
{

namespace
{

class needs_finder
{
public:
    needs_finder(const game_data& game, const std::vector<game_path>& files, needs_result& result)
        : m_game(game)
        , m_result(result)
    {
        for (const game_path& file : files)
            m_met.insert(normalInternalPath(file.internalPath()));
    }

    bool begin(const game_path& file, failure& why)
    {
        const game_file found = file.isInternal() ? m_game.find(file.internalPath()) : game_file(file.diskPath());
        memory_file ignored;
        if (!found)
            return m_game.read(file, ignored, why); // which says why not
        std::vector<file_use> uses;
        if (!readUses(found, file.isInternal() ? file.internalPath() : file.text(), uses, why))
            return false;
        follow(file, uses);
        return true;
    }

    bool step()
    {
        if (m_waiting.empty())
            return false;
        const needed_file next = std::move(m_waiting.front());
        m_waiting.pop_front();
        std::vector<file_use> uses;
        failure why;
        if (readUses(next.found, next.path, uses, why))
            follow(next.found.entry() != nullptr ? game_path::ofInternal(next.path) : game_path(next.found.diskPath()),
                   uses);
        else
            m_result.damaged.push_back(std::move(why));
        return true;
    }

    std::size_t waiting() const { return m_waiting.size(); }

private:
    bool readUses(const game_file& file, std::string_view path, std::vector<file_use>& uses, failure& why)
    {
        if (file.entry() != nullptr)
            return m_reader.read(*file.entry(), uses, why);
        memory_file bytes;
        if (!file.read(bytes, why))
            return false;
        if (use_reader::read(bytes.bytes(), path, uses, why))
            return true;
        why.path = file.diskPath();
        return false;
    }

    void follow(const game_path& from, const std::vector<file_use>& uses)
    {
        for (const file_use& use : uses)
        {
            needed_file needed{use.path, use.kind, {}, from.text()};
            const bool is_skeleton = use.kind == use_kind::skeleton;
            needed.found = is_skeleton ? m_game.findSkeleton(use.path, from) : m_game.findAround(use.path, from);
            if (is_skeleton)
                needed.path = needed.found.entry() != nullptr ? std::string(needed.found.entry()->internalPath())
                                                              : "animations\\skeletons\\" + use.path + ".anim";
            if (!m_met.insert(needed.path).second)
                continue;
            m_result.files.push_back(needed);
            if (needed.found && (use.kind == use_kind::model || use.kind == use_kind::definition))
                m_waiting.push_back(std::move(needed));
        }
    }

    const game_data& m_game;
    needs_result& m_result;
    use_reader m_reader;
    std::unordered_set<std::string> m_met;
    std::deque<needed_file> m_waiting;
};

} // namespace

bool needs_result::isWhole() const
{
    return damaged.empty() && std::all_of(files.begin(), files.end(),
                                          [](const needed_file& each) { return static_cast<bool>(each.found); });
}

bool findNeeds(const game_data& game, const std::vector<game_path>& files, const work_port& work, needs_result& result,
               failure& why)
{
    result = {};
    needs_finder finder(game, files, result);
    for (const game_path& file : files)
    {
        if (work.isStopped())
            break;
        if (!finder.begin(file, why))
            return false;
    }
    std::size_t done = 0;
    while (!work.isStopped() && finder.step())
    {
        ++done;
        work.report(done, done + finder.waiting(), result.files.back().path);
    }
    std::sort(result.files.begin(), result.files.end(),
              [](const needed_file& left, const needed_file& right) { return left.path < right.path; });
    return true;
}

} // namespace korvane
