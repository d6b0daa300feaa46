#include "Korvane/presenters/texture_extraction_panel.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::array<std::string_view, 3> form_names = {"dds", "png", "tga"};
constexpr std::string_view flat_name = "flat";

// The wanted textures with the paths that a save would write.
std::vector<wanted_texture> wantedOf(const rmv2_file& model)
{
    std::vector<wanted_texture> wanted;
    const game_path path(model.path());
    addWantedTextures(model.data(), wanted, path.diskPath());
    return wanted;
}

} // namespace

texture_extraction_panel::texture_extraction_panel(shared_config& config) : m_config(config)
{
    if (const std::vector<std::string> folders = config.get(config_keys::texture_folder); !folders.empty())
        m_folder = existingPathAnyCase(folders.front());
    for (const std::string& choice : config.get(config_keys::texture_choices))
        if (choice == flat_name)
            m_is_flat = true;
        else if (const auto name = std::find(form_names.begin(), form_names.end(), choice); name != form_names.end())
            m_form = static_cast<form>(name - form_names.begin());
}

void texture_extraction_panel::setFolder(const std::string& folder)
{
    m_folder = folder;
    remember();
}

void texture_extraction_panel::setFlat(bool is_flat)
{
    m_is_flat = is_flat;
    remember();
}

void texture_extraction_panel::setWrittenAs(form wanted)
{
    m_form = wanted;
    remember();
}

void texture_extraction_panel::remember()
{
    std::vector<std::string> choices = {std::string(form_names[static_cast<std::size_t>(m_form)])};
    if (m_is_flat)
        choices.emplace_back(flat_name);
    if (!m_folder.empty())
        m_config.set(config_keys::texture_folder, {toLower(m_folder)});
    m_config.set(config_keys::texture_choices, choices);
}

std::string texture_extraction_panel::copyPaths(const rmv2_file& model)
{
    m_wanted = wantedOf(model);
    return texturePathTable(model.data(), model.path()).text();
}

texture_extraction_panel::request texture_extraction_panel::requestFor(const open_model& model,
                                                                       std::shared_ptr<const game_data> game,
                                                                       bool overwrites) const
{
    request made{std::move(game), m_wanted, {m_folder, m_is_flat, std::nullopt, overwrites, false}};
    if (made.wanted.empty() && model.hasModel())
        made.wanted = wantedOf(*model.file());
    if (m_form != form::dds)
        made.options.form = m_form == form::png ? picture_kind::png : picture_kind::targa;
    return made;
}

std::string texture_extraction_panel::folderText() const
{
    return m_folder.empty() ? "No folder is chosen yet." : "Into " + displayText(m_folder);
}

std::string texture_extraction_panel::countText(const texture_extraction_result& result,
                                                const texture_extraction_options& options)
{
    std::string text = extractedText(result.files.size(), options.form);
    const std::size_t nowhere = result.missing.size() + result.empty.size();
    if (nowhere > 0)
        text += " " + counted(nowhere, "texture is", "textures are") + " nowhere to be found.";
    if (!result.failures.empty())
        text += " " + grouped(result.failures.size()) + " failed.";
    if (!result.kept.empty())
        text += " " + counted(result.kept.size(), "file that differs was", "files that differ were") + " left alone.";
    if (result.is_stopped)
        text += " Stopped.";
    if (!result.files.empty())
        text += " They are in " + displayText(options.folder);
    return text;
}

std::string texture_extraction_panel::missingText(const texture_extraction_result& result)
{
    std::string lines;
    for (const std::string& path : result.missing)
        lines += displayText(path) + ": in no archive, and not on the disk around the model\r\n";
    for (const std::string& path : result.empty)
        lines += displayText(path) + ": there, but without a byte\r\n";
    for (const failure& why : result.failures)
        lines += displayText(describe(why)) + "\r\n";
    return lines;
}

std::string texture_extraction_panel::keptQuestion(const texture_extraction_result& result)
{
    if (result.kept.empty())
        return {};
    return counted(result.kept.size(), "file", "files") + " in the folder " +
           (result.kept.size() == 1 ? "differs" : "differ") + " from the game's and may be your own work. Write over " +
           (result.kept.size() == 1 ? "it" : "them") + " all the same?\r\n\r\n" +
           displayText(result.kept.front().path) + (result.kept.size() == 1 ? "" : "\r\nand others");
}

} // namespace korvane
