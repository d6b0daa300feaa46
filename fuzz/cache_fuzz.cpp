// Reads any bytes as the tables of a cache, whose checksum is thought to be right: whatever is accepted must be a tree
// that can be walked, searched and read without harm. The same bytes as a whole cache must be refused or be a cache.

#include "Korvane/archives/pack_cache.h"
#include "Korvane/archives/path_search.h"
#include "Korvane/archives/tree_image.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace
{

using namespace korvane;

constexpr std::size_t header_size =
    7; // counts of archives, files, nodes, slots, bytes of text (u16), files in the first

std::size_t walk(const path_tree& tree, const path_node& folder)
{
    std::size_t count = 1;
    for (const path_node* child : tree.children(folder))
        count += walk(tree, *child);
    return count;
}

void useTree(const std::shared_ptr<path_tree>& tree, const tree_image_counts& counts)
{
    if (walk(*tree, tree->root()) != counts.nodes)
        std::abort();
    for (const auto& files : tree->entries())
        for (const pack_file_node& file : files)
            static_cast<void>(tree->find(file.internalPath()));
    static_cast<void>(tree->find("a\\b"));
    path_search search(tree);
    search.find({"a"});
    while (search.advance(100))
    {
    }
}

void readImage(std::span<const std::byte> data)
{
    if (data.size() < header_size)
        return;
    const auto at = [&data](std::size_t place) { return std::to_integer<std::uint32_t>(data[place]); };
    tree_image_counts counts;
    counts.entries = at(1);
    counts.nodes = at(2);
    counts.slots = at(3);
    counts.text = at(4) | at(5) << 8;
    std::vector<std::unique_ptr<archive_record>> archives;
    for (std::uint32_t i = 0; i < at(0) % 4; ++i)
    {
        archives.push_back(std::make_unique<archive_record>());
        archives.back()->file_count = i == 0 ? std::min(at(6), counts.entries) : 0;
    }
    data = data.subspan(header_size);

    auto tree = std::make_shared<path_tree>();
    const std::span<char> text =
        tree->memory().allocate<char>(counts.text + path_tree::readable_behind_paths).first(counts.text);
    std::fill(text.begin(), text.end(), 'a');
    const auto next = [&data](std::size_t size) {
        const std::span<const std::byte> block = data.first(std::min(size, data.size()));
        data = data.subspan(block.size());
        return block;
    };
    failure why;
    if (tree_image_reader(*tree, counts, text, next).read(std::move(archives), why))
        useTree(tree, counts);
    else if (!why)
        std::abort();
}

void readCache(std::span<const std::byte> data)
{
    static const std::string path =
        (std::filesystem::temp_directory_path() / ("korvane_cache_fuzz_" + std::to_string(getpid()))).string();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
    indexed_archives indexed;
    failure why;
    if (!pack_cache(path).load({path}, indexed, why) && !why)
        std::abort();
    std::filesystem::remove(path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::span<const std::byte> data = std::as_bytes(std::span(bytes, size));
    readImage(data);
    readCache(data);
    return 0;
}
