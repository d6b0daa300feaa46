#include "Korvane/archives/variant_mesh_def.h"

#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/game/game_data.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/variant_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{
namespace
{

using texts = std::vector<std::string>;

bool openText(variant_mesh_def& definition, const std::string& text, failure& why, const definition_reader& reader = {})
{
    return definition.openFromMemory(std::as_bytes(std::span(text)), "test", why, reader);
}

std::string repeated(const std::string& text, std::size_t count)
{
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

// Code units of two bytes of an ASCII text.
std::string utf16(const std::string& text, bool is_big_endian, bool has_mark)
{
    std::string units = !has_mark ? "" : is_big_endian ? "\xfe\xff" : "\xff\xfe";
    for (const char letter : text)
        units += is_big_endian ? std::string{'\0', letter} : std::string{letter, '\0'};
    return units;
}

std::string reference(const std::string& path)
{
    return "<VARIANT_MESH_REFERENCE definition=\"" + path + "\"/>";
}

std::string mesh(const std::string& model, const std::string& content = "")
{
    return "<VARIANT_MESH model=\"" + model + "\">" + content + "</VARIANT_MESH>";
}

class variant_mesh_def_tests : public ::testing::Test
{
protected:
    // Makes the entries the tree of all archives.
    void archive(std::vector<test::test_entry> entries)
    {
        test::test_pack pack;
        pack.entries = std::move(entries);
        test::writeBytes(m_folder.file("a.pack"), pack.bytes());
        const auto tree = std::make_shared<path_tree>();
        pack_file file(*tree);
        failure why;
        ASSERT_TRUE(file.open(m_folder.file("a.pack"), why)) << describe(why);
        file.enter();
        m_reader = game_data(tree).definitionReader();
    }

    // Opens a text that must open and hold together.
    void open(const std::string& text)
    {
        failure why;
        ASSERT_TRUE(openText(m_definition, text, why, m_reader)) << describe(why);
        ASSERT_EQ(test::faultOf(m_definition), "");
    }

    test::temporary_folder m_folder;
    definition_reader m_reader;
    variant_mesh_def m_definition;
};

const std::string figure = R"(<?xml version="1.0"?>
<Variant_Mesh model="Man\\Body.rigid_model_v2">
  <!-- <VARIANT_MESH model="no.rigid_model_v2"/> -->
  <META colour="red">text<SLOT/></META>
  <slot NAME="head" Attach_Point="be_head" probability="0.5">
    <VARIANT_MESH MODEL="man/head_1.rigid_model_v2"><SLOT name="inner"><VARIANT_MESH model="deep"/></SLOT></VARIANT_MESH>
    <VARIANT_MESH/>
    <VARIANT_MESH model="man/head_1.rigid_model_v2"/>
  </slot>
</Variant_Mesh>)";

TEST_F(variant_mesh_def_tests, elementsOfAnyCaseAndDepthGiveTheirModelsInDocumentOrder)
{
    open(figure);
    const variant_tag& root = m_definition.root();
    ASSERT_EQ(root.children.size(), 2u);
    EXPECT_EQ(root.kind, variant_tag_kind::mesh);
    EXPECT_EQ(root.name, "Variant_Mesh");
    const variant_tag& meta = root.children[0];
    EXPECT_EQ(meta.kind, variant_tag_kind::other);
    EXPECT_EQ(meta.attribute("COLOUR"), "red");
    EXPECT_EQ(meta.children.at(0).kind, variant_tag_kind::slot);
    const variant_tag& slot = root.children[1];
    EXPECT_EQ(slot.kind, variant_tag_kind::slot);
    EXPECT_EQ(slot.attribute("name"), "head");
    EXPECT_EQ(slot.attribute("attach_point"), "be_head");
    EXPECT_EQ(slot.attribute("Probability"), "0.5");
    EXPECT_EQ(slot.attribute("weight"), "");
    EXPECT_EQ(m_definition.models(),
              (texts{"man\\body.rigid_model_v2", "man\\head_1.rigid_model_v2", "deep", "man\\head_1.rigid_model_v2"}));
    EXPECT_TRUE(m_definition.problems().empty());
}

TEST_F(variant_mesh_def_tests, severalRootElementsStandSideBySide)
{
    open(mesh("a") + "<SLOT>" + mesh("b") + "</SLOT>" + mesh("c"));
    EXPECT_EQ(m_definition.root().name, "");
    EXPECT_EQ(m_definition.root().children.size(), 3u);
    EXPECT_EQ(m_definition.models(), (texts{"a", "b", "c"}));
}

TEST_F(variant_mesh_def_tests, quotedPathsTakeTheFormOfTheArchives)
{
    const struct
    {
        const char* quoted;
        const char* path;
    } rows[] = {
        {"A/B\\C.d", "a\\b\\c.d"},
        {"a\\\\b\\c", "a\\b\\c"},
        {"\\\\a//b\\/\\c\\\\", "a\\b\\c"},
        {" \t a b \n", "a b"},
        {"\xc3\x84.X", "\xc3\x84.x"}, // only ASCII letters have a lower case
        {" \\ a\\ / ", "a"},
        {"  ", ""},
        {"\\/", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(normalInternalPath(row.quoted), row.path) << row.quoted;
}

TEST_F(variant_mesh_def_tests, everyEncodingGivesTheSameText)
{
    const std::string plain = mesh("m\xc3\xa4n"), ascii = mesh("m&#xe4;n");
    const struct
    {
        const char* name;
        std::string text;
    } rows[] = {
        {"UTF-8", plain},
        {"UTF-8 with mark", "\xef\xbb\xbf" + plain},
        {"UTF-8 declared", "<?xml version='1.0' encoding='utf-8'?>\r\n" + plain},
        {"reference to a character", ascii},
        {"UTF-16 little-endian with mark", utf16(ascii, false, true)},
        {"UTF-16 big-endian with mark", utf16(ascii, true, true)},
        {"UTF-16 little-endian declared", utf16("<?xml version='1.0' encoding='utf-16'?>" + ascii, false, false)},
        {"UTF-16 big-endian", utf16(ascii, true, false)},
        {"Latin-1 declared", "<?xml version='1.0' encoding='iso-8859-1'?>" + mesh("m\xe4n")},
        {"filled up with zeros", plain + std::string(9, '\0')},
    };
    for (const auto& row : rows)
    {
        open(row.text);
        EXPECT_EQ(m_definition.models(), texts{"m\xc3\xa4n"}) << row.name;
    }
}

TEST_F(variant_mesh_def_tests, entitiesAreNotExpanded)
{
    open("<!DOCTYPE a [<!ENTITY x 'xxxxxxxx'><!ENTITY y '&x;&x;'><!ENTITY f SYSTEM 'file:///etc/passwd'>]>" +
         mesh("&y;&f;&lt;"));
    EXPECT_EQ(m_definition.models(), texts{"&y;&f;<"});
}

TEST_F(variant_mesh_def_tests, damageIsNamedWithItsPositionAndLeavesWhatWasOpen)
{
    open(mesh("kept"));
    const struct
    {
        const char* name;
        std::string text;
        failure_kind kind;
        std::uint64_t offset;
        const char* field;
    } rows[] = {
        {"empty", "", failure_kind::truncated, 0, "No document element found"},
        {"no XML", "no XML", failure_kind::truncated, 6, "No document element found"},
        {"cut inside an element", "<a><b/>", failure_kind::truncated, 6, "Start-end tags mismatch"},
        {"cut inside a value", "<a b=\"1", failure_kind::truncated, 6, "Error parsing element attribute"},
        {"wrong end", "<a>\n </b>", failure_kind::malformed, 7, "Start-end tags mismatch"},
        {"wrong end, UTF-16", utf16("<a>\n </b></a>", false, true), failure_kind::malformed, 16,
         "Start-end tags mismatch"},
        {"wrong end behind Latin-1", "<?xml version='1.0' encoding='latin1'?><a b='\xe4\xe4'></b></a>",
         failure_kind::malformed, 51, "Start-end tags mismatch"},
        {"zero inside", std::string("<a/>\0<b/>", 9), failure_kind::malformed, 4, "text"},
        {"zero inside a value", std::string("<a b='\0'/>", 10), failure_kind::malformed, 6, "text"},
        {"65 levels", repeated("<a>", 65) + repeated("</a>", 65), failure_kind::malformed, 193, "depth"},
        {"a million levels", repeated("<a>", 1000000) + repeated("</a>", 1000000), failure_kind::malformed, 193,
         "depth"},
        {"65537 elements", "<a>" + repeated("<b/>", 65536) + "</a>", failure_kind::malformed, 4 + 65535 * 4,
         "elements"},
        {"many attributes", "<a" + repeated(" a=''", 257) + "/>", failure_kind::malformed, 1, "attributes"},
        {"8 MiB and one", std::string((8u << 20) + 1, ' '), failure_kind::malformed, 0, ""},
    };
    for (const auto& row : rows)
    {
        failure why;
        EXPECT_FALSE(openText(m_definition, row.text, why)) << row.name;
        EXPECT_EQ(why.kind, row.kind) << row.name;
        EXPECT_EQ(why.offset, row.offset) << row.name;
        EXPECT_EQ(why.field, row.field) << row.name;
        EXPECT_EQ(why.path, "test") << row.name;
    }
    EXPECT_EQ(m_definition.models(), texts{"kept"});
    open(repeated("<a>", 64) + repeated("</a>", 64)); // the limits themselves are fine
    open("<a>" + repeated("<b/>", 65535) + "</a>");
    open("<a" + repeated(" a=''", 256) + "/>");
}

TEST_F(variant_mesh_def_tests, anyCutAndAnyPatchFailsOrHoldsTogether)
{
    const std::string marked = "\xef\xbb\xbf<!DOCTYPE a [<!ENTITY x 'y'>]>" + figure + "<![CDATA[<a>]]>&#65;&#x110000;";
    for (const std::string& text : {marked, utf16(figure, false, true)})
    {
        const auto check = [this](const std::string& damaged) {
            failure why;
            const auto exact = std::make_unique<char[]>(damaged.size()); // of that size: a byte too many is seen
            std::copy(damaged.begin(), damaged.end(), exact.get());
            if (m_definition.openFromMemory(std::as_bytes(std::span(exact.get(), damaged.size())), "test", why))
                ASSERT_EQ(test::faultOf(m_definition), "") << damaged;
            else
                ASSERT_TRUE(!why.what.empty() && why.offset <= damaged.size()) << damaged;
        };
        for (std::size_t size = 0; size < text.size(); ++size)
            check(text.substr(0, size));
        for (std::size_t at = 0; at < text.size(); ++at)
            for (const int value : {0, 255, text[at] + 1, text[at] - 1, int{'<'}, int{'"'}, int{'&'}})
            {
                std::string patched = text;
                patched[at] = static_cast<char>(value);
                check(patched);
            }
    }
}

TEST_F(variant_mesh_def_tests, filesOnTheDiskAndInTheArchivesOpenAlike)
{
    archive({{"Variants\\A.variantmeshdefinition", mesh("x"), 0}, {"bad", "<a>", 0}});
    test::writeBytes(m_folder.file("a.xml"), mesh("x"));
    failure why;
    ASSERT_TRUE(m_definition.open(m_folder.file("a.xml"), why, m_reader));
    EXPECT_EQ(m_definition.path(), m_folder.file("a.xml"));
    ASSERT_TRUE(m_definition.openFromInternalPath("variants/a.VariantMeshDefinition", why, m_reader));
    EXPECT_EQ(m_definition.path(), "variants/a.VariantMeshDefinition");
    EXPECT_EQ(m_definition.models(), texts{"x"});

    const struct
    {
        const char* path;
        failure_kind kind;
    } rows[] = {
        {"variants", failure_kind::not_found}, {"none", failure_kind::not_found}, {"bad", failure_kind::truncated}};
    for (const auto& row : rows)
    {
        failure reason;
        EXPECT_FALSE(m_definition.openFromInternalPath(row.path, reason, m_reader)) << row.path;
        EXPECT_EQ(reason.kind, row.kind) << row.path;
        EXPECT_EQ(reason.path, row.path);
    }
    failure missing, large, no_tree;
    EXPECT_FALSE(m_definition.open(m_folder.file("none"), missing, m_reader));
    EXPECT_EQ(missing.kind, failure_kind::not_found);
    test::writeBytes(m_folder.file("large"), std::string((8u << 20) + 1, ' '));
    EXPECT_FALSE(m_definition.open(m_folder.file("large"), large, m_reader));
    EXPECT_EQ(large.kind, failure_kind::malformed);
    m_reader = {};
    EXPECT_FALSE(m_definition.openFromInternalPath("bad", no_tree, m_reader));
    EXPECT_EQ(no_tree.what, "variant_mesh_def::fillTag(): pack_file::sm_poPathTree == nullptr");
}

TEST_F(variant_mesh_def_tests, withoutArchivesReferencesAreOneProblem)
{
    open("<a>" + reference("x") + mesh("m") + reference("y") + "</a>");
    EXPECT_EQ(m_definition.problems(), texts{"variant_mesh_def::fillTag(): pack_file::sm_poPathTree == nullptr"});
    EXPECT_EQ(m_definition.models(), texts{"m"});
}

TEST_F(variant_mesh_def_tests, referencesHoldTheContentOfTheirDefinitions)
{
    archive({{"d\\hat.vmd", mesh("hat") + "<SLOT>" + reference("D\\\\Plume.vmd") + "</SLOT>", 0},
             {"d\\plume.vmd", mesh("plume"), 0}});
    open("<a>" + mesh("first") +
         "<VARIANT_MESH_REFERENCE definition='d/HAT.vmd'><VARIANT_MESH model='own'/></VARIANT_MESH_REFERENCE>" +
         mesh("last", reference("d/plume.vmd")) + "</a>");
    EXPECT_EQ(m_definition.problems(), texts{});
    EXPECT_EQ(m_definition.models(), (texts{"first", "hat", "plume", "own", "last", "plume"}));
    EXPECT_EQ(m_definition.root().children.at(1).children.size(), 3u);
}

TEST_F(variant_mesh_def_tests, whatCannotBeFollowedIsNamedOnceAndTheRestIsThere)
{
    archive({{"self", "<a>" + reference("SELF") + mesh("m") + "</a>", 0},
             {"ping", reference("pong"), 0},
             {"pong", reference("ping"), 0},
             {"bad", "<a><b></a>", 0},
             {"folder\\file", mesh("n"), 0},
             {"large", std::string(8u << 20, ' '), 0}});
    const std::string missing = "variant_mesh_def::fillTag(): pfn = nullptr: problem findinh path: ";
    const std::string circle = "definitions refer to each other in a circle: ";
    const struct
    {
        std::string path;
        std::string problem;
    } rows[] = {
        {"self", circle + "self -> self"},
        {"ping", circle + "ping -> pong -> ping"},
        {"none", missing + "none (named in test)"},
        {"folder", missing + "folder (named in test)"},
        {"bad", "bad: this is no well-formed XML (at byte 8, Start-end tags mismatch)"},
        {"", "test: a reference names no definition"},
    };
    for (const auto& row : rows)
    {
        open("<a>" + reference(row.path) + reference(row.path) + mesh("x") + "</a>");
        EXPECT_EQ(m_definition.problems(), texts{row.problem}) << row.path;
        EXPECT_EQ(m_definition.models().back(), "x") << row.path;
    }
    open("<a>" + reference("large") + mesh("x") + "</a>"); // more text than is left beside the document's own
    ASSERT_EQ(m_definition.problems().size(), 1u);
    EXPECT_NE(m_definition.problems()[0].find("large"), std::string::npos);
    failure why; // what was opened out of the archives belongs to the circle
    ASSERT_TRUE(m_definition.openFromInternalPath("Self", why, m_reader));
    EXPECT_EQ(m_definition.problems(), texts{circle + "self -> self"});
    EXPECT_EQ(m_definition.models(), texts{"m"});
}

TEST_F(variant_mesh_def_tests, problemsAreListedUpToTheirLimit)
{
    archive({{"x", "<a/>", 0}});
    std::string text = "<a>";
    for (int i = 0; i < 1000; ++i)
        text += reference("none" + std::to_string(i));
    open(text + mesh("m") + "</a>");
    EXPECT_EQ(m_definition.problems().size(), 257u);
    EXPECT_EQ(m_definition.models(), texts{"m"});
}

TEST_F(variant_mesh_def_tests, longChainsAndDoublingChainsEnd)
{
    const auto chain = [](std::size_t count, std::size_t copies, const std::string& wrapper) {
        std::vector<test::test_entry> entries;
        for (std::size_t i = 0; i < count; ++i)
        {
            const std::string next = i + 1 < count ? repeated(reference("d" + std::to_string(i + 1)), copies) : "";
            const std::string name = "m" + std::to_string(i);
            entries.push_back(
                {"d" + std::to_string(i), mesh(name, "<" + wrapper + ">" + next + "</" + wrapper + ">"), 0});
        }
        return entries;
    };
    archive(chain(64, 1, "SLOT"));
    open(reference("d0"));
    EXPECT_EQ(m_definition.problems(), texts{});
    EXPECT_EQ(m_definition.models().size(), 64u);

    archive(chain(65, 1, "SLOT"));
    open(reference("d0"));
    EXPECT_EQ(m_definition.problems().size(), 1u);
    EXPECT_EQ(m_definition.models().size(), 64u);

    archive(chain(64, 1, "a><b><c><d><e><f></f></e></d></c></b></a><a")); // deep beside the references, too
    open(reference("d0"));
    archive(chain(64, 2, "SLOT"));
    open(reference("d0"));
    ASSERT_EQ(m_definition.problems().size(), 1u);
    EXPECT_NE(m_definition.problems()[0].find("more than 65536 elements"), std::string::npos);

    // Few elements, but a mebibyte in each copy.
    archive({{"long", "<a b='" + std::string(1u << 20, 'x') + "'/>", 0}});
    open("<a>" + repeated(reference("long"), 1000) + mesh("m") + "</a>");
    EXPECT_EQ(m_definition.problems().size(), 1u);
    EXPECT_EQ(m_definition.models(), texts{"m"});
}

} // namespace
} // namespace korvane
