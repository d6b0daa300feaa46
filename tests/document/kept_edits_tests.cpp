// Edits that a program kept when it had to end, and the next start.

#include "Korvane/document/kept_edits.h"
#include "Korvane/document/model_commands.h"
#include "tests/support/model_builder.h"
#include "tests/support/program_title.h"
#include "tests/support/recording_prompt.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

namespace korvane::test
{
namespace
{

class kept_edits_test : public testing::Test
{
protected:
    struct program // one run of it
    {
        explicit program(const std::string& folder, std::chrono::milliseconds pause = std::chrono::hours(1))
            : keeper(folder, {}, pause)
        {
            document.model().setKeeper(keeper);
        }
        edit_keeper keeper;
        open_files document;
    };

    void open(program& which, std::uint32_t version = 7)
    {
        test_model model;
        model.version = version;
        model.lods = {{test_group{}}, {test_group{}}};
        writeBytes(m_path, model.bytes());
        failure why;
        ASSERT_TRUE(which.document.open(m_path, why)) << describe(why);
    }
    // What another thread keeps; its folder, or nothing.
    std::string keep(program& which)
    {
        edit_keeper::outcome outcome{};
        std::string where;
        failure why;
        std::thread([&] { outcome = which.keeper.keep(where, why); }).join();
        EXPECT_NE(outcome, edit_keeper::outcome::failed) << describe(why);
        return outcome == edit_keeper::outcome::kept ? where : "";
    }
    std::string keepAnEdit(program& which)
    {
        open(which);
        which.document.model().chooseAlphaMode(1);
        return keep(which);
    }
    bool offer(program& which)
    {
        return offerKeptEdits(m_kept, which.document, m_prompt, [this](const std::string& line) { m_log = line; });
    }

    temporary_folder m_folder;
    std::string m_path = m_folder.file("soldier.rigid_model_v2");
    std::string m_kept = m_folder.file("kept");
    recording_prompt m_prompt;
    std::string m_log;
};

TEST_F(kept_edits_test, whatASaveWouldHaveWrittenIsOfferedAndSavedToItsOwnPath)
{
    for (const std::uint32_t version : {5u, 6u, 7u, 8u})
    {
        {
            program first(m_kept);
            open(first, version);
            EXPECT_EQ(keep(first), "") << "nothing was edited";
            first.document.model().chooseTexture(0, "other.dds");
            first.document.model().chooseAlphaMode(1);
            first.document.model().undo();
            first.document.model().chooseAlphaMode(2);
            const std::string where = keep(first);
            EXPECT_EQ(keep(first), "") << "kept once";
            ASSERT_TRUE(first.document.model().chooseAlphaMode(1).changed) << "another thread does not mind";
            first.document.model().undo();
            failure why;
            ASSERT_TRUE(first.document.model().save(m_folder.file("saved"), why)) << describe(why);
            EXPECT_EQ(readBytes(where + "model.rigid_model_v2"), readBytes(m_folder.file("saved")));
        }
        m_prompt.confirmations = {true};
        program second(m_kept);
        ASSERT_TRUE(offer(second));
        EXPECT_NE(m_prompt.shown.back().second.find(m_path), std::string::npos);
        EXPECT_EQ(second.document.title(),
                  test::programTitle("RMV2: [soldier.rigid_model_v2] VMD: [no file loaded]*[edited]"));
        program other(m_kept);
        std::thread([&] { EXPECT_FALSE(offer(other)) << "another program has it"; }).join();
        const config_file config;
        model_commands commands(second.document, m_prompt, config);
        EXPECT_EQ(commands.save(), command_outcome::done);
        EXPECT_EQ(readBytes(m_path), readBytes(m_folder.file("saved")));
        EXPECT_EQ(keep(second), "") << "saved";
        EXPECT_TRUE(std::filesystem::is_empty(toPath(m_kept)));
    }
}

// While nothing ends. A copy of the folder is what a kill would leave there and then.
TEST_F(kept_edits_test, editsLieOnTheDiskAMomentLaterUntilTheyAreSavedOrUndone)
{
    const std::string killed = m_folder.file("killed");
    const auto becomes = [this](const std::function<bool(const std::string& note)>& is_true) {
        const std::string note = m_kept + "/1/origin.txt";
        std::error_code error;
        for (int i = 0; i < 6000; ++i, std::this_thread::sleep_for(std::chrono::milliseconds(10)))
            if (is_true(std::filesystem::exists(toPath(note), error) ? readBytes(note) : ""))
                return true;
        return false;
    };
    program first(m_kept, std::chrono::milliseconds(1));
    open(first);
    for (const int choice : {1, 2, 1}) // into the two files by turns
    {
        std::string former;
        static_cast<void>(becomes([&](const std::string& note) { return former = note, true; }));
        first.document.model().chooseAlphaMode(choice);
        ASSERT_TRUE(becomes([&](const std::string& note) { return !note.empty() && note != former; })) << choice;
        program other(m_kept);
        EXPECT_FALSE(offer(other)) << "a live one is not offered";

        std::filesystem::remove_all(toPath(killed));
        std::filesystem::copy(toPath(m_kept), toPath(killed), std::filesystem::copy_options::recursive);
        program next(killed);
        m_prompt.will_confirm = true;
        ASSERT_TRUE(offerKeptEdits(killed, next.document, m_prompt, [](const std::string&) {}));
        EXPECT_EQ(next.document.model().selectedGroup()->alpha_mode,
                  first.document.model().selectedGroup()->alpha_mode_field.u32());
    }
    const auto isEmpty = [](const std::string& note) { return note.empty(); };
    while (first.document.model().canUndo())
        first.document.model().undo();
    EXPECT_TRUE(becomes(isEmpty)) << "undone";
    first.document.model().chooseAlphaMode(1);
    ASSERT_TRUE(becomes([](const std::string& note) { return !note.empty(); }));
    EXPECT_NE(keep(first), "") << "the end finds it there, or writes it anew";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(toPath(m_kept)), {}), 1);
    failure why;
    ASSERT_TRUE(first.document.model().save(m_folder.file("saved"), why)) << describe(why);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(toPath(m_kept)), {}), 1) << "given out of the hand";
}

TEST_F(kept_edits_test, aModelThatWasOpenedSoIsKeptAgain)
{
    program first(m_kept), second(m_kept), third(m_kept);
    keepAnEdit(first);
    m_prompt.will_confirm = true;
    ASSERT_TRUE(offer(second));
    ASSERT_NE(keep(second), "");
    ASSERT_TRUE(offer(third));
    EXPECT_FALSE(third.document.model().savesElsewhere()) << "the file is what it was before the first edit";
}

TEST_F(kept_edits_test, aFileThatChangedSinceIsNotWrittenOver)
{
    for (const char* const now : {"another model", ""}) // empty: gone
    {
        program first(m_kept), second(m_kept);
        keepAnEdit(first);
        std::filesystem::remove(toPath(m_path));
        if (*now != '\0')
            writeBytes(m_path, now);
        m_prompt.confirmations = {true};
        ASSERT_TRUE(offer(second));
        EXPECT_NE(m_prompt.shown.back().second.find("ask where"), std::string::npos);
        const config_file config;
        model_commands commands(second.document, m_prompt, config);
        EXPECT_EQ(commands.save(), command_outcome::cancelled);
        EXPECT_EQ(readBytes(m_path), now);
        m_prompt.answer = m_folder.file("elsewhere.rigid_model_v2");
        EXPECT_EQ(commands.save(), command_outcome::done);
        m_prompt.answer.reset();
        second.document.model().chooseAlphaMode(2);
        EXPECT_EQ(commands.save(), command_outcome::done) << "the new path is its own";
    }
}

TEST_F(kept_edits_test, severalProgramsKeepBesideEachOtherAndNoDiscards)
{
    program first(m_kept), second(m_kept), next(m_kept);
    EXPECT_NE(keepAnEdit(first), keepAnEdit(second));
    m_prompt.confirmations = {false, false, false, false};
    EXPECT_FALSE(offer(next)) << "neither opened nor discarded: Escape answers no";
    m_prompt.confirmations = {false, true, true}; // the first is discarded, the second opened
    EXPECT_TRUE(offer(next));
    EXPECT_FALSE(std::filesystem::is_empty(toPath(m_kept))) << "until it is saved or discarded";
    next.document.close();
    EXPECT_TRUE(std::filesystem::is_empty(toPath(m_kept)));
}

TEST_F(kept_edits_test, aModelThatWasPatchedIsKept)
{
    program first(m_kept), second(m_kept);
    open(first, 6);
    first.document.model().chooseAlphaMode(1);
    failure why;
    ASSERT_TRUE(first.document.model().patch(m_folder.file("patched"), why)) << describe(why);
    keep(first);
    m_prompt.confirmations = {true};
    EXPECT_TRUE(offer(second));
    EXPECT_TRUE(hasMixedVersions(*second.document.model().file()));
}

TEST_F(kept_edits_test, aDamagedKeepIsNamedAndLeftAlone)
{
    const std::pair<const char*, std::size_t>
        rows[] = // a file and the length to which it is cut, its last byte changed
        {{"origin.txt", 0}, {"origin.txt", 120}, {"model.rigid_model_v2", 100}, {"model.rigid_model_v2", 100000}};
    for (const auto& [name, length] : rows)
    {
        program first(m_kept), second(m_kept);
        const std::string file = keepAnEdit(first) + name;
        std::string bytes = readBytes(file).substr(0, length);
        if (!bytes.empty())
            ++bytes.back();
        writeBytes(file, bytes);
        EXPECT_FALSE(offer(second)) << name << length;
        EXPECT_NE(m_prompt.shown.back().second.find("left where they are"), std::string::npos) << name << length;
        EXPECT_NE(m_log.find(name), std::string::npos) << m_log;
        EXPECT_EQ(readBytes(file), bytes);
        std::filesystem::remove_all(toPath(m_kept));
    }
}

TEST_F(kept_edits_test, whereNothingCanBeWrittenTheReasonIsSaid)
{
    writeBytes(m_kept, "a file in place of the folder");
    program first(m_kept);
    open(first);
    first.document.model().chooseAlphaMode(1);
    std::string where;
    failure why;
    EXPECT_EQ(first.keeper.keep(where, why), edit_keeper::outcome::failed);
    EXPECT_NE(describe(why).find("kept"), std::string::npos) << describe(why);
}

} // namespace
} // namespace korvane::test
