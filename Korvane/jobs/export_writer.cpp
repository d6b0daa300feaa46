#include "Korvane/jobs/export_writer.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/services/version.h"
#include "Korvane/jobs/export_pictures.h"
#include "Korvane/jobs/export_textures.h"
#include "Korvane/jobs/output_paths.h"

#include <filesystem>
#include <vector>

namespace korvane
{

namespace
{

bool isBinaryGltf(std::string_view path)
{
    return endsWithIgnoringCase(path, ".glb");
}

} // namespace

bool isGltfFile(std::string_view path)
{
    return isBinaryGltf(path) || endsWithIgnoringCase(path, ".gltf");
}

void export_writer::say(const std::string& text) const
{
    const std::size_t begin = text.find_first_not_of('\n'), end = text.find_last_not_of('\n') + 1;
    tell(m_work.log, displayText(text.substr(begin, end - begin)));
}

// Pictures of a ".gltf" file lie in a folder beside it: of several files in that of the model's name.
bool export_writer::prepare(const std::string& path, failure& why)
{
    if (m_fbx || m_gltf)
        return true;
    const std::filesystem::path folder = toPath(path).parent_path();
    if (!isGltfFile(path))
    {
        if (!extractExportTextures(m_source, m_options, m_scene, m_work, m_result, why))
            return false;
        m_fbx = std::make_unique<scene_exporter>(
            m_scene, export_options{!m_options.is_without_materials, texturePathsFrom(folder, m_result.textures)},
            [this](const std::string& text) { say(text); });
        return true;
    }
    gltf_pictures pictures;
    picture_place place{m_options.texture_folder, toUtf8(folder)};
    if (place.folder.empty() && !isBinaryGltf(path))
        place.folder = toUtf8(
            folder / toPath(exportName(isFolder(m_options.output) ? exportName(m_options.model, "") : path, ".gltf") +
                            "_textures"));
    if (!m_options.is_without_materials &&
        !makeExportPictures(m_source, m_options, m_scene, place, m_work, pictures, m_result, why))
        return false;
    m_gltf = std::make_unique<gltf_export>(m_scene, pictures, !m_options.is_without_materials);
    return true;
}

bool export_writer::writeGltf(const std::string& path, std::span<const gltf_take> takes, failure& why) const
{
    say(std::string(program_name) + " glTF exchange version " + std::string(program_version));
    if (isBinaryGltf(path))
    {
        const std::vector<std::byte> bytes = m_gltf->glb(takes);
        return bytes.empty()
                   ? fail(why, failure_kind::unsupported, "the scene is larger than the 4 GiB of a glTF file", path)
                   : writeWholeFile(path, bytes, why);
    }
    // The text last: a reader never meets one whose numbers are those of another file.
    std::filesystem::path bin_path = toPath(path);
    bin_path.replace_extension(".bin");
    std::vector<std::byte> bin;
    const std::string text = m_gltf->gltf(takes, toUtf8(bin_path.filename()), bin);
    return (bin.empty() || writeWholeFile(toUtf8(bin_path), bin, why)) && writeWholeFile(path, text, why);
}

bool export_writer::write(const std::string& path, std::span<const gltf_take> takes, const std::string& line,
                          bool& is_written, failure& why)
{
    if (!prepare(path, why))
        return false;
    if (m_work.isStopped())
        return true;
    tell(m_work.log, line);
    if (!(m_gltf ? writeGltf(path, takes, why) : m_fbx->save(path, takes.empty() ? nullptr : &takes.front().take, why)))
        return false;
    is_written = true;
    return true;
}

} // namespace korvane
