#include "Korvane/archives/archive_indexing.h"
#include "Korvane/archives/pack_file.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{

// Large enough for several readers, with files that stand in many archives, one bad archive, and folders inside runs.
TEST(archive_indexing, theTreeIsThatOfOneArchiveAfterTheOther)
{
    const test::temporary_folder folder;
    std::vector<std::string> paths;
    for (std::size_t number = 0; number < 24; ++number)
    {
        test::test_pack pack;
        const std::size_t count = number == 7 ? 1 : 3000; // of different lengths, so that they are not read in order
        for (std::size_t i = 0; i < count; ++i)
            pack.entries.push_back({"Folder_" + std::to_string(i / 50 % 7) + "\\" + std::string(i % 3 * 20, 'x') +
                                        (i % 11 == 0 ? "\\inner\\" : "") + std::to_string(i * (number % 5 + 1)) +
                                        ".dds",
                                    "d"});
        paths.push_back(folder.file("data_" + std::to_string(number) + ".pack"));
        test::writeBytes(paths.back(), number == 12 ? "PFH1" : pack.bytes());
    }
    indexed_archives indexed;
    ASSERT_TRUE(indexArchives(paths, {}, indexed));

    path_tree expected;
    for (const std::string& path : paths)
    {
        if (path == paths[12])
            continue;
        pack_file archive(expected);
        failure why;
        ASSERT_TRUE(archive.open(path, why)) << describe(why);
        archive.enter();
    }
    const auto files = indexed.tree->files(), wanted = expected.files();
    ASSERT_EQ(files.size(), wanted.size());
    for (std::size_t i = 0; i < files.size(); ++i)
    {
        ASSERT_EQ(files[i]->internalPath(), wanted[i]->internalPath());
        ASSERT_EQ(files[i]->packPath(), wanted[i]->packPath()) << files[i]->internalPath();
    }
    ASSERT_EQ(indexed.archives.size(), paths.size());
    EXPECT_NE(indexed.archives[12].damage.find("Unknown .PACK file format"), std::string::npos);
    EXPECT_TRUE(indexed.archives[11].damage.empty());
}

} // namespace korvane
