#include "Korvane/archives/path_search.h"

#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/path_chunk.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t step = sizeof(path_chunk);

// Where the text stands first, from a place on. Sixteen places at a time: only where the text's first and last
// character stand in their places it is compared.
std::size_t findFrom(std::string_view path, std::size_t from, std::string_view text)
{
    if (text.empty() || from > path.size() || text.size() > path.size() - from)
        return text.empty() && from <= path.size() ? from : std::string_view::npos;
    const std::size_t places = path.size() - text.size() + 1;
    const auto first = static_cast<unsigned char>(text.front());
    const auto last = static_cast<unsigned char>(text.back());
    for (std::size_t at = from; at < places; at += step)
    {
        const auto alike = reinterpret_cast<path_chunk_words>((chunkAt(path.data() + at) == first) &
                                                              (chunkAt(path.data() + at + text.size() - 1) == last));
        if ((alike[0] | alike[1]) == 0)
            continue;
        const std::size_t end = std::min(places, at + step);
        for (std::size_t place = at; place < end; ++place)
            if (std::memcmp(path.data() + place, text.data(), text.size()) == 0)
                return place;
    }
    return std::string_view::npos;
}

bool isAlike(std::string_view path, std::string_view text) // of one size
{
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != '?' && text[i] != path[i])
            return false;
    return true;
}

} // namespace

path_search::path_search(std::shared_ptr<const path_tree> tree) : m_po_tree(std::move(tree))
{
    if (m_po_tree)
        m_files = m_po_tree->fileNumbers();
}

void path_search::find(const path_query& query)
{
    const std::vector<word> former = std::exchange(m_words, {});
    std::string text = toLower(query.text);
    std::replace(text.begin(), text.end(), '/', '\\');
    for (std::size_t at = 0; (at = text.find_first_not_of(' ', at)) != std::string::npos;)
    {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        m_words.push_back(wordOf(std::string_view(text).substr(at, end - at)));
        at = end;
    }
    // Every former word is in one of the new ones, and nothing else was loosened.
    const bool is_narrower = (m_query.extension.empty() || m_query.extension == query.extension) &&
                             (m_query.po_archive == nullptr || m_query.po_archive == query.po_archive) &&
                             std::all_of(former.begin(), former.end(), [this](const word& old) {
                                 return std::any_of(m_words.begin(), m_words.end(),
                                                    [&old](const word& fresh) { return isWithin(old, fresh); });
                             });
    m_query = query;
    if (is_narrower)
    {
        // Those that were not looked at again since stand behind those that were.
        m_hits.insert(m_hits.end(), m_former.begin() + static_cast<std::ptrdiff_t>(m_former_next), m_former.end());
        m_former = std::exchange(m_hits, {});
    }
    else
    {
        m_former.clear();
        m_hits.clear();
        m_next = 0;
    }
    m_former_next = 0;
}

bool path_search::isHit(const path_node& node) const
{
    if (m_query.po_archive != nullptr && &node.file()->archive() != m_query.po_archive)
        return false;
    const std::string_view path = node.path();
    if (!m_query.extension.empty() && node.file()->extension() != m_query.extension)
        return false;
    return std::all_of(m_words.begin(), m_words.end(), [path](const word& wanted) { return fits(path, wanted); });
}

path_search::word path_search::wordOf(std::string_view text)
{
    word pieces;
    for (std::size_t at = 0; at <= text.size();)
    {
        const std::size_t end = std::min(text.find('*', at), text.size());
        piece made;
        made.text = text.substr(at, end - at);
        for (std::size_t run = 0; run < made.text.size();)
        {
            const std::size_t run_end = std::min(made.text.find('?', run), made.text.size());
            if (run_end - run > made.run_size)
            {
                made.run_at = run;
                made.run_size = run_end - run;
            }
            run = run_end + 1;
        }
        if (!made.text.empty())
            pieces.push_back(std::move(made));
        at = end + 1;
    }
    return pieces;
}

// Each piece as far left as possible: what fits behind it then fits behind any other place, too.
bool path_search::fits(std::string_view path, const word& wanted)
{
    std::size_t at = 0;
    for (const piece& each : wanted)
    {
        const std::string_view run = std::string_view(each.text).substr(each.run_at, each.run_size);
        for (;; ++at)
        {
            const std::size_t found = findFrom(path, at + each.run_at, run);
            if (found == std::string_view::npos || each.text.size() > path.size() - (found - each.run_at))
                return false;
            at = found - each.run_at;
            if (each.run_size == each.text.size() || isAlike(path.substr(at, each.text.size()), each.text))
                break;
        }
        at += each.text.size();
    }
    return true;
}

// Whatever fits the fresh word fits the old one.
bool path_search::isWithin(const word& old, const word& fresh)
{
    const auto isText = [](const word& of) { return of.size() == 1 && of[0].run_size == of[0].text.size(); };
    return old == fresh || old.empty() ||
           (isText(old) && std::any_of(fresh.begin(), fresh.end(), [&old](const piece& each) {
                return each.text.find(old[0].text) != std::string::npos;
            }));
}

bool path_search::advance(std::size_t file_count)
{
    constexpr std::size_t worth_a_thread = 10000;
    const bool is_former = m_former_next < m_former.size();
    std::size_t& next = is_former ? m_former_next : m_next;
    const std::span<const std::uint32_t> rest =
        std::span<const std::uint32_t>(is_former ? m_former : m_files).subspan(next);
    const std::span<const std::uint32_t> files = rest.first(std::min(file_count, rest.size()));
    const std::size_t threads = threadsFor(files.size() / worth_a_thread);
    std::vector<number_list> found(threads);
    const std::size_t share = (files.size() + threads - 1) / threads;
    parallelFor(threads, threads, [&](std::size_t i) {
        const std::span<const std::uint32_t> behind = files.subspan(std::min(i * share, files.size()));
        look(behind.first(std::min(share, behind.size())), found[i]);
    });
    for (const number_list& each : found)
        m_hits.insert(m_hits.end(), each.begin(), each.end());
    next += files.size();
    if (is_former && m_former_next == m_former.size())
        m_former = {};
    m_former_next = m_former.empty() ? 0 : m_former_next;
    return !isDone();
}

void path_search::look(std::span<const std::uint32_t> files, number_list& hits) const
{
    for (std::size_t i = 0; i < files.size(); ++i)
    {
        // The nodes and texts of files that stand further on are on their way meanwhile: their order is not that of
        // memory.
        constexpr std::size_t ahead = 8;
        if (i + 2 * ahead < files.size())
            __builtin_prefetch(&m_po_tree->node(files[i + 2 * ahead]));
        if (i + ahead < files.size())
            __builtin_prefetch(m_po_tree->node(files[i + ahead]).path().data());
        if (isHit(m_po_tree->node(files[i])))
            hits.push_back(files[i]);
    }
}

std::vector<const pack_file_node*> path_search::hits(std::size_t first) const
{
    std::vector<const pack_file_node*> files;
    files.reserve(m_hits.size() - first);
    for (const std::uint32_t number : std::span(m_hits).subspan(first))
        files.push_back(m_po_tree->node(number).file());
    return files;
}

} // namespace korvane
