// The commands of the main window on the open model: what is asked, what is said, what is written.

#include "Korvane/document/change_list.h"
#include "Korvane/document/model_commands.h"
#include "Korvane/document/pasted_path.h"
#include "Korvane/document/save_place.h"
#include "Korvane/models/rmv2_writer.h"
#include "tests/support/model_builder.h"
#include "tests/support/program_title.h"
#include "tests/support/recording_prompt.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane::test
{
namespace
{

class model_commands_test : public testing::Test
{
protected:
    std::string open(std::uint32_t version)
    {
        test_model model;
        model.version = version;
        test_group bare;
        bare.textures.clear();
        model.lods = {{test_group{}, bare}, {test_group{}}};
        m_bytes = model.bytes();
        const std::string path = m_folder.file("in.rigid_model_v2");
        writeBytes(path, m_bytes);
        failure why;
        EXPECT_TRUE(m_document.open(path, why)) << describe(why);
        return path;
    }
    const std::string& lastText() const { return m_prompt.shown.back().second; }
    std::string written(const std::string& name) const { return readBytes(m_folder.file(name)); }

    temporary_folder m_folder;
    std::string m_bytes; // of the open model
    open_files m_document;
    recording_prompt m_prompt;
    config_file m_config;
    model_commands m_commands{m_document, m_prompt, m_config};
};

TEST_F(model_commands_test, commandsAreEnabledAsTheyMakeSense)
{
    using command = document_command;
    EXPECT_FALSE(m_commands.isEnabled(command::save_as));
    EXPECT_FALSE(m_commands.isEnabled(command::reset));
    open(7);
    for (const command always :
         {command::save, command::save_as, command::patch, command::reset, command::test, command::open_folder,
          command::choose_alpha_mode, command::choose_texture, command::export_static})
        EXPECT_TRUE(m_commands.isEnabled(always)) << static_cast<int>(always);
    for (const command later : {command::undo, command::redo, command::save_picture})
        EXPECT_FALSE(m_commands.isEnabled(later)) << static_cast<int>(later);
    EXPECT_EQ(m_commands.chooseAlphaMode(1), command_outcome::done);
    EXPECT_TRUE(m_commands.isEnabled(command::undo));
    m_document.select({0, 1});
    EXPECT_FALSE(m_commands.isEnabled(command::choose_texture)) << "a group without textures";
    EXPECT_TRUE(m_commands.isEnabled(command::save_picture, {.has_view = true}));
    EXPECT_FALSE(m_commands.isEnabled(command::open, {.is_busy = true}));

    EXPECT_FALSE(m_commands.mayUseArchives());
    EXPECT_EQ(m_prompt.shown.back().second,
              "Setup up your games' \\data\\ folder in tools->setup game data folder first");
    m_config.add("data_paths", {"c:\\game\\data\\"}, false);
    EXPECT_TRUE(m_commands.mayUseArchives());
}

TEST_F(model_commands_test, editsShowInThePanelsAndTheTitleAndReachTheFileWhenTheyAreSaved)
{
    const std::string path = open(7);
    const std::string title = m_document.title();
    m_prompt.answer = "D:\\Work\\new.dds";
    EXPECT_EQ(m_commands.chooseTexture(0), command_outcome::done);
    EXPECT_EQ(m_prompt.picked_with, "Choose DDS G| Texture Files (*.dds)|*.dds");
    EXPECT_EQ(m_commands.chosenFolder(0), "D:\\Work\\");
    EXPECT_EQ(m_commands.chooseAlphaMode(2), command_outcome::done);
    EXPECT_EQ(m_commands.chooseAlphaMode(2), command_outcome::cancelled) << "it is chosen already";
    EXPECT_EQ(m_document.title(), title + "*[edited]");
    const group_data& group = *m_document.model().selectedGroup();
    const texture_rows rows = textureRows(group);
    EXPECT_EQ(rows[0].directory + "|" + rows[0].file, "tex/|new.dds");
    EXPECT_EQ(rowOfType(rows, 0), 0);
    EXPECT_EQ(rowOfType(rows, 1), -1);
    EXPECT_EQ(rows[0].file_colour, (rgb_colour{255, 240, 230}));
    EXPECT_EQ(rows[1].directory_colour, (rgb_colour{200, 200, 200}));
    EXPECT_EQ(groupTool(group, {0, 0}).alpha_mode, 2);
    EXPECT_EQ(readBytes(path), m_bytes);

    EXPECT_EQ(m_commands.save(), command_outcome::done);
    EXPECT_EQ(m_document.title(), title);
    EXPECT_EQ(m_commands.chooseTexture(1), command_outcome::cancelled) << "a grey row";
    rmv2_file saved;
    failure why;
    ASSERT_TRUE(saved.open(path, why)) << describe(why);
    EXPECT_EQ(saved.data().lods[0].groups[0].textures[0].path, "tex/new.dds");
    EXPECT_EQ(saved.data().lods[0].groups[0].alpha_mode, 0xffffffffu);
}

TEST_F(model_commands_test, theStatusLineSaysWhatWasDoneAndUndone)
{
    const std::string path = open(7);
    const std::string& said = m_commands.lastAction();
    m_commands.chooseAlphaMode(1);
    EXPECT_EQ(said, "Changed: alpha mode of LOD 1, group 1: 0 (Alpha Off) -> 1 (Alpha On)");
    m_commands.undo();
    EXPECT_EQ(said, "Undone: alpha mode of LOD 1, group 1: 1 (Alpha On) -> 0 (Alpha Off)");
    m_commands.redo();
    EXPECT_EQ(said, "Done again: alpha mode of LOD 1, group 1: 0 (Alpha Off) -> 1 (Alpha On)");
    EXPECT_EQ(m_commands.setTexturePath(0, "tex/", "body_diffuse.dds"), command_outcome::cancelled)
        << "what stands there";
    EXPECT_EQ(m_commands.setTexturePath(0, "new\\", "b.dds"), command_outcome::done);
    EXPECT_EQ(said, "Changed: path of LOD 1, group 1, texture 1: tex/body_diffuse.dds -> new\\b.dds");
    EXPECT_EQ(m_commands.setTexturePath(0, "c:\\new\\", "b.dds"), command_outcome::done);
    EXPECT_NE(said.find("somebody's disk"), std::string::npos) << said;
    EXPECT_EQ(m_commands.setTexturePath(1, "a/", "b.dds"), command_outcome::cancelled) << "a grey row";
    m_commands.undo();
    m_commands.undo();

    const std::vector<field_change> preview = m_document.model().previewPathPrefix("TEX\\", "data/");
    ASSERT_EQ(preview.size(), 2u);
    const change_list list(preview);
    EXPECT_EQ(list.text(1, 0) + "|" + list.text(1, 1) + "|" + list.text(1, 2),
              "LOD 2, group 1, texture 1|tex/body_diffuse.dds|data/body_diffuse.dds");
    EXPECT_EQ(list.mark(1), row_mark::warning) << "begins with the data folder";
    EXPECT_EQ(m_commands.replacePathPrefix("TEX\\", "x/"), command_outcome::done);
    EXPECT_EQ(said, "Changed: 2 texture paths: tex/body_diffuse.dds -> x/body_diffuse.dds");
    const copied_texture_paths copied = m_commands.copyTexturePaths();
    EXPECT_EQ(copied.announcement + "|" + copied.clipboard + "|" + said,
              "Copy textures paths|x\\body_diffuse.dds\r\n|Copy textures paths: SUCCESS!");
    EXPECT_EQ(copied.wanted, std::vector<std::string>{"x\\body_diffuse.dds"});
    EXPECT_EQ(m_commands.save(), command_outcome::done);
    EXPECT_EQ(said, "Saved in.rigid_model_v2");
    EXPECT_EQ(m_commands.undo(), command_outcome::done) << "also behind a save";
    EXPECT_TRUE(m_document.model().isEdited());
}

TEST_F(model_commands_test, anAlphaModeThatNoSaveWritesIsSaidWhenItIsChosenAndWhenItIsSaved)
{
    const std::string path = open(7);
    m_document.select({0, 1});
    EXPECT_EQ(m_commands.chooseAlphaMode(1), command_outcome::done);
    EXPECT_NE(lastText().find("has no textures"), std::string::npos);
    EXPECT_EQ(m_commands.save(), command_outcome::done);
    EXPECT_NE(lastText().find("LOD 1, group 2, alpha mode: 0 (Alpha Off) -> 1 (Alpha On)"), std::string::npos);
    EXPECT_EQ(readBytes(path), m_bytes);
}

TEST_F(model_commands_test, aSaveThatFailsKeepsPathAndEditedFlag)
{
    const std::string path = open(7);
    m_commands.chooseAlphaMode(1);
    m_prompt.answer = m_folder.file("none/out.rigid_model_v2");
    EXPECT_EQ(m_commands.saveAs(), command_outcome::failed);
    EXPECT_NE(lastText().find("none"), std::string::npos);
    EXPECT_TRUE(m_document.model().isEdited());
    EXPECT_EQ(m_document.model().file()->path(), path);
    m_prompt.answer.reset();
    EXPECT_EQ(m_commands.saveAs(), command_outcome::cancelled);
}

TEST_F(model_commands_test, onlyVersion6IsPatched)
{
    const struct
    {
        std::uint32_t version;
        const char* text;
    } rows[] = {
        {7, "This RigidModel file is already version 7!"},
        {8, "This RigidModel file is version 8 (Three Kingdoms), and cannot be patched!"},
        {5, "This RigidModel file is version 5, and cannot be patched: its texts have other widths than those of "
            "version 7!"},
    };
    for (const auto& row : rows)
    {
        open(row.version);
        EXPECT_EQ(m_commands.patch(), command_outcome::failed);
        EXPECT_EQ(m_prompt.shown.back(),
                  (std::pair<std::string, std::string>("Invalid Operation Requested!", row.text)));
    }
}

TEST_F(model_commands_test, afterAPatchASaveIsAskedAboutAndASecondPatchRefused)
{
    open(6);
    m_commands.chooseAlphaMode(1);
    m_prompt.answer = m_folder.file("none/p");
    EXPECT_EQ(m_commands.patch(), command_outcome::failed);
    m_prompt.answer = m_folder.file("patched.rigid_model_v2");
    EXPECT_EQ(m_commands.patch(), command_outcome::done) << "the one that failed does not count";
    EXPECT_NE(m_prompt.picked_with.find("Save Patched RigidModel File|Rigid Model v2 Files (*.rigid_model_v2)|"),
              std::string::npos);
    EXPECT_NE(lastText().find("unsaved changes are not in it"), std::string::npos);
    EXPECT_EQ(written("patched.rigid_model_v2").size(), m_bytes.size() + 16);
    EXPECT_EQ(m_commands.patch(), command_outcome::failed);
    EXPECT_NE(lastText().find("patched already"), std::string::npos);

    m_prompt.answer = m_folder.file("mixed");
    m_prompt.confirmations = {false, false};
    EXPECT_EQ(m_commands.saveAs(), command_outcome::cancelled);
    EXPECT_EQ(m_folder.fileCount(), 2u);
    m_prompt.confirmations = {false, true};
    EXPECT_EQ(m_commands.saveAs(), command_outcome::done);
    std::string mixed = m_bytes;
    mixed[4] = 7;
    mixed[mixed.find(std::string("\x03\0\0\0\0\0\0\0\x40\x40", 10)) + 4] = 1; // material flags, alpha mode, vertices
    EXPECT_EQ(written("mixed"), mixed);
    EXPECT_TRUE(isVersion7OverVersion6(std::as_bytes(std::span(mixed))));

    m_commands.chooseAlphaMode(0);
    m_prompt.confirmations = {true};
    EXPECT_EQ(m_commands.save(), command_outcome::opened_other);
    EXPECT_EQ(m_document.model().file()->path(), m_folder.file("patched.rigid_model_v2"));
    EXPECT_EQ(m_document.model().file()->version(), 7u);
    const std::size_t asked = m_prompt.shown.size();
    EXPECT_EQ(m_commands.chooseAlphaMode(1), command_outcome::done);
    EXPECT_EQ(m_commands.save(), command_outcome::done);
    EXPECT_EQ(m_prompt.shown.size(), asked) << "an ordinary model is saved without a question";
}

TEST_F(model_commands_test, editsAreNotLostWithoutAQuestion)
{
    const std::string path = open(7);
    command_outcome saved{};
    EXPECT_TRUE(m_commands.mayLeaveModel(saved));
    EXPECT_TRUE(m_prompt.shown.empty());
    m_commands.chooseAlphaMode(1);
    EXPECT_FALSE(m_commands.mayLeaveModel(saved)) << "cancelled";
    EXPECT_EQ(m_commands.reset(), command_outcome::cancelled);
    EXPECT_EQ(m_prompt.shown.back(),
              (std::pair<std::string, std::string>("Clear", "Are you sure you want to clear all fields?")));
    EXPECT_TRUE(m_document.reopen().empty());
    EXPECT_TRUE(m_document.model().isEdited());
    m_prompt.will_confirm = true;
    EXPECT_EQ(m_commands.reset(), command_outcome::cancelled);

    m_prompt.will_save = save_answer::save;
    std::filesystem::remove(toPath(path));
    std::filesystem::create_directory(toPath(path)); // nothing can be written there
    EXPECT_FALSE(m_commands.mayLeaveModel(saved));
    EXPECT_EQ(saved, command_outcome::failed);
    EXPECT_TRUE(m_document.model().isEdited());
    std::filesystem::remove(toPath(path));
    EXPECT_TRUE(m_commands.mayLeaveModel(saved));
    EXPECT_EQ(saved, command_outcome::done);
    EXPECT_NE(readBytes(path), m_bytes);

    m_prompt.will_save = save_answer::discard;
    m_commands.chooseAlphaMode(0);
    const std::string before = readBytes(path);
    EXPECT_EQ(m_commands.reset(), command_outcome::done);
    EXPECT_EQ(readBytes(path), before);
    EXPECT_FALSE(m_document.model().hasModel());
    EXPECT_EQ(m_document.title(), test::programTitle("RMV2: [no file loaded] VMD: [no file loaded]"));
}

TEST_F(model_commands_test, withoutEditsASaveSaysSoAndWritesWhatIsGone)
{
    const std::string path = open(7);
    EXPECT_EQ(m_commands.save(), command_outcome::cancelled);
    EXPECT_EQ(m_commands.lastAction(), "Nothing to save: in.rigid_model_v2 has no changes.");
    std::filesystem::remove(toPath(path));
    EXPECT_EQ(m_commands.save(), command_outcome::cancelled) << "not wanted back";
    m_prompt.will_confirm = true;
    EXPECT_EQ(m_commands.save(), command_outcome::done);
    EXPECT_EQ(readBytes(path), m_bytes);
}

TEST_F(model_commands_test, pickersBeginWhereTheFileBelongs)
{
    open(6);
    const std::string folder = toUtf8(toPath(m_folder.file("x")).parent_path());
    EXPECT_EQ(m_commands.saveAs(), command_outcome::cancelled);
    EXPECT_EQ(m_prompt.suggested.folder, folder);
    EXPECT_EQ(m_prompt.suggested.name, "in.rigid_model_v2");
    EXPECT_EQ(m_commands.patch(), command_outcome::cancelled);
    EXPECT_EQ(m_prompt.suggested.name, "in_v7.rigid_model_v2");

    const struct
    {
        const char *model, *disk, *mod, *folder, *name; // "": none
    } rows[] = {
        {"pack:men\\body.rigid_model_v2", "", "mod", "mod/men", "body.rigid_model_v2"},
        {"pack:men/body.rigid_model_v2", "there/body.rigid_model_v2", "mod", "there", "body_v7.rigid_model_v2"},
        {"pack:men/body.rigid_model_v2", "", "", "", "body.rigid_model_v2"},
        {"pack:../body.rigid_model_v2", "", "mod", "", "body.rigid_model_v2"},
        {"pack:men/body.rigid_model_v2", "", "no such mod", "", "body.rigid_model_v2"},
    };
    const auto absolute = [this](const char* name) { return *name == '\0' ? "" : m_folder.file(name); };
    std::filesystem::create_directory(toPath(absolute("mod")));
    std::filesystem::create_directory(toPath(absolute("there")));
    for (const auto& row : rows)
    {
        const save_place place(row.model, absolute(row.disk), absolute(row.mod), "_v7");
        EXPECT_EQ(toPath(place.suggestion().folder), toPath(absolute(row.folder)).make_preferred()) << row.model;
        EXPECT_EQ(place.suggestion().name, row.name);
    }
    EXPECT_TRUE(std::filesystem::is_empty(toPath(absolute("mod")))) << "what was made for the picker has gone";
}

TEST_F(model_commands_test, whatAnotherProgramDidToTheFileIsOfferedOnceAndNotWrittenOver)
{
    const auto looks = [this] {
        std::vector<disk_change> changes = m_document.lookAtDisk();
        return changes.empty() ? m_document.lookAtDisk() : changes;
    };
    const std::string path = open(7);
    m_document.select({0, 1});
    m_commands.chooseAlphaMode(1);
    EXPECT_EQ(m_commands.save(), command_outcome::done);
    EXPECT_TRUE(looks().empty()) << "our own save";

    m_commands.chooseAlphaMode(2);
    writeBytes(path, "half");
    EXPECT_TRUE(m_document.lookAtDisk().empty());
    writeBytes(path, "half of");
    EXPECT_TRUE(m_document.lookAtDisk().empty()) << "still being written";
    writeBytes(path, m_bytes + "x");
    const std::vector<disk_change> changes = looks();
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_TRUE(looks().empty()) << "once";
    EXPECT_EQ(m_commands.offerReread(changes[0]), command_outcome::cancelled);
    EXPECT_NE(lastText().find("did not save are lost"), std::string::npos);
    EXPECT_EQ(m_commands.save(), command_outcome::cancelled);
    EXPECT_NE(lastText().find("Write over it?"), std::string::npos);
    EXPECT_EQ(readBytes(path), m_bytes + "x");
    m_prompt.will_confirm = true;
    EXPECT_EQ(m_commands.offerReread(changes[0]), command_outcome::done);
    EXPECT_EQ(m_commands.lastAction(), "Read again: in.rigid_model_v2");
    EXPECT_FALSE(m_document.model().isEdited());
    EXPECT_EQ(m_document.model().selection(), (model_selection{0, 1}));

    std::filesystem::remove(toPath(path));
    const std::vector<disk_change> gone = looks();
    ASSERT_TRUE(gone.size() == 1 && gone[0].is_gone);
    EXPECT_EQ(m_commands.offerReread(gone[0]), command_outcome::done);
    m_commands.chooseAlphaMode(1);
    EXPECT_EQ(m_commands.save(), command_outcome::done) << "written again";
    EXPECT_TRUE(looks().empty());
}

TEST_F(model_commands_test, whatIsPastedIntoATextureRowBecomesAPath)
{
    m_config.add("mod_paths", {"d:\\mods\\mine"}, false);
    m_config.add("data_paths", {"c:\\game\\data\\"}, false);
    const std::vector<std::string> roots = internalRoots(m_config);
    const std::string before = "tex/a.dds";
    const struct
    {
        const char *pasted, *path;
    } rows[] = {
        {"  \"C:\\Game/data\\Men\\B.dds\"\r\nsecond line", "Men/B.dds"},
        {"D:\\Mods\\mine\\b.dds", "b.dds"},
        {"D:\\Mods\\mine2\\b.dds", "tex/b.dds"},
        {"/mods/x/b.dds", "tex/b.dds"},
        {"b.dds", "tex/b.dds"},
        {"men\\b.dds", "men\\b.dds"},
        {"pack:men\\b.dds", "men\\b.dds"},
        {" \r\n", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(pastedPath(row.pasted, before, roots), row.path) << row.pasted;

    open(7);
    EXPECT_EQ(m_commands.pasteIntoTexture(0, "new.dds"), command_outcome::done);
    EXPECT_EQ(m_commands.lastAction(),
              "Changed: path of LOD 1, group 1, texture 1: tex/body_diffuse.dds -> tex/new.dds");
    EXPECT_NE(selectedGroupText(m_document.model()).find("tex/new.dds\r\n"), std::string::npos);
    EXPECT_EQ(m_commands.pasteIntoTexture(1, "new.dds"), command_outcome::cancelled) << "a grey row";
}

} // namespace
} // namespace korvane::test
