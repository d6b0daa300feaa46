// Reads any bytes as an archive. Whatever is entered into the tree must be found again by its path and be readable.

#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace
{

using namespace korvane;

void checkTree(const path_tree& tree)
{
    for (const std::span<const pack_file_node>& files : tree.entries())
        for (const pack_file_node& file : files)
        {
            // A '/' in a stored path is no separator, but is one in a lookup.
            const bool can_be_found = file.internalPath().find('/') == std::string_view::npos;
            const path_node* const node = tree.find(file.internalPath());
            if (can_be_found && (!node || !node->file() || node->path() != file.internalPath()))
                std::abort();
            memory_file bytes;
            failure why;
            if (!readEntry(file, bytes, why) && file.compression() == 0)
                std::abort();
        }
    if (tree.files().size() > tree.entryCount())
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string path =
        (std::filesystem::temp_directory_path() / ("korvane_pack_fuzz_" + std::to_string(getpid()))).string();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    path_tree tree;
    pack_file archive(tree);
    failure why;
    try
    {
        if (archive.open(path, why))
        {
            archive.enter();
            checkTree(tree);
        }
        else if (!why)
            std::abort();
    }
    catch (const std::runtime_error&) // an unknown magic
    {
    }
    std::filesystem::remove(path);
    return 0;
}
