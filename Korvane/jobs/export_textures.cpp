#include "Korvane/jobs/export_textures.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/jobs/texture_extraction.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace korvane
{

namespace
{

// Spellings that differ in case mean one texture.
std::vector<wanted_texture> exportedTextures(const export_scene& scene, const std::string& model)
{
    std::vector<wanted_texture> wanted;
    const auto add = [&](const std::string& spelled, bool is_normal_map) {
        const std::string path = normalInternalPath(spelled);
        if (path.empty())
            return;
        const auto known =
            std::find_if(wanted.begin(), wanted.end(), [&path](const wanted_texture& one) { return one.path == path; });
        if (known != wanted.end())
            known->is_normal_map = known->is_normal_map || is_normal_map;
        else
            wanted.push_back({path, is_normal_map, {}});
    };
    for (const export_material& material : scene.materials)
    {
        add(material.diffuse_path, false);
        add(material.normal_path, true);
    }
    if (const std::string disk_path = game_path(model).diskPath(); !disk_path.empty())
        for (wanted_texture& texture : wanted)
            texture.models.push_back(disk_path);
    return wanted;
}

// With '/', and without a drive or a root in front: the path is to be relative.
std::string slashed(std::string path)
{
    std::replace(path.begin(), path.end(), '\\', '/');
    if (path.size() > 1 && path[1] == ':')
        path.erase(0, 2);
    return path.substr(std::min(path.find_first_not_of('/'), path.size()));
}

texture_extraction_options extractionOf(const export_job_options& options)
{
    texture_extraction_options how;
    how.folder = options.texture_folder;
    how.form = options.texture_form;
    how.makes_normals_blue = options.makes_normals_blue;
    how.turns_green = !options.keeps_normals_down;
    how.overwrites = !options.keeps_textures;
    how.spared = options.spared;
    how.spared.insert(how.spared.end(), {options.model, options.skeleton});
    how.spared.insert(how.spared.end(), options.animations.begin(), options.animations.end());
    return how;
}

void noteKept(const std::vector<wanted_texture>& wanted, texture_extraction_result& made, export_job_result& result)
{
    result.kept_textures.clear();
    for (extracted_texture& file : made.kept)
    {
        const std::string path = normalInternalPath(file.internal_path);
        for (const wanted_texture& texture : wanted)
            if (texture.path == path)
                result.kept_textures.push_back(texture);
        result.textures[path] = std::move(file.path);
    }
}

} // namespace

bool replaceKeptTextures(game_source& source, const export_job_options& options, const work_port& work,
                         export_job_result& result, failure& why)
{
    const std::shared_ptr<const game_data> game = source.archivesOrDisk(why);
    if (!game)
        return false;
    texture_extraction_options how = extractionOf(options);
    how.overwrites = true;
    texture_extraction_result made = extractTextures(*game, result.kept_textures, how, work);
    std::erase_if(result.kept_textures, [&made](const wanted_texture& texture) {
        return std::any_of(made.files.begin(), made.files.end(), [&texture](const extracted_texture& file) {
            return normalInternalPath(file.internal_path) == texture.path;
        });
    });
    if (!made.failures.empty())
        why = std::move(made.failures.front());
    return !why;
}

bool extractExportTextures(game_source& source, const export_job_options& options, const export_scene& scene,
                           const work_port& work, export_job_result& result, failure& why)
{
    if (options.texture_folder.empty() || options.is_without_materials)
        return true;
    const std::shared_ptr<const game_data> game = source.archivesOrDisk(why);
    if (!game)
        return false;
    const std::vector<wanted_texture> wanted = exportedTextures(scene, options.model);
    texture_extraction_result made = extractTextures(*game, wanted, extractionOf(options), work);
    for (const wanted_texture& texture : wanted)
        result.textures.emplace(texture.path, "");
    for (extracted_texture& file : made.files)
        result.textures[normalInternalPath(file.internal_path)] = std::move(file.path);
    noteKept(wanted, made, result);
    if (!result.kept_textures.empty())
        tell(work.log, counted(result.kept_textures.size(), "texture") + " beside the files differ and were kept");
    for (const std::vector<std::string>* lost : {&made.missing, &made.empty})
        for (const std::string& path : *lost)
            tell(work.log, displayText(path) + ": the texture was found nowhere");
    for (failure& each : made.failures)
    {
        if (each.kind == failure_kind::unwritable)
        {
            why = std::move(each);
            return false;
        }
        work.nameFailure(each);
    }
    return true;
}

std::function<std::string(const std::string& internal_path)>
texturePathsFrom(const std::filesystem::path& folder, const std::map<std::string, std::string>& textures)
{
    std::error_code ignored;
    const std::filesystem::path here = std::filesystem::current_path(ignored);
    return [&textures, here, from = (here / folder).lexically_normal()](const std::string& internal_path) {
        const auto found = textures.find(normalInternalPath(internal_path));
        if (found == textures.end() || found->second.empty())
            return slashed(displayText(internal_path));
        std::string path = toUtf8((here / toPath(found->second)).lexically_normal().lexically_proximate(from));
        std::replace(path.begin(), path.end(), '\\', '/'); // it may lie on another drive
        return path;
    };
}

} // namespace korvane
