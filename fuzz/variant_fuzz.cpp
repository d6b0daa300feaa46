// Reads any bytes as a variant mesh definition. Behind a line "====" follow further definitions, which stand in the
// archives by the names 1, 2, ...: so references, circles and limits are met as well. What opens must hold together.

#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/variant_mesh_def.h"
#include "Korvane/game/game_data.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/variant_checks.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

namespace
{

using namespace korvane;

constexpr std::string_view separator = "\n====\n";

// The archives' tree; null when there are no entries.
std::shared_ptr<path_tree> treeOf(const test::test_pack& pack)
{
    static const std::string path =
        (std::filesystem::temp_directory_path() / ("korvane_variant_fuzz_" + std::to_string(getpid()))).string();
    if (pack.entries.empty())
        return nullptr;
    test::writeBytes(path, pack.bytes());
    const auto tree = std::make_shared<path_tree>();
    pack_file file(*tree);
    failure why;
    if (!file.open(path, why))
        std::abort();
    std::filesystem::remove(path); // it stays open
    file.enter();
    return tree;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view all(reinterpret_cast<const char*>(data), size);
    test::test_pack pack;
    const std::size_t end = std::min(all.find(separator), all.size());
    for (std::size_t at = end; at < all.size();)
    {
        at += separator.size();
        const std::size_t next = std::min(all.find(separator, at), all.size());
        pack.entries.push_back({std::to_string(pack.entries.size() + 1), std::string(all.substr(at, next - at)), 0});
        at = next;
    }
    const game_data game(treeOf(pack));

    variant_mesh_def definition;
    failure why;
    if (!definition.openFromMemory(std::as_bytes(std::span(data, end)), "input", why, game.definitionReader()))
    {
        if (!why || why.offset > end)
            std::abort();
        return 0;
    }
    if (const std::string fault = test::faultOf(definition); !fault.empty())
    {
        std::fprintf(stderr, "%s\n", fault.c_str());
        std::abort();
    }
    return 0;
}
