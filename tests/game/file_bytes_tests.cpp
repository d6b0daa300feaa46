#include "Korvane/archives/pack_file.h"
#include "Korvane/game/file_bytes.h"
#include "Korvane/game/game_data.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <zstd.h>

namespace korvane
{
namespace
{

constexpr std::size_t step = std::size_t{1} << 20; // of the search

std::string packed(const std::string& text)
{
    std::string data(ZSTD_compressBound(text.size()), '\0');
    data.resize(ZSTD_compress(data.data(), data.size(), text.data(), text.size(), 1));
    test::bytes_out out;
    out.u32(static_cast<std::uint32_t>(text.size()));
    out.text(data);
    return out.str();
}

std::optional<std::uint64_t> find(const file_bytes& in, const std::string& text, std::uint64_t from)
{
    return findBytes(in, std::as_bytes(std::span(text)), from, {});
}

TEST(file_bytes, areTheSameOnTheDiskInAnArchiveAndUnpackedAndFoundAcrossThePiecesOfTheSearch)
{
    std::string text(2 * step + 10, '.');
    const std::uint64_t places[] = {0, step - 1, step + 2,
                                    2 * step + 7}; // the second is in two pieces, the last at the end
    for (const std::uint64_t place : places)
        text.replace(static_cast<std::size_t>(place), 3, "abc");
    test::test_pack pack;
    pack.magic = "PFH5";
    pack.entries = {{"plain.bin", text, 0}, {"packed.bin", packed(text), 1}};
    const test::temporary_folder folder;
    test::writeBytes(folder.file("x.pack"), pack.bytes());
    test::writeBytes(folder.file("disk.bin"), text);
    const auto tree = std::make_shared<path_tree>();
    pack_file archive(*tree);
    failure why;
    ASSERT_TRUE(archive.open(folder.file("x.pack"), why)) << describe(why);
    archive.enter();
    const game_data game(tree);
    for (const game_file& file : {game.find("plain.bin"), game.find("packed.bin"), game_file(folder.file("disk.bin"))})
    {
        file_bytes bytes;
        ASSERT_TRUE(bytes.open(file, why)) << describe(why);
        ASSERT_EQ(bytes.size(), text.size());
        std::vector<std::byte> target(7);
        EXPECT_TRUE(bytes.readAt(text.size() - 7, target));
        EXPECT_EQ(std::to_integer<char>(target[4]), 'a');
        EXPECT_FALSE(bytes.readAt(text.size() - 6, target));
        EXPECT_FALSE(bytes.readAt(~std::uint64_t{0}, target));
        EXPECT_TRUE(bytes.readAt(text.size(), {}));
        std::uint64_t from = 0;
        for (const std::uint64_t place : places)
        {
            EXPECT_EQ(find(bytes, "abc", from), place);
            from = place + 1;
        }
        EXPECT_FALSE(find(bytes, "abc", from));
        EXPECT_FALSE(find(bytes, "abc", text.size() + 1));
        EXPECT_FALSE(find(bytes, "", 0));
    }
    file_bytes nothing;
    EXPECT_FALSE(nothing.open(game.find("gone.bin"), why));
}

} // namespace
} // namespace korvane
