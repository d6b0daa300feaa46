#include "Korvane/archives/archive_indexing.h"

#include "EASY_GUI/services/parallel.h"
#include "Korvane/archives/pack_file.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <new>
#include <stdexcept>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint64_t worth_a_reader = std::uint64_t{1} << 20; // bytes of index
constexpr std::size_t most_reserved = std::size_t{4} << 20;      // files: a header may claim what it has not

// Runs the step; false, and why in the listing, when the archive is not for the tree.
template <typename step_function>
bool succeeds(archive_listing& listing, const step_function& step)
{
    failure why;
    try
    {
        if (step(why))
            return true;
    }
    catch (const std::bad_alloc&)
    {
        why = {failure_kind::unreadable, "there is not enough memory for its index", listing.path, 0, ""};
    }
    catch (const std::exception& unknown_format)
    {
        why = {failure_kind::unsupported, unknown_format.what(), listing.path, 0, "magic"};
    }
    listing.damage = describe(why);
    listing.is_certain = why.kind != failure_kind::unreadable && why.kind != failure_kind::not_found;
    return false;
}

class archive_indexing
{
public:
    archive_indexing(const std::vector<std::string>& paths, const work_port& work, indexed_archives& indexed)
        : m_work(work)
        , m_tree(*indexed.tree)
        , m_listings(indexed.archives)
        , m_is_usable(paths.size())
        , m_is_read(paths.size())
        , m_range(paths.size())
    {
        for (const std::string& path : paths)
        {
            m_listings.emplace_back().path = path;
            m_archives.emplace_back(m_tree);
        }
    }

    // The archives that can be opened say how large the tree becomes; then their indexes are read and entered.
    bool run()
    {
        constexpr std::size_t worth_an_opener = 16;
        parallelFor(m_archives.size(), threadsFor(m_archives.size() / worth_an_opener), [this](std::size_t i) {
            if (!m_work.isStopped())
                open(i);
        });
        std::uint64_t index_bytes = 0;
        std::size_t files = 0;
        for (std::size_t i = 0; i < m_archives.size(); ++i)
            if (m_is_usable[i] != 0)
            {
                index_bytes += m_archives[i].header().index_size;
                files = std::min(files + m_archives[i].header().file_count, most_reserved);
            }
        const std::size_t threads = threadsFor(index_bytes / worth_a_reader);
        std::vector<arena*> memories = {&m_tree.memory()};
        while (memories.size() < threads)
            memories.push_back(&m_tree.addMemory());
        runOnThreads(threads, [&](std::size_t thread) {
            if (thread > 0)
                return readAhead(*memories[thread]);
            try
            {
                m_tree.reserve(files);
                enterAll(*memories.front());
            }
            catch (...)
            {
                m_range.close();
                throw;
            }
        });
        return !m_work.isStopped();
    }

private:
    void open(std::size_t i)
    {
        archive_listing& listing = m_listings[i];
        pack_file& archive = m_archives[i];
        m_is_usable[i] = succeeds(listing, [&](failure& why) { return archive.openHeader(listing.path, why); });
        listing.size = archive.file().size();
        listing.modification_time = archive.file().modificationTime();
    }

    void read(std::size_t i, arena& memory)
    {
        if (m_is_usable[i] != 0)
            m_is_usable[i] =
                succeeds(m_listings[i], [&](failure& why) { return m_archives[i].readIndex(memory, why); });
        const std::lock_guard lock(m_guard);
        m_is_read[i] = 1;
        m_changed.notify_one();
    }

    void readAhead(arena& memory)
    {
        for (std::size_t i = 0, end = 0; !m_work.isStopped() && m_range.take(i, end);)
            read(i, memory);
    }

    // What is read is entered first; while nothing is, this thread reads as well.
    void enterAll(arena& memory)
    {
        for (std::size_t next = 0; next < m_archives.size() && !m_work.isStopped();)
        {
            std::size_t i = 0, end = 0;
            if (!isRead(next) && m_range.take(i, end))
            {
                read(i, memory);
                continue;
            }
            waitFor(next); // for what another thread is reading
            m_work.report(next, m_archives.size(), m_listings[next].path);
            if (m_is_usable[next] != 0)
            {
                m_listings[next].left_out = m_archives[next].leftOut();
                m_archives[next].enter();
            }
            ++next;
        }
    }

    bool isRead(std::size_t i)
    {
        const std::lock_guard lock(m_guard);
        return m_is_read[i] != 0;
    }
    void waitFor(std::size_t i)
    {
        std::unique_lock lock(m_guard);
        m_changed.wait(lock, [&] { return m_is_read[i] != 0; });
    }

    const work_port& m_work;
    path_tree& m_tree;
    std::vector<archive_listing>& m_listings;
    std::vector<pack_file> m_archives;
    std::vector<char> m_is_usable; // opened, and after it was read: for the tree
    std::mutex m_guard;            // of the next two
    std::vector<char> m_is_read;
    std::condition_variable m_changed;
    shared_range m_range;
};

} // namespace

bool indexArchives(const std::vector<std::string>& paths, const work_port& work, indexed_archives& indexed)
{
    indexed.tree = std::make_shared<path_tree>();
    indexed.archives.clear();
    return archive_indexing(paths, work, indexed).run();
}

} // namespace korvane
