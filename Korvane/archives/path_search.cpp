#include "Korvane/archives/path_search.h"

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

// Sixteen places at a time: only where the text's first and last character stand in their places it is compared.
bool contains(std::string_view path, std::string_view text)
{
    if (text.empty() || text.size() > path.size())
        return text.empty();
    const std::size_t places = path.size() - text.size() + 1;
    const auto first = static_cast<unsigned char>(text.front());
    const auto last = static_cast<unsigned char>(text.back());
    for (std::size_t at = 0; at < places; at += step)
    {
        const auto alike = reinterpret_cast<path_chunk_words>((chunkAt(path.data() + at) == first) &
                                                              (chunkAt(path.data() + at + text.size() - 1) == last));
        if ((alike[0] | alike[1]) == 0)
            continue;
        const std::size_t end = std::min(places, at + step);
        for (std::size_t place = at; place < end; ++place)
            if (std::memcmp(path.data() + place, text.data(), text.size()) == 0)
                return true;
    }
    return false;
}

} // namespace

path_search::path_search(std::shared_ptr<const path_tree> tree) : m_po_tree(std::move(tree))
{
    if (m_po_tree)
        m_files = m_po_tree->files();
}

void path_search::find(std::string_view text)
{
    std::string wanted = toLower(text);
    std::replace(wanted.begin(), wanted.end(), '/', '\\');
    const bool is_narrower = wanted.find(m_text) != std::string::npos;
    m_text = std::move(wanted);
    if (is_narrower)
    {
        std::erase_if(m_hits, [this](const pack_file_node* file) { return !contains(file->internalPath(), m_text); });
        return;
    }
    m_hits.clear();
    m_next = 0;
}

bool path_search::advance(std::size_t file_count)
{
    const std::size_t end = m_next + std::min(file_count, m_files.size() - m_next);
    for (; m_next < end; ++m_next)
    {
        // The text of files that stand further on is on its way meanwhile: their order is not that of memory.
        constexpr std::size_t ahead = 8;
        if (m_next + ahead < m_files.size())
            __builtin_prefetch(m_files[m_next + ahead]->internalPath().data());
        if (contains(m_files[m_next]->internalPath(), m_text))
            m_hits.push_back(m_files[m_next]);
    }
    return !isDone();
}

} // namespace korvane
