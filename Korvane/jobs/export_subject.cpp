#include "Korvane/jobs/export_subject.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/scene/scene_loader.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

namespace korvane
{

namespace
{

class subject_loader
{
public:
    subject_loader(game_source& source, const export_job_options& options, const work_port& work,
                   export_subject& subject)
        : m_source(source)
        , m_options(options)
        , m_work(work)
        , m_subject(subject)
    {
    }

    bool load(failure& why);

private:
    // What of the scene moves what a rig does.
    struct rig_bones
    {
        std::size_t first = 0;
        std::size_t count = 0;  // 0: the skeleton is missing
        std::int32_t hook = -1; // then all stands in the bind pose, on this bone; below zero: on none
    };

    bool loadModel(failure& why);
    bool loadSkeleton(const std::string& id, std::shared_ptr<const anim_data>& skeleton, failure& why);
    bool findSkeleton(const std::string& id, std::shared_ptr<const anim_data>& skeleton, failure& why);
    bool loadFigure(failure& why);
    bool takeEdits(const game_data& game, const std::vector<figure_model>& models, scene_loader& loader, failure& why);
    scene_pointer figureScene(failure& why);
    bool addRig(const loaded_scene& figure, std::size_t number, failure& why);
    bool addPart(const loaded_scene& figure, const scene_part& part, failure& why);
    bool addLevels(const RMV2_FILE_DATA& model, std::size_t lod, const mesh_place& place, failure& why);
    void warnOfLevels(const loaded_scene& figure);

    game_source& m_source;
    const export_job_options& m_options;
    const work_port& m_work;
    export_subject& m_subject;
    std::vector<rig_bones> m_rigs; // of the figure
};

void noteMismatch(const work_port& work, const std::string& what, const std::string& named, const anim_data& skeleton)
{
    if (!named.empty() && !equalsIgnoringCase(named, skeleton.skeleton_name))
        tell(work.log, displayText(what) + " is made for the skeleton " + displayText(named) + ", not for " +
                           displayText(skeleton.skeleton_name));
}

bool subject_loader::load(failure& why)
{
    const std::vector<std::string>& warnings = m_subject.scene.warnings;
    if (!(isDefinitionPath(m_options.model) ? loadFigure(why) : loadModel(why)))
        return false;
    for (const std::string& warning : warnings)
        tell(m_work.log, displayText(warning));
    return true;
}

bool subject_loader::loadModel(failure& why)
{
    rmv2_file model;
    if (m_options.edited ? !openSnapshot(*m_options.edited, model, why)
                         : !openModel(m_source, m_options.model, model, m_work.log, why))
        return false;
    const RMV2_FILE_DATA& data = model.data();
    std::shared_ptr<const anim_data> skeleton;
    if (!loadSkeleton(data.skeleton_id, skeleton, why))
        return false;
    mesh_place place;
    if (skeleton)
    {
        noteMismatch(m_work, m_options.model, data.skeleton_id, *skeleton);
        if (!addBones(*skeleton, m_subject.scene, why))
        {
            if (why.path.empty())
                why.path = m_options.skeleton.empty() ? data.skeleton_id : m_options.skeleton;
            return false;
        }
        place.bone_count = skeleton->bones.size();
        m_subject.rigs.push_back({skeleton->skeleton_name, skeleton, 0});
    }
    if (addLevels(data, m_options.lod.value_or(0), place, why))
        return true;
    why.path = m_options.model;
    return false;
}

// The one that is given, or the model's own when there is a reason for one; else none.
bool subject_loader::loadSkeleton(const std::string& id, std::shared_ptr<const anim_data>& skeleton, failure& why)
{
    if (m_options.skeleton.empty())
        return (!m_options.with_bones && m_options.animations.empty()) || findSkeleton(id, skeleton, why);
    skeleton = loadAnim(m_source, m_options.skeleton, anim_depth::skeleton, why);
    return skeleton != nullptr;
}

bool subject_loader::findSkeleton(const std::string& id, std::shared_ptr<const anim_data>& skeleton, failure& why)
{
    if (id.empty())
        return fail(why, failure_kind::refused, "the model names no skeleton: one has to be given", m_options.model);
    const std::shared_ptr<const game_data> game = m_source.archivesOrDisk(why);
    if (!game)
        return false;
    const game_file found = game->findSkeleton(id, m_options.model);
    if (!found)
        return fail(why, failure_kind::not_found,
                    "the model's skeleton \"" + displayText(id) +
                        "\" was not found: " + (game->hasArchives() ? "no archive has it" : "there are no archives") +
                        "; its file can be given",
                    m_options.model);
    memory_file bytes;
    anim_file file;
    if (!found.read(bytes, why))
        return false;
    file.openFromMemory(std::move(bytes), found.path());
    if (!file.loadSkeleton({}, why))
        return false;
    skeleton = std::make_shared<const anim_data>(file.takeData());
    return true;
}

// Whichever of the figure's models they belong to: by its path in the game, or as its file in a mod folder.
bool subject_loader::takeEdits(const game_data& game, const std::vector<figure_model>& models, scene_loader& loader,
                               failure& why)
{
    if (!m_options.edited)
        return true;
    const game_path edited(m_options.edited->path);
    for (const figure_model& model : models)
    {
        std::error_code ignored;
        const std::string disk_path = edited.isInternal() ? std::string() : game.find(model.path).diskPath();
        if (edited.isInternal() ? normalInternalPath(edited.internalPath()) != model.path
                                : disk_path.empty() || !std::filesystem::equivalent(toPath(disk_path),
                                                                                    toPath(edited.diskPath()), ignored))
            continue;
        const auto file = std::make_shared<rmv2_file>();
        if (!openSnapshot(*m_options.edited, *file, why))
            return false;
        loader.setModel(model.path, std::shared_ptr<const RMV2_FILE_DATA>(file, &file->data()));
        return true;
    }
    return true;
}

// Only what hangs where is asked of the scene: textures are looked for later, and only those that are exported.
scene_pointer subject_loader::figureScene(failure& why)
{
    open_definition definition;
    const std::shared_ptr<const game_data> game = m_source.archives(why);
    if (!game || !definition.open(m_options.model, why, *game))
        return nullptr;
    definition.choose(m_options.choice);
    std::vector<std::string>& warnings = m_subject.scene.warnings;
    for (const std::string& problem : definition.problems())
        warnings.push_back(problem);
    scene_loader loader(*game, {m_work.progress, m_work.stop, {}, {}});
    loader.setTextureReader([](const std::string&, memory_file&, file_place&, failure&) { return true; });
    if (!m_options.skeleton.empty())
    {
        std::shared_ptr<const anim_data> skeleton = loadAnim(m_source, m_options.skeleton, anim_depth::skeleton, why);
        if (!skeleton)
            return nullptr;
        loader.setSkeleton(std::move(skeleton), m_options.skeleton);
    }
    const std::vector<figure_model> models = definition.figure();
    if (!takeEdits(*game, models, loader, why))
        return nullptr;
    scene_pointer scene = loader.loadFigure(models, m_options.model, m_options.lod.value_or(0), m_options.known);
    if (!scene) // stopped
        return nullptr;
    warnings.insert(warnings.end(), scene->problems.begin(), scene->problems.end());
    if (models.empty())
        fail(why, failure_kind::refused, "the definition names no models", m_options.model);
    else if (scene->parts.empty())
        fail(why, failure_kind::not_found,
             "none of the definition's " + std::to_string(models.size()) +
                 " models can be read: " + (warnings.empty() ? std::string("they are empty") : warnings.back()),
             m_options.model);
    return why ? nullptr : scene;
}

bool subject_loader::loadFigure(failure& why)
{
    const scene_pointer figure = figureScene(why);
    if (!figure)
        return m_work.isStopped() && !why;
    for (std::size_t i = 0; i < figure->rigs.size() && !m_options.is_without_bones; ++i)
        if (!addRig(*figure, i, why))
            return false;
    for (const scene_part& part : figure->parts)
        if (!addPart(*figure, part, why))
            return false;
    warnOfLevels(*figure);
    return true;
}

// A figure is whole at every level: models without it take their coarsest.
void subject_loader::warnOfLevels(const loaded_scene& figure)
{
    const scene_part* first = nullptr;
    std::size_t count = 0;
    for (const scene_part& part : figure.parts)
        if (m_options.lod && part.lod < *m_options.lod && !part.model->lods.empty())
        {
            first = first == nullptr ? &part : first;
            ++count;
        }
    if (count > 0)
        m_subject.scene.warnings.push_back(std::to_string(count) + " of the " + counted(figure.parts.size(), "model") +
                                           (count == 1 ? " has" : " have") + " no LOD " +
                                           std::to_string(*m_options.lod) + ": the coarsest is taken, of " +
                                           first->model->path + " LOD " + std::to_string(first->lod));
}

bool subject_loader::addRig(const loaded_scene& figure, std::size_t number, failure& why)
{
    const scene_rig& rig = figure.rigs[number];
    export_scene& scene = m_subject.scene;
    rig_bones bones;
    if (rig.mount >= 0)
    {
        const rig_bones& mount = m_rigs[static_cast<std::size_t>(rig.mount)];
        bones.hook =
            mount.count == 0 ? mount.hook : static_cast<std::int32_t>(mount.first) + std::max(rig.mount_bone, 0);
    }
    if (rig.skeleton)
    {
        scene_part root;
        root.rig = static_cast<int>(number);
        const std::int32_t mount =
            bones.hook < 0 ? -1 : addMount(rig.id + "_mount", bones.hook, bindPlace(figure, root), scene);
        bones.first = scene.bones.size();
        bones.count = rig.skeleton->bones.size();
        if (!addBones(*rig.skeleton, scene, why, mount))
        {
            why.path = rig.path;
            return false;
        }
        m_subject.rigs.push_back({rig.id, rig.skeleton, bones.first});
    }
    m_rigs.push_back(bones);
    return true;
}

bool subject_loader::addPart(const loaded_scene& figure, const scene_part& part, failure& why)
{
    mesh_place place;
    place.place = bindPlace(figure, part);
    if (part.rig >= 0 && !m_options.is_without_bones)
    {
        const rig_bones& bones = m_rigs[static_cast<std::size_t>(part.rig)];
        place.first_bone = bones.first;
        if (bones.count == 0)
            place.bone = bones.hook;
        else if (part.bone < 0)
            place.bone_count = bones.count;
        else
            place.bone = static_cast<std::int32_t>(bones.first) + part.bone;
    }
    if (part.model->lods.empty() || addLevels(*part.model->data, part.lod, place, why))
        return true;
    why.path = part.model->path;
    return false;
}

bool subject_loader::addLevels(const RMV2_FILE_DATA& model, std::size_t lod, const mesh_place& place, failure& why)
{
    if (m_options.lod)
        return addMeshes(model, lod, place, m_subject.scene, why);
    for (std::size_t level = 0; level < model.lods.size(); ++level)
        if (!addMeshes(model, level, place, m_subject.scene, why))
            return false;
    return true;
}

} // namespace

bool loadExportSubject(game_source& source, const export_job_options& options, const work_port& work,
                       export_subject& subject, failure& why)
{
    return subject_loader(source, options, work, subject).load(why);
}

bool loadExportTake(game_source& source, const export_job_options& options, const export_subject& subject,
                    const std::string& animation, take_span span, const work_port& work, export_take& take,
                    failure& why)
{
    if (subject.rigs.empty())
        return fail(why, failure_kind::refused, "there is no skeleton for it to move", animation);
    const auto copy = options.copies.find(animation);
    const auto data = copy != options.copies.end() ? loadAnim(*copy->second, anim_depth::animation, why)
                                                   : loadAnim(source, animation, anim_depth::animation, why);
    if (!data)
        return false;
    std::vector<const export_rig*> moved;
    for (const export_rig& rig : subject.rigs)
        if (equalsIgnoringCase(rig.id, data->skeleton_name))
            moved.push_back(&rig);
    if (moved.empty())
    {
        moved.push_back(&subject.rigs.front());
        noteMismatch(work, animation, data->skeleton_name, *moved.front()->skeleton);
    }
    export_take whole;
    for (const export_rig* rig : moved)
    {
        export_take own;
        if (!makeTake(data, *rig->skeleton, span, own, why, rig->first_bone))
        {
            why.path = animation;
            return false;
        }
        own.rotations.insert(own.rotations.begin(), std::make_move_iterator(whole.rotations.begin()),
                             std::make_move_iterator(whole.rotations.end()));
        own.translations.insert(own.translations.begin(), std::make_move_iterator(whole.translations.begin()),
                                std::make_move_iterator(whole.translations.end()));
        whole = std::move(own);
    }
    take = std::move(whole);
    return true;
}

} // namespace korvane
