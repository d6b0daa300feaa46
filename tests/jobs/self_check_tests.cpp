#include "Korvane/document/model_editor.h"
#include "Korvane/jobs/self_check.h"
#include "tests/support/model_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <functional>

namespace korvane
{

namespace
{

using outcome = self_check_outcome;

// What each part says after something has happened between opening the file and testing it.
TEST(self_check, eachPartSaysWhetherItPassed)
{
    const struct
    {
        const char* name;
        std::function<void(const std::string& path, rmv2_file& model)> happen;
        outcome file, decoded, saved, edits;
        std::string said;
    } rows[] = {
        {"nothing", [](const std::string&, rmv2_file&) {}, outcome::passed, outcome::passed, outcome::passed,
         outcome::passed, "Byte for byte"},
        {"the file is gone", [](const std::string& path, rmv2_file&) { std::filesystem::remove(toPath(path)); },
         outcome::failed, outcome::passed, outcome::passed, outcome::passed, "save it under a new name"},
        {"another program has changed a byte",
         [](const std::string& path, rmv2_file&) {
             std::string bytes = test::readBytes(path);
             bytes[600] = static_cast<char>(bytes[600] + 1);
             test::writeBytes(path, bytes);
         },
         outcome::failed, outcome::passed, outcome::passed, outcome::passed, "from byte 600 on"},
        {"a path was edited",
         [](const std::string&, rmv2_file& model) {
             edit_result result;
             failure why;
             ASSERT_TRUE(model_editor(model).setTexturePath({0, 0, 0}, "tex/body_diffusX.dds", edit_scope::one_group,
                                                            result, why));
         },
         outcome::passed, outcome::passed, outcome::passed, outcome::noted,
         "1 field is edited; a save will change 1 byte"},
        {"the decoded model was damaged",
         [](const std::string&, rmv2_file& model) { model.data().lods[0].groups[0].store.indices[2] = 7; },
         outcome::passed, outcome::failed, outcome::passed, outcome::passed, "first in: LOD 1, group 1: triangles"},
    };
    for (const auto& row : rows)
    {
        const test::temporary_folder folder;
        const std::string path = folder.file("m.rigid_model_v2");
        test::writeBytes(path, test::test_model().bytes());
        rmv2_file model;
        failure why;
        ASSERT_TRUE(model.open(path, why)) << describe(why);
        row.happen(path, model);
        const self_check_report report = runSelfCheck(selfCheckOf(model, std::make_shared<const game_data>()), {});
        ASSERT_EQ(report.steps.size(), 5u) << row.name;
        EXPECT_EQ(report.steps[0].outcome, row.file) << row.name << report.text();
        EXPECT_EQ(report.steps[1].outcome, row.decoded) << row.name << report.text();
        EXPECT_EQ(report.steps[2].outcome, row.saved) << row.name << report.text();
        EXPECT_EQ(report.steps[3].outcome, row.edits) << row.name << report.text();
        EXPECT_NE(report.text().find(row.said), std::string::npos) << row.name << report.text();
        EXPECT_NE(report.text().find("texture"), std::string::npos) << "its texture is nowhere";
    }
}

} // namespace

} // namespace korvane
