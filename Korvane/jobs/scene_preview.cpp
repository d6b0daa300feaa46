#include "Korvane/jobs/scene_preview.h"

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/game/game_path.h"
#include "Korvane/models/rmv2_file.h"
#include "Korvane/scene/scene_loader.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint64_t most_texture_bytes = std::uint64_t{256} << 20;

// What a loader and a document call the file. A copy that another archive hides is named with its archive.
std::string nameOfFile(const game_file& file, const game_data& game)
{
    const pack_file_node* const entry = file.entry();
    if (entry == nullptr)
        return file.diskPath();
    const bool counts = game.find(entry->internalPath()).entry() == entry;
    return (counts ? game_path::ofInternal(entry->internalPath())
                   : game_path::ofCopy(entry->archive().name, entry->internalPath()))
        .text();
}

texture_reader smallTextures(const std::shared_ptr<const game_data>& game, const std::string& around,
                             std::uint32_t most_pixels, const work_port& work)
{
    return [game, around, most_pixels, stop = work.stop](const std::string& internal_path, memory_file& bytes,
                                                         file_place&, failure& why) {
        if (stop.stop_requested())
            return fail(why, failure_kind::refused, "stopped", internal_path);
        const game_file found = game->findAround(internal_path, game_path(around));
        if (!found)
            return fail(why, failure_kind::not_found, "there is no such texture", internal_path);
        memory_file whole;
        if (!found.read(whole, why, most_texture_bytes))
            return false;
        bytes = withoutLargeLevels(std::move(whole), most_pixels);
        return true;
    };
}

bool tooLarge(const std::string& what, failure& why)
{
    return fail(why, failure_kind::refused, what + ": that is too much for a small picture");
}

bool checkSize(const std::vector<figure_model>& models, const game_data& game, failure& why)
{
    std::uint64_t bytes = 0;
    for (const figure_model& model : models)
        if (const game_file file = game.find(model.path); file.entry() != nullptr)
            bytes += file.entry()->size();
    return bytes <= most_drawn_bytes || tooLarge("its models have " + grouped(bytes) + " bytes", why);
}

std::size_t trianglesOf(const RMV2_FILE_DATA& model)
{
    std::size_t count = 0;
    if (!model.lods.empty())
        for (const group_data& group : model.lods[0].groups)
            count += group.store.indices.size() / 3;
    return count;
}

// Null with the reason, or without one when it was stopped.
scene_pointer loadScene(const game_file& file, const std::string& name, const game_data& game, scene_loader& loader,
                        failure& why)
{
    if (isDefinitionPath(file.path()))
    {
        open_definition definition;
        if (!definition.open(name, why, game))
            return nullptr;
        const std::vector<figure_model> models = definition.figure();
        if (models.empty())
            return fail(why, failure_kind::refused, "the definition names no models"), nullptr;
        return checkSize(models, game, why) ? loader.loadFigure(models, name) : nullptr;
    }
    const auto model = std::make_shared<rmv2_file>();
    memory_file bytes;
    if (!file.read(bytes, why, most_drawn_bytes) || !model->openFromMemory(std::move(bytes), file.path(), why))
        return nullptr;
    if (const std::size_t count = trianglesOf(model->data()); count > most_drawn_triangles)
        return tooLarge(grouped(count) + " triangles", why), nullptr;
    return loader.loadModel(std::shared_ptr<const RMV2_FILE_DATA>(model, &model->data()), name);
}

std::string textOf(const loaded_scene& scene)
{
    const glm::vec3 size = scene.bounds.extent();
    const auto shown = [](float value) {
        char text[32];
        std::snprintf(text, sizeof text, "%.2f", static_cast<double>(value));
        return std::string(text);
    };
    std::string text = (scene.parts.size() > 1 ? counted(scene.parts.size(), "model") + ", " : std::string()) +
                       counted(scene.triangles, "triangle") + ", box " + shown(size.x) + " x " + shown(size.y) + " x " +
                       shown(size.z);
    if (scene.failed > 0)
        text += "; " + counted(scene.failed, "model") + " could not be read";
    if (!scene.missing_textures.empty())
        text += "; " + counted(scene.missing_textures.size(), "texture") + " missing";
    return text;
}

bool drawScene(const game_file& file, const std::shared_ptr<const game_data>& game, scene_pictures& pictures,
               std::uint32_t width, std::uint32_t height, const work_port& work, scene_preview& made, failure& why)
{
    const std::string name = nameOfFile(file, *game);
    scene_loader loader(*game, {{}, work.stop, {}, {}});
    loader.setTextureReader(smallTextures(game, name, std::max(width, height), work));
    const scene_pointer scene = loadScene(file, name, *game, loader, why);
    if (!scene || work.isStopped())
        return false;
    if (scene->parts.empty())
        return fail(why, failure_kind::not_found, "none of its models can be read");
    if (scene->triangles > most_drawn_triangles)
        return tooLarge(grouped(scene->triangles) + " triangles", why);
    if (scene->triangles == 0)
        return fail(why, failure_kind::refused, "it has no triangles");
    made.text = textOf(*scene);
    return pictures.draw(scene, width, height, work, made.pixels, why);
}

} // namespace

bool isDrawable(const game_file& file)
{
    const std::string path = file.path();
    return isDefinitionPath(path) || endsWithIgnoringCase(path, ".rigid_model_v2");
}

scene_preview drawPreview(const game_file& file, const std::shared_ptr<const game_data>& game, scene_pictures& pictures,
                          std::uint32_t width, std::uint32_t height, const work_port& work)
{
    scene_preview made;
    failure why;
    try
    {
        if (drawScene(file, game, pictures, width, height, work, made, why) || work.isStopped())
            return made;
        why.path.clear(); // whoever shows it says it
        made.text += (made.text.empty() ? "No picture: " : ". No picture: ") + displayText(describe(why));
    }
    catch (const std::bad_alloc&)
    {
        made.text = "No picture: there is not enough memory for it.";
    }
    made.pixels = {};
    return made;
}

memory_file withoutLargeLevels(memory_file dds, std::uint32_t most_pixels)
{
    // docs/formats/dds.md, "Header": where height, width and the number of mip maps stand
    constexpr std::size_t height_at = 12, width_at = 16, mips_at = 28;
    dds_image image;
    failure no_dds;
    if (!readDds(dds.bytes(), image, no_dds) || image.array_size != 1)
        return dds;
    std::uint32_t first = 0;
    while (first + 1 < image.mip_count &&
           std::max(image.subresource(0, first).width, image.subresource(0, first).height) > most_pixels)
        ++first;
    if (first == 0)
        return dds;
    const auto offsetOf = [&dds, &image](std::uint32_t level) {
        return static_cast<std::size_t>(image.subresource(0, level).bytes.data() - dds.bytes().data());
    };
    const dds_subresource& last = image.subresource(0, image.mip_count - 1);
    const std::size_t head = offsetOf(0), kept = offsetOf(first);
    const std::size_t size = offsetOf(image.mip_count - 1) + last.bytes.size() - kept;
    memory_file smaller(head + size);
    const std::span<std::byte> target = smaller.mutableBytes();
    std::memcpy(target.data(), dds.bytes().data(), head);
    std::memcpy(target.data() + head, dds.bytes().data() + kept, size);
    const auto write = [&target](std::size_t at, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            target[at + i] = static_cast<std::byte>(value >> 8 * i & 255);
    };
    write(height_at, image.subresource(0, first).height);
    write(width_at, image.subresource(0, first).width);
    write(mips_at, image.mip_count - first);
    return smaller;
}

} // namespace korvane
