#include "Korvane/scene/scene_rigs.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/scene/scene_geometry.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

std::string withoutArchives(const std::string& id, const game_data& game)
{
    return "the skeleton \"" + displayText(id) + "\" was not found" +
           (game.hasArchives() ? ": no archive has it" : ": there are no archives") +
           ", so the model stays in its bind pose";
}

// The file counts in space mirrored in x, as it does for vertices and bones.
scene_point pointOf(const attachment_point& source)
{
    scene_point point{source.name, glm::mat4(1), false, source.kept};
    point.is_damaged = !std::all_of(source.matrix.begin(), source.matrix.end(), [](float v) { return isUsable(v); });
    if (point.is_damaged)
        return point;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
        {
            const float mirror = (row == 0) != (column == 0) ? -1.0f : 1.0f;
            point.place[column][row] = mirror * source.matrix[static_cast<std::size_t>(row * 4 + column)];
        }
    return point;
}

} // namespace

scene_rig rigOf(anim_data skeleton, std::string id, std::string path)
{
    scene_rig rig;
    rig.id = std::move(id);
    rig.path = std::move(path);
    const std::string name = "the skeleton \"" + displayText(rig.path.empty() ? rig.id : rig.path) + "\" ";
    std::string replaced;
    for (anim_bone& bone : skeleton.bones)
        if (!isUsable(bone.translation) || !isUsable(bone.rotation))
        {
            if (replaced.empty())
                replaced = displayText(bone.name);
            bone.translation = isUsable(bone.translation) ? bone.translation : glm::vec3(0);
            bone.rotation = isUsable(bone.rotation) ? bone.rotation : glm::quat(1, 0, 0, 0);
        }
    const auto say = [&](const std::string& text) { rig.problem += (rig.problem.empty() ? name : "; ") + text; };
    if (!replaced.empty())
        say("places bones at what is no usable number, \"" + replaced + "\" first; they stay on their parents");
    if (failure why; !checkParents(skeleton, why))
        say(why.what + "; such bones hang on nothing");
    if (skeleton.bones.size() > max_rig_bones)
        say("has " + std::to_string(skeleton.bones.size()) + " bones; those from number " +
            std::to_string(max_rig_bones) + " (\"" + displayText(skeleton.bones[max_rig_bones].name) +
            "\") on stay in the bind pose");
    rig.skeleton = std::make_shared<const anim_data>(std::move(skeleton));
    return rig;
}

scene_rig readRig(const std::string& id, const game_data& game, const std::string& around)
{
    const game_file found = game.findSkeleton(id, game_path(around));
    scene_rig rig;
    rig.id = id;
    if (!found)
    {
        rig.problem = withoutArchives(id, game);
        return rig;
    }
    failure why;
    memory_file bytes;
    anim_file file;
    const file_place place = file_place::of(found); // first: what is written from now on is a change
    if (found.read(bytes, why))
    {
        file.openFromMemory(std::move(bytes), found.path());
        if (file.loadSkeleton({}, why))
            rig = rigOf(file.takeData(), id, found.path());
    }
    rig.path = found.path();
    rig.place = place;
    if (!rig.skeleton)
        rig.problem = "the skeleton cannot be read, so the model stays in its bind pose: " + describe(why);
    return rig;
}

int findBone(const anim_data& skeleton, std::string_view name)
{
    const std::size_t count = std::min(skeleton.bones.size(), max_rig_bones);
    const auto end = skeleton.bones.begin() + static_cast<std::ptrdiff_t>(count);
    const auto found =
        std::find_if(skeleton.bones.begin(), end, [name](const anim_bone& bone) { return bone.name == name; });
    return found == end ? -1 : static_cast<int>(found - skeleton.bones.begin());
}

int boneOf(const scene_point& point, const anim_data& skeleton)
{
    const int named = findBone(skeleton, point.name);
    if (named >= 0)
        return named;
    return point.number < std::min(skeleton.bones.size(), max_rig_bones) ? static_cast<int>(point.number) : -1;
}

std::vector<scene_point> pointsOf(const RMV2_FILE_DATA& data)
{
    std::vector<scene_point> points;
    for (const lod_data& lod : data.lods)
    {
        for (const group_data& group : lod.groups)
            for (const attachment_point& each : group.attachments)
                if (std::none_of(points.begin(), points.end(),
                                 [&](const scene_point& known) { return known.name == each.name; }))
                    points.push_back(pointOf(each));
        if (!points.empty())
            break;
    }
    return points;
}

glm::mat4 bindPlace(const loaded_scene& scene, const scene_part& part)
{
    glm::mat4 place = part.bone >= 0 ? part.weapon : glm::mat4(1);
    for (int rig = part.rig; rig >= 0; rig = scene.rigs[static_cast<std::size_t>(rig)].mount)
        place = scene.rigs[static_cast<std::size_t>(rig)].mount_place * place;
    return place;
}

std::string missingBones(const std::vector<scene_group>& groups, const scene_rig& rig)
{
    if (!rig.skeleton)
        return {};
    const std::size_t bones = rig.skeleton->bones.size();
    std::size_t vertices = 0;
    std::uint32_t last = 0;
    for (const scene_group& group : groups)
    {
        if (!group.has_weights)
            continue;
        for (const vertex_record& vertex : group.store->vertices.records())
        {
            bool is_beyond = false;
            for (std::size_t i = 0; i < vertex.bones.size(); ++i)
                if (vertex.weights[i] > 0 && vertex.bones[i] >= bones)
                {
                    is_beyond = true;
                    last = std::max(last, vertex.bones[i]);
                }
            vertices += is_beyond ? 1u : 0u;
        }
    }
    if (vertices == 0)
        return {};
    return counted(vertices, "vertex names", "vertices name") + " bones, up to number " + std::to_string(last) +
           ", that the skeleton \"" + displayText(rig.id) + "\" with its " + counted(bones, "bone") +
           " does not have: there the model stays in the bind pose";
}

} // namespace korvane
