// The writer of the demo archives against the program's reader, also in the formats that the demo data leaves out.
// tests/cli/demo_archive_tests.py reads the archives themselves with a reader of its own.

#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"
#include "tests/support/temporary_folder.h"
#include "tools/demo_data/pack_writer.h"

#include <gtest/gtest.h>

namespace korvane::demo
{

TEST(pack_writer, bothFormatsWithAndWithoutTimeStampsReadBack)
{
    const std::string short_text = "twelve bytes", long_text(100'000, 'x');
    struct row
    {
        pack_format format;
        bool has_time_stamps;
        std::vector<std::string> names;
        const char* magic;
        std::size_t size_uncompressed; // 28 of header, then names, records and the three entries, added by hand
    };
    const row rows[] = {
        {pack_format::pfh4, false, {}, "PFH4", 28 + (4 + 6) + (4 + 4) + (4 + 2) + 12 + 100'000},
        {pack_format::pfh4, true, {"b.pack"}, "PFH4", 28 + 7 + (8 + 6) + (8 + 4) + (8 + 2) + 12 + 100'000},
        {pack_format::pfh5, false, {"b.pack"}, "PFH5", 28 + 7 + (5 + 6) + (5 + 4) + (5 + 2) + 12 + 100'000},
        {pack_format::pfh5, true, {}, "PFH5", 28 + (9 + 6) + (9 + 4) + (9 + 2) + 12 + 100'000},
    };
    const test::temporary_folder folder;
    for (const row& each : rows)
        for (const auto compression :
             {pack_compression::none, pack_compression::zstd, pack_compression::lz4, pack_compression::lzma})
        {
            if (each.format == pack_format::pfh4 && compression != pack_compression::none)
                continue;
            SCOPED_TRACE(each.magic + std::to_string(each.has_time_stamps) + std::to_string(int(compression)));
            pack_writer writer(each.format, each.has_time_stamps, each.names);
            writer.add("A/b.c", std::as_bytes(std::span(short_text)), compression);
            writer.add("b\\d", std::as_bytes(std::span(long_text)), compression);
            writer.add("e", {}, compression);
            const std::vector<std::byte> bytes = writer.take();
            if (compression == pack_compression::none)
            {
                EXPECT_EQ(bytes.size(), each.size_uncompressed);
            }
            else
            {
                EXPECT_LT(bytes.size(), 2000u);
            }
            failure why;
            ASSERT_TRUE(writeWholeFile(folder.file("x.pack"), bytes, why));
            path_tree tree;
            pack_file archive(tree);
            ASSERT_TRUE(archive.open(folder.file("x.pack"), why)) << why.what;
            EXPECT_EQ(archive.header().magic, each.magic);
            EXPECT_EQ(archive.header().hasTimeStamps(), each.has_time_stamps);
            EXPECT_EQ(archive.archiveNames(), each.names);
            archive.enter();
            for (const auto& [path, content] :
                 {std::pair{"a\\b.c", short_text}, {"b\\d", long_text}, {"e", std::string()}})
            {
                memory_file read;
                ASSERT_TRUE(readEntry(*tree.find(path)->file(), read, why)) << path << ": " << why.what;
                EXPECT_EQ(read.text(), content) << path;
            }
        }
}

} // namespace korvane::demo
