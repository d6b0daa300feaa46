#include "Korvane/scene/scene_loader.h"

#include "EASY_GUI/services/parallel.h"
#include "Korvane/models/rmv2_file.h"
#include "Korvane/scene/figure_rigs.h"
#include "Korvane/scene/scene_rigs.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

scene_group sceneGroup(const group_data& group)
{
    scene_group result;
    result.store = &group.store;
    result.has_alpha = (group.alpha_mode_field.isEdited() ? group.alpha_mode_field.u32() : group.alpha_mode) == 1;
    result.has_weights = group.header.vertex_format == 3 || group.header.vertex_format == 4;
    for (std::size_t slot = 0; slot < texture_slot_count; ++slot)
    {
        const auto found =
            std::find_if(group.textures.begin(), group.textures.end(),
                         [slot](const texture_entry& entry) { return entry.type == texture_slot_types[slot]; });
        if (found != group.textures.end())
            result.texture_paths[slot] = found->currentPath();
    }
    return result;
}

std::shared_ptr<const scene_model> modelOf(const scene_pointer& scene, const std::string& path)
{
    if (scene)
        for (const scene_part& part : scene->parts)
            if (part.model->path == path)
                return part.model;
    return nullptr;
}

struct measured_group
{
    model_bounds bounds;
    triangle_count count;
    group_boxes boxes;
};

std::vector<measured_group> measureGroups(const std::vector<scene_group>& groups)
{
    constexpr std::size_t indices_worth_a_thread = std::size_t{1} << 18;
    std::size_t indices = 0;
    for (const scene_group& group : groups)
        indices += group.store->indices.size();
    std::vector<measured_group> measured(groups.size());
    parallelFor(groups.size(), threadsFor(indices / indices_worth_a_thread), [&](std::size_t i) {
        measured[i].count = measureGroup(*groups[i].store, measured[i].bounds);
        measured[i].boxes = boxesOf(*groups[i].store, groups[i].has_weights);
    });
    return measured;
}

// For another level: the rest says where it hangs.
scene_part withoutTextures(const scene_part& part)
{
    scene_part fresh = part;
    fresh.textures.clear();
    fresh.triangles = 0;
    fresh.boxes.reset();
    return fresh;
}

texture_reader readerAround(const game_data& game, const std::string& path)
{
    return [game, around = game_path(path)](const std::string& internal_path, memory_file& bytes, file_place& place,
                                            failure& why) {
        const game_file found = game.findAround(internal_path, around);
        if (!found)
            return fail(why, failure_kind::not_found, "there is no such texture", internal_path);
        file_place now = file_place::of(found); // first: what is written from now on is a change
        if (!found.read(bytes, why))
            return false;
        place = std::move(now);
        return true;
    };
}

texture_finder finderAround(const game_data& game, const std::string& path)
{
    return [game, around = game_path(path)](const std::string& internal_path, file_place& place) {
        const game_file found = game.findAround(internal_path, around);
        if (found)
            place = file_place::of(found);
        return static_cast<bool>(found);
    };
}

// Not read yet, so that the model is shown at once; but where only reading tells whether it is there. Null: it is not.
std::shared_ptr<const scene_texture> findTexture(const loaded_scene& scene, const std::string& path)
{
    file_place place;
    if (scene.find_texture)
        return scene.find_texture(path, place)
                   ? std::make_shared<const scene_texture>(path, scene.read_texture, std::move(place))
                   : nullptr;
    memory_file bytes;
    failure why;
    if (scene.read_texture(path, bytes, place, why))
        return std::make_shared<const scene_texture>(path, scene.read_texture, std::move(bytes), std::move(place));
    return why.kind == failure_kind::not_found
               ? nullptr
               : std::make_shared<const scene_texture>(path, scene.read_texture, std::move(place));
}

} // namespace

std::shared_ptr<const scene_model> sceneModel(std::shared_ptr<const RMV2_FILE_DATA> data, const std::string& path)
{
    auto model = std::make_shared<scene_model>();
    model->path = path;
    model->skeleton_id = data->skeleton_id;
    model->has_skeleton = !model->skeleton_id.empty();
    model->points = pointsOf(*data);
    model->lods.reserve(data->lods.size());
    for (const lod_data& lod : data->lods)
        std::transform(lod.groups.begin(), lod.groups.end(), std::back_inserter(model->lods.emplace_back()),
                       &sceneGroup);
    model->data = std::move(data);
    return model;
}

scene_loader::scene_loader(game_data game, work_port work) : m_game(std::move(game)), m_work(std::move(work)) {}

void scene_loader::report(loaded_scene& scene, std::string line) const
{
    tell(m_work.log, line);
    scene.problems.push_back(std::move(line));
}

loaded_scene scene_loader::begin(const std::string& path) const
{
    loaded_scene scene;
    scene.path = path;
    scene.read_texture = m_reader ? m_reader : readerAround(m_game, path);
    if (!m_reader)
        scene.find_texture = finderAround(m_game, path);
    return scene;
}

scene_pointer scene_loader::loadModel(std::shared_ptr<const scene_model> model, const std::string& path,
                                      std::size_t lod, int bone, const scene_pointer& former)
{
    m_known.clear();
    if (former)
        takeOver(*former);
    loaded_scene scene = begin(path);
    if (model)
    {
        scene_part part;
        part.bone = bone;
        if (model->has_skeleton)
        {
            part.rig = 0;
            scene.rigs.push_back(m_skeleton ? givenRig(model->skeleton_id) : findRig(model->skeleton_id, path, former));
            if (!scene.rigs[0].problem.empty())
                report(scene, scene.rigs[0].problem);
        }
        part.model = std::move(model);
        addPart(scene, std::move(part), lod);
    }
    return m_work.isStopped() ? nullptr : std::make_shared<const loaded_scene>(std::move(scene));
}

scene_pointer scene_loader::loadModel(std::shared_ptr<const RMV2_FILE_DATA> model, const std::string& path,
                                      std::size_t lod, int bone)
{
    return loadModel(model ? sceneModel(std::move(model), path) : nullptr, path, lod, bone, nullptr);
}

// What hangs where is known when all models are there: a weapon may come before the body.
scene_pointer scene_loader::loadFigure(const std::vector<figure_model>& models, const std::string& path,
                                       std::size_t lod, const scene_pointer& former)
{
    m_known.clear();
    if (former)
        takeOver(*former);
    loaded_scene scene = begin(path);
    const std::size_t count = std::min(models.size(), max_parts);
    std::vector<figure_member> members;
    for (std::size_t i = 0; i < count && !m_work.isStopped(); ++i)
    {
        m_work.report(i, count, models[i].path);
        const bool is_given = m_given_model && m_given_model->path == models[i].path;
        std::shared_ptr<const scene_model> model = is_given ? m_given_model : modelOf(former, models[i].path);
        if (model || (model = readModel(scene, models[i].path)))
            members.push_back({std::move(model), &models[i]});
    }
    figure_rigs rigs([&](const std::string& id) { return findRig(id, path, former); });
    std::vector<scene_part> parts = rigs.assemble(members);
    scene.rigs = rigs.rigs();
    for (const std::string& problem : rigs.problems())
        report(scene, problem);
    for (scene_part& part : parts)
        if (!m_work.isStopped())
            addPart(scene, std::move(part), lod);
    if (count < models.size())
        report(scene, "the definition names " + std::to_string(models.size()) + " models; only the first " +
                          std::to_string(max_parts) + " are drawn");
    scene.failed = models.size() - scene.parts.size();
    return m_work.isStopped() ? nullptr : std::make_shared<const loaded_scene>(std::move(scene));
}

void scene_loader::takeOver(std::shared_ptr<const scene_texture> texture)
{
    if (texture)
        m_known.push_back({texture->path(), texture});
}

void scene_loader::takeOver(const loaded_scene& former)
{
    for (const scene_part& part : former.parts)
        for (const group_textures& group : part.textures)
            for (const std::shared_ptr<const scene_texture>& texture : group)
                takeOver(texture);
}

loaded_scene scene_loader::beginFrom(const loaded_scene& former)
{
    takeOver(former);
    loaded_scene scene;
    scene.path = former.path;
    scene.find_texture = former.find_texture;
    scene.read_texture = former.read_texture;
    scene.failed = former.failed;
    scene.rigs = former.rigs;
    for (const scene_rig& rig : scene.rigs) // was told when it was read
        if (!rig.problem.empty())
            scene.problems.push_back(rig.problem);
    return scene;
}

scene_pointer scene_loader::loadLevel(const loaded_scene& former, std::size_t lod)
{
    m_known.clear();
    loaded_scene scene = beginFrom(former);
    for (const scene_part& part : former.parts)
        addPart(scene, withoutTextures(part), lod);
    return m_work.isStopped() ? nullptr : std::make_shared<const loaded_scene>(std::move(scene));
}

scene_pointer scene_loader::exchangeTextures(const loaded_scene& former,
                                             const std::vector<std::shared_ptr<const scene_texture>>& fresh)
{
    m_known.clear();
    for (const std::shared_ptr<const scene_texture>& texture : fresh)
        takeOver(texture); // before the former ones: the first of a path counts
    loaded_scene scene = beginFrom(former);
    for (const scene_part& part : former.parts)
        addPart(scene, withoutTextures(part), part.lod);
    return m_work.isStopped() ? nullptr : std::make_shared<const loaded_scene>(std::move(scene));
}

// The names of functions in the first lines are what people search the log for; the line behind them names the model.
std::shared_ptr<const scene_model> scene_loader::readModel(loaded_scene& scene, const std::string& internal_path)
{
    const game_file found = m_game.find(internal_path);
    failure why;
    if (!found && !m_game.hasArchives())
        fail(why, failure_kind::not_found, "rigid_model::getFromInternalPath(): pack_file::sm_poPathTree == nullptr",
             internal_path);
    else if (!found)
    {
        report(scene, "render_variant::addRigidModelByInternalPath: pfn = nullptr");
        fail(why, failure_kind::not_found,
             m_game.archives()->find(internal_path) ? "this is a folder of the archives, not a model"
                                                    : "no archive holds this model",
             internal_path);
    }
    else
    {
        memory_file bytes;
        auto file = std::make_shared<rmv2_file>();
        if (found.read(bytes, why) && file->openFromMemory(std::move(bytes), internal_path, why))
            return sceneModel(std::shared_ptr<const RMV2_FILE_DATA>(file, &file->data()), internal_path);
    }
    report(scene, describe(why));
    return nullptr;
}

// What was found for the former scene, or not, is the same for this one.
scene_rig scene_loader::givenRig(const std::string& id) const
{
    return rigOf(*m_skeleton, m_skeleton->skeleton_name.empty() ? id : m_skeleton->skeleton_name, m_skeleton_path);
}

scene_rig scene_loader::findRig(const std::string& id, const std::string& around, const scene_pointer& former) const
{
    if (m_skeleton && equalsIgnoringCase(m_skeleton->skeleton_name, id))
        return givenRig(id);
    if (former)
        for (const scene_rig& one : former->rigs)
            if (one.id == id)
            {
                scene_rig rig = one;
                rig.mount = rig.mount_bone = -1;
                rig.mount_place = glm::mat4(1);
                return rig;
            }
    return readRig(id, m_game, around);
}

void scene_loader::addPart(loaded_scene& scene, scene_part fresh, std::size_t lod)
{
    scene_part& part = scene.parts.emplace_back(std::move(fresh));
    part.lod = std::min(lod, std::max<std::size_t>(part.model->lods.size(), 1) - 1);
    const std::vector<scene_group>& groups = part.groups();
    const glm::mat4 place = bindPlace(scene, part);
    part.textures.resize(groups.size());
    std::vector<measured_group> measured = measureGroups(groups);
    for (std::size_t i = 0; i < groups.size(); ++i)
    {
        const triangle_count& count = measured[i].count;
        scene.bounds.add(measured[i].bounds, place);
        part.triangles += count.drawn;
        if (count.dropped > 0)
            report(scene, part.model->path + ": group " + std::to_string(i) + ": " + std::to_string(count.dropped) +
                              " triangles name vertices that do not exist and are not drawn");
    }
    auto boxes = std::make_shared<std::vector<group_boxes>>();
    for (measured_group& group : measured)
        boxes->push_back(std::move(group.boxes));
    part.boxes = std::move(boxes);
    if (part.rig >= 0 && part.bone < 0)
        if (const std::string missing = missingBones(groups, scene.rigs[static_cast<std::size_t>(part.rig)]);
            !missing.empty())
            report(scene, part.model->path + ": " + missing);
    scene.triangles += part.triangles;
    loadTextures(scene, part);
}

// The end at the first group without its two main textures is deliberate: such a model is not unpacked with its
// textures, and searching on for every group would only take time.
void scene_loader::loadTextures(loaded_scene& scene, scene_part& part)
{
    const std::vector<scene_group>& groups = part.groups();
    for (std::size_t i = 0; i < groups.size() && !m_work.isStopped(); ++i)
        for (std::size_t slot = 0; slot < texture_slot_count; ++slot)
        {
            const bool is_needed = slot == diffuse_slot || slot == normal_slot;
            if (loadTexture(scene, groups[i].texture_paths[slot], part.textures[i][slot]) || !is_needed)
                continue;
            report(scene, part.model->path + ": group " + std::to_string(i) +
                              ": diffuse or normal map was not found; no further textures are loaded");
            return;
        }
}

// False: there is no such file. A damaged one is found.
bool scene_loader::loadTexture(loaded_scene& scene, const std::string& path,
                               std::shared_ptr<const scene_texture>& texture)
{
    if (path.empty())
        return false;
    const auto known =
        std::find_if(m_known.begin(), m_known.end(), [&](const known_texture& one) { return one.path == path; });
    if (known != m_known.end())
    {
        texture = known->texture;
        return true;
    }
    texture = findTexture(scene, path);
    if (texture)
        m_known.push_back({path, texture});
    else
        scene.missing_textures.push_back(path);
    return texture != nullptr;
}

} // namespace korvane
