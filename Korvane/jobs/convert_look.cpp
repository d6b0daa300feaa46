#include "Korvane/jobs/convert_look.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/fbx/container/fbx_document.h"
#include "Korvane/fbx/convert/anim_template.h"
#include "Korvane/fbx/convert/bone_matching.h"

#include <algorithm>

namespace korvane
{

namespace
{

bool readFbxScene(game_source& source, const std::string& path, fbx_scene& scene, failure& why)
{
    memory_file bytes;
    fbx_document document;
    if (source.read(path, bytes, why) && readFbx(bytes.bytes(), document, why) &&
        readScene(std::move(document), scene, why))
        return true;
    why.path = path;
    return false;
}

void lookAtScene(const fbx_scene& scene, convert_look& look)
{
    look.frame_rate = scene.frames_per_second;
    for (const fbx_stack& stack : scene.stacks)
    {
        fbx_ticks first = stack.begin, last = stack.end;
        const bool has_keys = scene.keySpan(stack, first, last);
        look.takes.push_back(
            {displayText(stack.name), std::max(scene.seconds(last) - scene.seconds(first), 0.0), has_keys});
    }
    for (const std::size_t node : boneNodes(scene))
        look.fbx_bones.push_back(displayText(scene.nodes[node].name));
}

void lookAtBones(const std::vector<std::string>& names, const fbx_scene& scene,
                 const std::optional<std::string>& prefix, convert_look& look)
{
    const std::vector<std::size_t> nodes = boneNodes(scene);
    const bone_matching matching = matchBones(names, scene, nodes, prefix);
    look.prefix = matching.prefix;
    std::vector<std::string> missing;
    std::vector<convert_look::bone> matched;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (matching.nodes[i] == fbx_none)
            missing.push_back(displayText(names[i]));
        else
            matched.push_back({displayText(names[i]), displayText(scene.nodes[matching.nodes[i]].name), {}});
    const std::vector<std::string> near_surplus = nearestBones(missing, matching.surplus);
    for (std::size_t i = 0; i < missing.size(); ++i)
        look.bones.push_back({missing[i], {}, near_surplus[i]});
    const std::vector<std::string> near_missing = nearestBones(matching.surplus, missing);
    for (std::size_t i = 0; i < near_missing.size(); ++i)
        look.bones.push_back({{}, matching.surplus[i], near_missing[i]});
    look.bones.insert(look.bones.end(), matched.begin(), matched.end());
}

} // namespace

convert_look lookAtConversion(game_source& source, const convert_job_options& options)
{
    convert_look look;
    look.fbx = options.fbx;
    look.fbx_stamp = stampOf(options.fbx);
    look.template_anim = options.template_anim;
    fbx_scene scene;
    const bool has_scene = !options.fbx.empty() && readFbxScene(source, options.fbx, scene, look.fbx_failure);
    if (has_scene)
        lookAtScene(scene, look);
    if (options.template_anim.empty())
        return look;
    const auto anim = loadTemplate(source, options.template_anim, look.template_failure);
    std::optional<std::vector<std::string>> selection;
    if (!anim || !loadSelection(source, options.bone_table, selection, look.table_failure))
        return look;
    look.version = anim->version;
    look.skeleton_name = displayText(anim->skeleton_name);
    std::vector<std::string> names;
    for (const anim_template::bone& bone : makeTemplate(*anim, selection).bones)
        names.push_back(bone.name);
    if (has_scene)
        lookAtBones(names, scene, options.prefix, look);
    return look;
}

} // namespace korvane
