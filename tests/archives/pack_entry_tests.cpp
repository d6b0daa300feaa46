#include "Korvane/archives/entry_stream.h"
#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <lz4frame.h>
#include <lzma.h>
#include <zstd.h>

#include <string>

namespace korvane
{
namespace
{

std::string contents()
{
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text += "line " + std::to_string(i * i) + "\n";
    return text;
}

std::string withLength(std::size_t length, const std::string& data)
{
    test::bytes_out out;
    out.u32(static_cast<std::uint32_t>(length));
    out.text(data);
    return out.str();
}

std::string zstd(const std::string& text)
{
    std::string data(ZSTD_compressBound(text.size()), '\0');
    data.resize(ZSTD_compress(data.data(), data.size(), text.data(), text.size(), 3));
    return data;
}

std::string lz4(const std::string& text)
{
    std::string data(LZ4F_compressFrameBound(text.size(), nullptr), '\0');
    data.resize(LZ4F_compressFrame(data.data(), data.size(), text.data(), text.size(), nullptr));
    return data;
}

std::string lzma1(const std::string& text)
{
    lzma_options_lzma options;
    lzma_lzma_preset(&options, 6);
    const lzma_filter filters[2] = {{LZMA_FILTER_LZMA1, &options}, {LZMA_VLI_UNKNOWN, nullptr}};
    std::string data(5 + text.size() * 2 + 1024, '\0');
    auto* const bytes = reinterpret_cast<std::uint8_t*>(data.data());
    lzma_properties_encode(&filters[0], bytes);
    std::size_t position = 5;
    lzma_raw_buffer_encode(filters, nullptr, reinterpret_cast<const std::uint8_t*>(text.data()), text.size(), bytes,
                           &position, data.size());
    data.resize(position);
    return data;
}

bool unpack(const std::string& stored, std::string& text, failure& why)
{
    memory_file bytes;
    if (!unpackEntry(std::as_bytes(std::span(stored)), bytes, why))
        return false;
    text = bytes.text();
    return true;
}

void enterPack(path_tree& tree, const test::test_pack& pack, const std::string& path)
{
    test::writeBytes(path, pack.bytes());
    pack_file archive(tree);
    failure why;
    ASSERT_TRUE(archive.open(path, why)) << describe(why);
    archive.enter();
}

} // namespace

TEST(pack_entry, everyCompressionGivesTheBytesBack)
{
    for (const auto& compress : {zstd, lz4, lzma1})
        for (const std::string& text : {contents(), std::string("x"), std::string(1 << 20, 'y')})
        {
            std::string unpacked;
            failure why;
            ASSERT_TRUE(unpack(withLength(text.size(), compress(text)), unpacked, why)) << describe(why);
            EXPECT_EQ(unpacked, text);
        }
}

TEST(pack_entry, aLengthThatDoesNotMatchIsAnError)
{
    const std::string text = contents();
    for (const auto& compress : {zstd, lz4})
        for (const std::size_t length : {text.size() - 1, text.size() + 1, std::size_t{0}})
        {
            std::string unpacked;
            failure why;
            EXPECT_FALSE(unpack(withLength(length, compress(text)), unpacked, why)) << length;
            EXPECT_EQ(why.field, "compressed data");
        }
    std::string unpacked;
    failure more, cap;
    EXPECT_FALSE(unpack(withLength(text.size() + 1, lzma1(text)), unpacked, more));
    EXPECT_FALSE(unpack(withLength((std::size_t{1} << 30) + 1, zstd(text)), unpacked, cap));
    EXPECT_EQ(cap.field, "unpacked length");
}

TEST(pack_entry, aLengthThatSoFewBytesCannotGiveIsRefused)
{
    // What compresses best stays below what is refused.
    const std::string zeros(std::size_t{32} << 20, '\0');
    const std::size_t claimed = std::size_t{1} << 30;
    for (const auto& compress : {zstd, lz4, lzma1})
    {
        const std::string data = compress(zeros);
        std::string unpacked;
        failure why, small;
        ASSERT_TRUE(unpack(withLength(zeros.size(), data), unpacked, why)) << describe(why);
        EXPECT_TRUE(unpacked == zeros);
        EXPECT_FALSE(unpack(withLength(claimed, compress("x")), unpacked, small));
        EXPECT_EQ(small.field, "unpacked length");
    }
}

TEST(pack_entry, aCallersLimitHolds)
{
    const std::string text = contents();
    const std::string stored = withLength(text.size(), zstd(text));
    memory_file bytes;
    failure why;
    EXPECT_TRUE(unpackEntry(std::as_bytes(std::span(stored)), bytes, why, text.size()));
    EXPECT_FALSE(unpackEntry(std::as_bytes(std::span(stored)), bytes, why, text.size() - 1));
    EXPECT_EQ(why.field, "unpacked length");
}

TEST(pack_entry, damagedDataIsAnErrorOrTheRightNumberOfBytes)
{
    const std::string text = contents().substr(0, 600);
    for (const auto& compress : {zstd, lz4, lzma1})
    {
        const std::string stored = withLength(text.size(), compress(text));
        for (std::size_t size = 0; size < stored.size(); size += 3)
        {
            std::string unpacked;
            failure why;
            const bool is_good = unpack(stored.substr(0, size), unpacked, why); // an end mark may be cut off
            EXPECT_TRUE(is_good ? unpacked.size() == text.size() : !why.what.empty());
        }
        for (std::size_t at = 4; at < stored.size(); ++at)
        {
            std::string patched = stored;
            patched[at] = static_cast<char>(patched[at] ^ 0x55);
            std::string unpacked;
            failure why;
            const bool is_good = unpack(patched, unpacked, why);
            EXPECT_TRUE(is_good ? unpacked.size() == text.size() : !why.what.empty());
        }
    }
}

TEST(entry_stream, givesWhatTheWholeReadGivesAndFailsWhereItFails)
{
    std::string text; // several pieces, partly noise
    for (std::uint64_t random = 1; text.size() < 2300000; random = random * 6364136223846793005u + 1442695040888963407u)
        text += std::string(random >> 61, static_cast<char>(random >> 50));
    test::test_pack pack;
    pack.magic = "PFH5";
    const auto add = [&pack](const std::string& data, unsigned compression) {
        pack.entries.push_back({std::to_string(pack.entries.size()), data, compression});
    };
    add(text, 0);
    add("", 0);
    for (const auto& compress : {zstd, lz4, lzma1})
    {
        const std::string packed = compress(text);
        for (const std::size_t length : {text.size(), text.size() - 1, text.size() + 1, text.size() - 1500000})
            add(withLength(length, packed), 1);
        for (const std::size_t size : {packed.size() - 1, packed.size() / 2, std::size_t{7}})
            add(withLength(text.size(), packed.substr(0, size)), 1);
        add(withLength(0, compress("")), 1);
    }
    add("abc", 1);
    const test::temporary_folder folder;
    path_tree tree;
    enterPack(tree, pack, folder.file("x.pack"));
    failure why;
    for (const pack_file_node& entry : tree.entries().front())
    {
        memory_file whole;
        failure expected, actual;
        const bool is_good = readEntry(entry, whole, expected);
        entry_stream stream(entry);
        std::string all;
        std::span<const std::byte> piece;
        bool goes_on = true;
        while (goes_on && stream.next(piece, actual))
        {
            all.append(reinterpret_cast<const char*>(piece.data()), piece.size());
            goes_on = !piece.empty();
        }
        EXPECT_EQ(!goes_on, is_good) << entry.internalPath() << describe(expected) << describe(actual);
        EXPECT_EQ(describe(actual), describe(expected));
        EXPECT_TRUE(!is_good || all == whole.text()) << entry.internalPath();
    }
}

TEST(pack_entry, anArchiveThatGotShorterWhileItIsOpenIsSaidHoweverItIsRead)
{
    test::test_pack pack;
    pack.magic = "PFH5";
    pack.entries = {{"plain", contents(), 0}, {"packed", withLength(contents().size(), zstd(contents())), 1}};
    const test::temporary_folder folder;
    const std::string path = folder.file("x.pack");
    path_tree tree;
    enterPack(tree, pack, path);
    std::error_code error;
    std::filesystem::resize_file(toPath(path), 40, error);
    const bool is_whole = error.operator bool(); // where nobody may change an open file
    for (const pack_file_node& entry : tree.entries().front())
    {
        memory_file whole;
        std::vector<std::byte> start(100);
        std::size_t count = 0;
        entry_stream stream(entry);
        std::span<const std::byte> piece;
        failure of_whole, of_start, of_stream;
        EXPECT_EQ(readEntry(entry, whole, of_whole), is_whole);
        EXPECT_EQ(readEntryStart(entry, start, count, of_start), is_whole);
        EXPECT_EQ(stream.next(piece, of_stream), is_whole);
        for (const failure& why : {of_whole, of_start, of_stream})
            EXPECT_TRUE(is_whole || (why.kind == failure_kind::unreadable && why.offset == entry.offset() &&
                                     why.path.find("x.pack") != std::string::npos))
                << describe(why);
    }
}

TEST(entry_start, isTheBeginningOfTheWholeEntry)
{
    const std::string text = contents();
    std::string noise; // compresses to nearly its own size, so that more than one piece of it is read
    for (std::uint64_t random = 1; noise.size() < 60000; random = random * 6364136223846793005u + 1442695040888963407u)
        noise += static_cast<char>(random >> 56);
    test::test_pack pack;
    pack.magic = "PFH5";
    for (const std::string& whole : {text, noise, std::string("abc"), std::string()})
    {
        pack.entries.push_back({"plain" + std::to_string(whole.size()), whole, 0});
        for (const auto& compress : {zstd, lz4, lzma1})
            pack.entries.push_back(
                {std::to_string(pack.entries.size()) + "packed", withLength(whole.size(), compress(whole)), 1});
    }
    pack.entries.push_back({"damaged", withLength(1000, zstd(noise).substr(0, 500)), 1});
    pack.entries.push_back({"too short", "abc", 1});
    const test::temporary_folder folder;
    path_tree tree;
    enterPack(tree, pack, folder.file("x.pack"));
    failure why;
    for (const pack_file_node& entry : tree.entries().front())
        for (const std::size_t wanted : {std::size_t{0}, std::size_t{1}, std::size_t{64}, std::size_t{20000}})
        {
            std::vector<std::byte> start(wanted);
            std::size_t count = 0;
            failure problem;
            memory_file whole;
            if (!readEntry(entry, whole, problem))
            {
                EXPECT_TRUE(!readEntryStart(entry, start, count, problem) || wanted < 1000) << entry.internalPath();
                EXPECT_NE(problem.path.find(entry.internalPath()), std::string::npos); // the start may be whole
                continue;
            }
            ASSERT_TRUE(readEntryStart(entry, start, count, problem)) << describe(problem);
            ASSERT_EQ(count, std::min(wanted, whole.size())) << entry.internalPath();
            EXPECT_TRUE(
                std::equal(start.begin(), start.begin() + static_cast<std::ptrdiff_t>(count), whole.bytes().begin()))
                << entry.internalPath();
        }
}

} // namespace korvane
