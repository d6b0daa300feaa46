#include "Korvane/cli/render_scene.h"

#include "Korvane/document/open_definition.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/models/rmv2_file.h"
#include "Korvane/scene/scene_loader.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

bool prepareLoader(cli_context& context, const render_subject& subject, scene_loader& loader, failure& why)
{
    if (subject.skeleton.empty())
        return true;
    std::shared_ptr<const anim_data> skeleton = loadAnim(context.game(), subject.skeleton, anim_depth::skeleton, why);
    if (!skeleton)
        return false;
    loader.setSkeleton(std::move(skeleton), subject.skeleton);
    return true;
}

scene_loader sceneLoader(cli_context& context, const game_data& game)
{
    work_port work;
    work.log = [&context](const std::string& line) { context.note(line); };
    return scene_loader(game, std::move(work));
}

// All models of a definition, out of the archives.
scene_pointer loadDefinition(cli_context& context, const render_subject& subject, failure& why)
{
    open_definition definition;
    const std::shared_ptr<const game_data> game = context.game().archives(why);
    if (!game || !definition.open(subject.file, why, *game))
        return nullptr;
    for (const std::string& problem : definition.problems())
        context.note(problem);
    const std::vector<figure_model> models = definition.figure();
    scene_loader loader = sceneLoader(context, *game);
    if (!prepareLoader(context, subject, loader, why))
        return nullptr;
    scene_pointer scene = loader.loadFigure(models, subject.file, subject.lod);
    if (models.empty())
        fail(why, failure_kind::refused, "the definition names no models", subject.file);
    else if (scene->parts.empty())
        fail(why, failure_kind::not_found,
             "none of the definition's " + std::to_string(models.size()) + " models can be drawn", subject.file);
    return why ? nullptr : scene;
}

scene_pointer loadModel(cli_context& context, const render_subject& subject, failure& why)
{
    // Archives that were named serve the textures of a model on the disk, too.
    const std::shared_ptr<const game_data> game =
        context.data_folders.empty() ? context.game().gameFor(subject.file, why) : context.game().archives(why);
    const auto file = std::make_shared<rmv2_file>();
    if (!game || !openModel(context.game(), subject.file, *file, context.notePort(), why))
        return nullptr;
    if (const std::size_t count = file->data().lods.size(); subject.lod >= count)
        return fail(why, failure_kind::refused,
                    "the model has no LOD " + std::to_string(subject.lod) + ": it has " + std::to_string(count)),
               nullptr;
    scene_loader loader = sceneLoader(context, *game);
    if (!prepareLoader(context, subject, loader, why))
        return nullptr;
    return loader.loadModel(std::shared_ptr<const RMV2_FILE_DATA>(file, &file->data()), subject.file, subject.lod);
}

bool hasSkeleton(const loaded_scene& scene, const render_subject& subject, failure& why)
{
    const std::vector<scene_rig>& rigs = scene.rigs;
    const auto has_given = [&](const scene_rig& rig) { return rig.path == subject.skeleton; };
    if (!subject.skeleton.empty() && std::none_of(rigs.begin(), rigs.end(), has_given))
        return fail(why, failure_kind::refused, "nothing that is drawn has the skeleton " + subject.skeleton,
                    subject.file);
    if (std::any_of(rigs.begin(), rigs.end(), [](const scene_rig& rig) { return rig.skeleton != nullptr; }))
        return true;
    if (rigs.empty())
        return fail(why, failure_kind::refused, "it names no skeleton, so nothing of it can be moved", subject.file);
    return fail(why, failure_kind::not_found, rigs.front().problem + "; give --skeleton SKEL", subject.file);
}

} // namespace

scene_pointer loadSubject(cli_context& context, const render_subject& subject, failure& why)
{
    scene_pointer scene =
        isDefinitionPath(subject.file) ? loadDefinition(context, subject, why) : loadModel(context, subject, why);
    return scene && (!subject.needs_skeleton || hasSkeleton(*scene, subject, why)) ? scene : nullptr;
}

} // namespace korvane
