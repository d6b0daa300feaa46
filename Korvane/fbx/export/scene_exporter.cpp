#include "Korvane/fbx/export/scene_exporter.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/services/version.h"
#include "Korvane/fbx/export/dae_export.h"

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace korvane
{

namespace
{

bool isCollada(std::string_view path)
{
    return endsWithIgnoringCase(path, ".dae");
}

} // namespace

bool hasExportExtension(std::string_view path)
{
    return isCollada(path) || endsWithIgnoringCase(path, ".fbx");
}

std::string exportingLine(std::string_view file_name, std::size_t number, std::size_t total)
{
    return "Exporting File: " + displayText(file_name) + "   (" + std::to_string(number) + " / " +
           std::to_string(total) + " )";
}

std::string exportedLine(std::size_t count)
{
    return "Done. Files Exported: " + std::to_string(count);
}

scene_exporter::scene_exporter(const export_scene& scene, export_options options, print_port print)
    : m_scene(scene)
    , m_options(std::move(options))
    , m_print(std::move(print))
{
}

scene_exporter::~scene_exporter() = default;

bool scene_exporter::save(const std::string& path, const export_take* take, failure& why)
{
    const bool is_collada = isCollada(path);
    m_print(std::string(program_name) + (is_collada ? " Collada exchange version " : " FBX exchange version ") +
            std::string(program_version) + "\n");
    const std::string format =
        is_collada ? "Collada file format version 1.4.1\n\n" : "FBX file format version 7.4.0\n\n";
    std::vector<std::byte> bytes;
    std::string text;
    if (is_collada)
    {
        if (!m_dae)
            m_dae = std::make_unique<dae_export>(m_scene, m_options);
        text = m_dae->text(take);
    }
    else
    {
        if (!m_fbx)
            m_fbx = std::make_unique<fbx_export>(m_scene, m_options);
        bytes = m_fbx->file(take);
        if (bytes.empty())
        {
            m_print(format);
            m_print("\n\nAn error occurred while saving the scene...\n");
            return fail(why, failure_kind::unsupported, "the scene is larger than the 4 GiB of an FBX file", path);
        }
    }
    failure reason;
    const auto content = is_collada ? std::as_bytes(std::span(text)) : std::span<const std::byte>(bytes);
    if (writeWholeFile(path, content, reason))
    {
        m_print(format);
        return true;
    }
    m_print("Call to FbxExporter::Initialize() failed.\n");
    m_print("Error returned: " + describe(reason) + "\n\n");
    return fail(why, reason.kind, reason.what, reason.path);
}

} // namespace korvane
