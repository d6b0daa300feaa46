#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/memory_file.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{

TEST(whole_file, isReplacedWholeAndLeavesNothingBehind)
{
    const test::temporary_folder folder;
    const std::string path = folder.file("model \xe6\x98\x8e.bin");
    failure why;
    for (const std::string& content : {std::string("first"), std::string(3 << 20, 'x'), std::string()})
    {
        ASSERT_TRUE(writeWholeFile(path, content, why)) << describe(why);
        EXPECT_EQ(test::readBytes(path), content);
        EXPECT_EQ(folder.fileCount(), 1u);
    }
}

TEST(whole_file, aFailureKeepsWhatStoodThere)
{
    const test::temporary_folder folder;
    failure why;
    EXPECT_FALSE(writeWholeFile(folder.file("no such folder/x"), "new", why));
    EXPECT_EQ(why.kind, failure_kind::unwritable);
    EXPECT_FALSE(writeWholeFile("", "new", why));

    // A folder in the target's place, with something in it.
    std::filesystem::create_directories(toPath(folder.file("target/inside")));
    failure on_folder;
    EXPECT_FALSE(writeWholeFile(folder.file("target"), "new", on_folder));
    EXPECT_NE(on_folder.what.find("folder"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(toPath(folder.file("target/inside"))));
    EXPECT_EQ(folder.fileCount(), 1u); // no temporary file
}

TEST(whole_file, whatAKilledProcessHasLeftIsClearedByTheNextWriteIntoTheFolder)
{
    const test::temporary_folder folder;
    test::writeBytes(folder.file(".korvane-4242-7.tmp"), "half of a fi");
    const char* const of_others[] = {"mine.tmp", ".korvane-notes.tmp", ".korvane-4-x.tmp", ".korvane-4242-7.tmp~"};
    for (const char* name : of_others)
        test::writeBytes(folder.file(name), "somebody else's");
    failure why;
    const std::string path = folder.file("model");
    ASSERT_TRUE(writeWholeFile(path, "new", why)) << describe(why);
    EXPECT_EQ(test::readBytes(path), "new");
    EXPECT_FALSE(std::filesystem::exists(toPath(folder.file(".korvane-4242-7.tmp"))));
    for (const char* name : of_others)
        EXPECT_TRUE(std::filesystem::exists(toPath(folder.file(name)))) << name;
}

TEST(memory_file, tellsAMissingFileFromAFolder)
{
    const test::temporary_folder folder;
    memory_file file(std::string_view("kept"));
    failure missing, is_folder;
    EXPECT_FALSE(file.read(folder.file("missing"), missing));
    EXPECT_EQ(missing.kind, failure_kind::not_found);
    EXPECT_FALSE(file.read(folder.file("."), is_folder));
    EXPECT_EQ(is_folder.kind, failure_kind::unreadable);
    EXPECT_EQ(file.text(), "kept");
    test::writeBytes(folder.file("data"), std::string("a\0\r\n\xff", 5));
    failure why;
    ASSERT_TRUE(file.read(folder.file("data"), why)) << describe(why);
    EXPECT_EQ(file.text(), std::string_view("a\0\r\n\xff", 5));
}

TEST(existing_path, isFoundWithoutRegardToCase)
{
    const test::temporary_folder folder;
    std::filesystem::create_directories(toPath(folder.file("Games/Total")));
    test::writeBytes(folder.file("Games/Total/Data.pack"), "x");
    const std::string found = existingPathAnyCase(folder.file("games/TOTAL/data.PACK"));
    EXPECT_TRUE(std::filesystem::equivalent(toPath(found), toPath(folder.file("Games/Total/Data.pack"))));
    EXPECT_EQ(existingPathAnyCase(folder.file("games/other")), folder.file("games/other"));
    EXPECT_EQ(existingPathAnyCase(""), "");
}

TEST(to_path, takesAnyBytes)
{
    // Texture paths of damaged models reach this function; a lookup may fail, nothing may throw.
    failure why;
    memory_file file;
    EXPECT_FALSE(file.read("\xff\xfe\xed\xa0\x80/x", why));
    EXPECT_EQ(why.kind, failure_kind::not_found);
    EXPECT_EQ(toUtf8(toPath("\xe6\x9d\x8e/\xf0\x9f\x90\x89")), "\xe6\x9d\x8e/\xf0\x9f\x90\x89");
}

TEST(executable_folder, holdsThisProgram)
{
    EXPECT_TRUE(executableFolder().ends_with("/") || executableFolder().ends_with("\\"));
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(toPath(executableFolder())))
        files += toUtf8(entry.path().filename()).rfind("services_tests", 0) == 0 ? 1u : 0u;
    EXPECT_GE(files, 1u);
}

} // namespace korvane
