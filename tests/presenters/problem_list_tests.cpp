#include "Korvane/presenters/problem_list.h"
#include "tests/support/model_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{

namespace
{

TEST(problem_list, isOfTheModelAsItIsOpenTheWorstFirst)
{
    const test::temporary_folder folder;
    const std::string path = folder.file("m.rigid_model_v2");
    test::test_model model;
    model.lods[0][0].textures = {{0, "a.dds"}, {1, "b.dds"}};
    test::writeBytes(path, model.bytes());
    test::writeBytes(folder.file("b.dds"), "DDS ");
    test::writeBytes(folder.file("new.dds"), "DDS ");
    open_files document;
    failure why;
    ASSERT_TRUE(document.open(path, why)) << describe(why);

    problem_list list;
    EXPECT_EQ(list.caption(), "Problems");
    list.show(checkProblems(problemCheckOf(document), {}));
    ASSERT_GT(list.rowCount(), 0u);
    const auto rowAbout = [&list](const std::string& what) {
        for (std::size_t row = 0; row < list.rowCount(); ++row)
            if (list.text(row, 2).find(what) != std::string::npos)
                return row;
        return list.rowCount();
    };
    const std::size_t missing = rowAbout("a.dds");
    ASSERT_LT(missing, list.rowCount());
    const problem_list::problem_target target = list.target(missing);
    EXPECT_TRUE(target.is_in_open_model);
    EXPECT_EQ(target.place.texture, std::size_t{0});
    EXPECT_EQ(list.text(missing, 1), "LOD 1, group 1, texture 1");
    for (std::size_t row = 1; row < list.rowCount(); ++row)
        EXPECT_GE(static_cast<int>(list.mark(row - 1)), static_cast<int>(list.mark(row)));
    EXPECT_EQ(list.caption().substr(0, 10), "Problems (");
    EXPECT_EQ(list.copyText(missing).find(path + ": "), 0u);

    document.model().chooseTexture(0, "new.dds"); // not saved
    list.markOutdated();
    EXPECT_NE(list.summary().find("edited since"), std::string::npos);
    list.show(checkProblems(problemCheckOf(document), {}));
    EXPECT_EQ(rowAbout("a.dds"), list.rowCount());
}

TEST(problem_list, whatADefinitionNamesLeadsToItsFile)
{
    const test::temporary_folder folder;
    const std::string path = folder.file("d.variantmeshdefinition");
    test::writeBytes(path, "<VARIANT_MESH></VARIANT_MESH>");
    open_files document;
    failure why;
    ASSERT_TRUE(document.open(path, why)) << describe(why);
    problem_list list;
    list.show(checkProblems(problemCheckOf(document), {}));
    ASSERT_EQ(list.rowCount(), 1u) << "it names no models";
    EXPECT_FALSE(list.target(0).is_in_open_model);
    EXPECT_EQ(list.target(0).file, path);
    EXPECT_EQ(list.summary(), "1 warning in 1 file.");
}

} // namespace

} // namespace korvane
