#pragma once

// The search behind a browser of the archives: all files of a tree whose path has every word of a text, in the order of
// the paths. It works piece by piece, so that a window shows the first rows at once and stays alive, and it narrows
// what it has when somebody types on. One thread at a time, which takes the other processors along.

#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// What is looked for. Everything that is given has to fit.
struct path_query
{
    // Parts of paths in any case, with '\' or '/', blanks between them. A word with '*' or '?' is a pattern that some
    // part of the path has to fit ("unit_??_*.dds").
    std::string text;
    std::string extension = {};                 // without the dot, lower case; empty: any
    const archive_record* po_archive = nullptr; // only files that count in it; null: any

    bool isEmpty() const
    {
        return text.find_first_not_of(' ') == std::string::npos && extension.empty() && !po_archive;
    }
};

class path_search
{
public:
    // Puts the tree's files in order: a fraction of a second for a million.
    explicit path_search(std::shared_ptr<const path_tree> tree);

    // An empty query finds all files.
    void find(const path_query& query);
    // Looks at so many further files. False when there are none left.
    bool advance(std::size_t file_count);
    bool isDone() const { return m_former_next == m_former.size() && m_next == m_files.size(); }

    // Found so far, in the order of their paths, from a place on.
    std::size_t hitCount() const { return m_hits.size(); }
    std::vector<const pack_file_node*> hits(std::size_t first = 0) const;
    std::size_t fileCount() const { return m_files.size(); }
    std::size_t lookedAt() const { return m_next; }

private:
    // What stands between two '*' of a word. Its longest run without '?' is looked for, and then the rest is compared.
    struct piece
    {
        std::string text; // as paths are spelled
        std::size_t run_at = 0, run_size = 0;
        friend bool operator==(const piece&, const piece&) = default;
    };
    using word = std::vector<piece>; // one behind the other in the path

    static word wordOf(std::string_view text);
    static bool fits(std::string_view path, const word& wanted);
    static bool isWithin(const word& old, const word& fresh);

    bool isHit(const path_node& node) const;
    using number_list = std::vector<std::uint32_t>; // of nodes of the tree

    void look(std::span<const std::uint32_t> files, number_list& hits) const;

    std::shared_ptr<const path_tree> m_po_tree;
    number_list m_files;
    number_list m_hits;
    number_list m_former; // hits of a wider query, which are looked at before the other files
    std::size_t m_former_next = 0;
    std::vector<word> m_words;
    path_query m_query;
    std::size_t m_next = 0;
};

} // namespace korvane
