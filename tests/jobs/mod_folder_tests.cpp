#include "Korvane/jobs/mod_folder_job.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <map>

namespace korvane::test
{

namespace
{

class mod_folder_job_test : public testing::Test
{
protected:
    // Files with their names as their bytes.
    void make(const std::vector<std::string>& files)
    {
        for (const std::string& file : files)
        {
            std::filesystem::create_directories(toPath(m_folder.file(file)).parent_path());
            writeBytes(m_folder.file(file), file);
        }
    }
    std::map<std::string, std::string> modFiles() const
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(toPath(m_mod)))
            if (entry.is_regular_file())
                files[entry.path().lexically_relative(toPath(m_mod)).generic_string()] =
                    readBytes(toUtf8(entry.path()));
        return files;
    }

    temporary_folder m_folder;
    const std::string m_mod = m_folder.file("mod");
};

TEST_F(mod_folder_job_test, foldersComeWithWhatTheyHoldAndWhatCannotIsNamed)
{
    make({"mod/Men/old.txt", "mod/Men/body/deep.txt", "in/a.txt", "in/sub/B.txt", "old.TXT", "body"});
    const bool has_odd_names = std::filesystem::path::preferred_separator == '/'; // which Windows cannot make
    if (has_odd_names)
    {
        make({"in/con.txt", "in/sub/x|y"});
        std::filesystem::create_directory_symlink(toPath(m_folder.file("in")), toPath(m_folder.file("in/link")));
    }
    const std::vector<std::string> dropped = {m_folder.file("in") + "/", m_folder.file("old.TXT"),
                                              m_folder.file("body"), m_folder.file("none"),
                                              m_folder.file("mod/Men/old.txt")};
    const put_plan plan = planPut(m_mod, dropped, "men", {});
    std::map<std::string, std::string> said;
    for (const failure& each : plan.refused)
        said[toPath(each.path).lexically_relative(toPath(m_folder.file(""))).generic_string()] = each.what;
    EXPECT_EQ(said.size(), has_odd_names ? 6u : 3u);
    if (has_odd_names)
    {
        EXPECT_NE(said["in/con.txt"].find("device"), std::string::npos);
        EXPECT_NE(said["in/sub/x|y"].find("no file name"), std::string::npos);
        EXPECT_EQ(said["in/link"], "this is no plain file");
    }
    EXPECT_EQ(said["body"], "the mod folder has a folder of this name");
    EXPECT_EQ(said["none"], "there is no such file");
    EXPECT_NE(said["mod/Men/old.txt"], "") << "its own place, or that of the file before it";
    ASSERT_EQ(plan.replaced.size(), 1u);
    EXPECT_TRUE(endsWithIgnoringCase(plan.replaced[0], "old.txt"));

    const put_result result = putFiles(plan, {});
    EXPECT_EQ(result.written, 3u);
    EXPECT_EQ(modFiles(), (std::map<std::string, std::string>{{"Men/old.txt", "old.TXT"},
                                                              {"Men/body/deep.txt", "mod/Men/body/deep.txt"},
                                                              {"Men/in/a.txt", "in/a.txt"},
                                                              {"Men/in/sub/B.txt", "in/sub/B.txt"}}));
    std::stop_source stop;
    stop.request_stop();
    work_port stopped;
    stopped.stop = stop.get_token();
    EXPECT_TRUE(planPut(m_mod, dropped, "", stopped).is_stopped);
    EXPECT_EQ(putFiles(plan, stopped).written, 0u);

    const std::string deep = std::string(500, 'd') + "\\" + std::string(530, 'e'); // more than an archive's path
    EXPECT_TRUE(planPut(m_mod, dropped, deep, {}).files.empty());
    make({"mod/file"});
    const put_result below = putFiles(planPut(m_mod, dropped, "file", {}), {});
    EXPECT_EQ(below.written, 0u) << "a file stands where a folder would";
    EXPECT_FALSE(below.failures.empty());
}

TEST_F(mod_folder_job_test, namesAreChangedWhereTheyAreFree)
{
    make({"mod/Men/a.txt", "mod/Men/b.txt", "mod/Men/folder/c.txt"});
    const struct
    {
        const char *path, *name;
        const char* renamed; // null: refused
        const char* what;
    } rows[] = {
        {"men\\a.txt", "B.TXT", nullptr, "already"},      {"men\\a.txt", "folder", nullptr, "already"},
        {"men\\a.txt", "..", nullptr, "cannot be given"}, {"men\\a.txt", "x\\y.txt", nullptr, "cannot be given"},
        {"men\\a.txt", "lpt1.txt", nullptr, "device"},    {"men\\a.txt", "", nullptr, "cannot be given"},
        {"men\\none.txt", "d.txt", nullptr, "any more"},  {"..\\in.txt", "d.txt", nullptr, "any more"},
        {"men\\a.txt", "A.txt", "men\\a.txt", ""},        {"men\\a.txt", "New Name.txt", "men\\new name.txt", ""},
        {"men\\folder", "other", "men\\other", ""},
    };
    for (const auto& row : rows)
    {
        std::string renamed;
        failure why;
        EXPECT_EQ(renameInModFolder(m_mod, row.path, row.name, renamed, why), row.renamed != nullptr) << row.name;
        EXPECT_EQ(renamed, row.renamed != nullptr ? row.renamed : "");
        EXPECT_NE(why.what.find(row.what), std::string::npos) << why.what;
    }
    EXPECT_EQ(modFiles(), (std::map<std::string, std::string>{{"Men/New Name.txt", "mod/Men/a.txt"},
                                                              {"Men/b.txt", "mod/Men/b.txt"},
                                                              {"Men/other/c.txt", "mod/Men/folder/c.txt"}}));
}

} // namespace

} // namespace korvane::test
