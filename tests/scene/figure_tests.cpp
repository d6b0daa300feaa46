#include "Korvane/scene/figure.h"
#include "Korvane/scene/figure_rigs.h"
#include "Korvane/scene/scene_rigs.h"

#include <gtest/gtest.h>

#include <span>

namespace korvane::test
{

namespace
{

variant_tag figureOf(const std::string& text)
{
    variant_mesh_def definition;
    failure why;
    EXPECT_TRUE(definition.openFromMemory(std::as_bytes(std::span(text)), "figure", why)) << describe(why);
    return definition.root();
}

const variant_tag& horseman()
{
    static const variant_tag root = figureOf(R"(<VARIANT_MESH>
      <SLOT name="weapon" attach_point="grip" probability="0.25">
        <VARIANT_MESH model="sword"/><VARIANT_MESH model="axe"><SLOT><VARIANT_MESH model="ribbon"/></SLOT></VARIANT_MESH>
        <VARIANT_MESH/>
      </SLOT>
      <SLOT name="body"><VARIANT_MESH model="body"/></SLOT>
      <SLOT name="weapon" attach_point="left"><NOTE><VARIANT_MESH model="always"/></NOTE></SLOT>
    </VARIANT_MESH>)");
    return root;
}

TEST(figure, oneAlternativeOfEachSlotIsShown)
{
    const std::vector<figure_slot> slots = figureSlots(horseman());
    std::vector<std::string> paths;
    for (const figure_slot& slot : slots)
        paths.push_back(slot.path);
    EXPECT_EQ(paths, (std::vector<std::string>{"weapon", "weapon/slot", "body", "weapon#2"}));
    EXPECT_EQ(slots[0].alternatives.size(), 3u);
    EXPECT_EQ(slots[0].probability(), 0.25);
    EXPECT_EQ(slots[1].probability(), 1);
    const struct
    {
        figure_choice choice;
        std::vector<std::string> models;
    } rows[] = {
        {{}, {"sword", "body", "always"}},
        {{{"weapon", 1}}, {"axe", "ribbon", "body", "always"}},
        {{{"weapon", 99}, {"body", 7}, {"nowhere", 1}}, {"body", "always"}},
    };
    for (const auto& row : rows)
    {
        std::vector<std::string> found;
        for (const figure_model& model : figureModels(horseman(), row.choice))
            found.push_back(model.path);
        EXPECT_EQ(found, row.models);
    }
    const std::vector<figure_place> places = figureModels(horseman(), {{"weapon", 1}})[1].places;
    ASSERT_EQ(places.size(), 2u);
    EXPECT_EQ(places[0].attach_point, "grip");
    EXPECT_EQ(places[1].slot, "weapon/slot");
}

// "humanoid" has the bones root and hand, "beast" root and back.
scene_rig testRig(const std::string& id)
{
    if (id == "gone")
        return readRig(id, {}, {});
    anim_data data;
    for (const char* name : {"root", id == "beast" ? "back" : "hand"})
        data.bones.push_back({name, static_cast<std::uint32_t>(data.bones.size()), -1});
    return rigOf(data, id, id + ".anim");
}

scene_point pointAt(const std::string& name, float x, std::uint32_t number)
{
    scene_point point{name};
    point.place[3].x = x;
    point.number = number;
    return point;
}

figure_place in(const std::string& slot, const std::string& attach_point = {})
{
    return {slot, attach_point};
}

TEST(figure, modelsFindTheirSkeletonsAndWhatTheyHangOn)
{
    // "model", or "model:skeleton"; the humanoid has the points "grip" (no bone of that name, number 1) and "lost".
    struct given
    {
        std::string model;
        std::vector<figure_place> places;
    };
    struct wanted
    {
        int rig, bone;
        float weapon_x;
    };
    const given body{"body:humanoid", {in("body")}}, horse{"horse:beast", {}};
    const struct
    {
        const char* name;
        std::vector<given> models;
        std::vector<wanted> parts;
        std::vector<int> mounts; // of the rigs
        std::size_t problems;
    } rows[] = {
        {"a point by its number, before the body",
         {{"sword", {in("w", "GRIP")}}, body},
         {{0, 1, 5}, {0, -1, 0}},
         {-1},
         0},
        {"a bone without a point", {body, {"sword", {in("w", "hand")}}}, {{0, -1, 0}, {0, 1, 0}}, {-1}, 0},
        {"neither", {body, {"sword", {in("w", "tail")}}}, {{0, -1, 0}, {-1, -1, 0}}, {-1}, 1},
        {"a point on no bone", {body, {"sword", {in("w", "lost")}}}, {{0, -1, 0}, {-1, -1, 0}}, {-1}, 1},
        {"the outer slot when the inner one names nothing",
         {body, {"ribbon", {in("w", "hand"), in("w/r", "pommel")}}},
         {{0, -1, 0}, {0, 1, 0}},
         {-1},
         1},
        {"the same skeleton in a slot is shared",
         {body, {"helmet:humanoid", {in("h", "hand")}}},
         {{0, -1, 0}, {0, -1, 0}},
         {-1},
         0},
        {"another skeleton in a slot rides",
         {{"man:humanoid", {in("rider", "back")}}, horse, {"sword", {in("rider", "back"), in("rider/w", "grip")}}},
         {{1, -1, 0}, {0, -1, 0}, {1, 1, 5}},
         {-1, 0},
         0},
        {"two riders, each of their own",
         {horse, {"man:humanoid", {in("a", "back")}}, {"man:humanoid", {in("b", "root")}}},
         {{0, -1, 0}, {1, -1, 0}, {2, -1, 0}},
         {-1, 0, 0},
         0},
        {"another skeleton beside it stands by itself", {horse, body}, {{0, -1, 0}, {1, -1, 0}}, {-1, -1}, 0},
        {"no skeleton anywhere", {{"wall", {in("w", "hand")}}}, {{-1, -1, 0}}, {}, 1},
        {"the skeleton is missing", {{"man:gone", {}}, {"sword", {in("w", "grip")}}}, {{0, -1, 0}, {0, 0, 5}}, {-1}, 1},
    };
    for (const auto& row : rows)
    {
        std::vector<figure_model> models;
        std::vector<figure_member> members;
        for (const given& each : row.models)
            models.emplace_back(each.model, each.places);
        for (const figure_model& each : models)
        {
            auto model = std::make_shared<scene_model>();
            const std::size_t colon = each.path.find(':');
            model->has_skeleton = colon != std::string::npos;
            model->skeleton_id = model->has_skeleton ? each.path.substr(colon + 1) : "";
            if (model->has_skeleton && model->skeleton_id != "beast")
                model->points = {pointAt("grip", 5, 1), pointAt("lost", 6, 99)};
            members.push_back({model, &each});
        }
        figure_rigs rigs(&testRig);
        const std::vector<scene_part> parts = rigs.assemble(members);
        for (std::size_t i = 0; i < parts.size(); ++i)
        {
            const wanted& part = row.parts[i];
            EXPECT_EQ(parts[i].rig, part.rig) << row.name << ", part " << i;
            EXPECT_EQ(parts[i].bone, part.bone) << row.name << ", part " << i;
            EXPECT_EQ(parts[i].weapon[3].x, part.weapon_x) << row.name << ", part " << i;
        }
        std::vector<int> mounts;
        for (const scene_rig& rig : rigs.rigs())
            mounts.push_back(rig.mount);
        EXPECT_EQ(mounts, row.mounts) << row.name;
        EXPECT_EQ(rigs.problems().size(), row.problems) << row.name;
    }
}

// The file's axes are mirrored in x: a turn about z goes the other way round, and x of the place changes its sign.
TEST(figure, attachmentPointsComeIntoTheProgramsSpace)
{
    RMV2_FILE_DATA data;
    data.lods.resize(2);
    data.lods[1].groups.resize(2);
    data.lods[1].groups[0].attachments = {{"grip", {0, -1, 0, 2, 1, 0, 0, 3, 0, 0, 1, 4}, 7}};
    data.lods[1].groups[1].attachments = {{"grip", {}, 8}, {"bad", {std::numeric_limits<float>::quiet_NaN()}, 9}};
    const std::vector<scene_point> points = pointsOf(data);
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0].number, 7u);
    EXPECT_EQ(points[0].place * glm::vec4(1, 0, 0, 1), glm::vec4(-2, 2, 4, 1));
    EXPECT_TRUE(points[1].is_damaged && points[1].place == glm::mat4(1));
}

} // namespace

} // namespace korvane::test
