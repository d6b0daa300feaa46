#include "Korvane/presenters/export_choices.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/path_pattern.h"
#include "Korvane/archives/skeleton_entries.h"
#include "Korvane/fbx/export/scene_exporter.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::array<std::string_view, 3> texture_words{"found", "dds", "png"};
constexpr std::string_view all_lods_word = "all", span_word = "span", apart_word = "apart";
constexpr std::size_t most_complaints = 3; // as the dialog has room for

template <std::size_t size>
int positionOf(const std::array<std::string_view, size>& words, std::string_view word)
{
    const auto found = std::find(words.begin(), words.end(), word);
    return found == words.end() ? -1 : static_cast<int>(found - words.begin());
}

std::vector<std::string> skeletonIds(const open_files& open, const scene_pointer& scene)
{
    std::vector<std::string> ids;
    const auto add = [&ids](const std::string& id) {
        if (!id.empty() && std::find(ids.begin(), ids.end(), id) == ids.end())
            ids.push_back(id);
    };
    if (open.shown() == open_files::kind::model)
        add(open.model().file()->data().skeleton_id);
    else if (scene)
        for (const scene_rig& rig : scene->rigs)
            add(rig.id);
    return ids;
}

// What the job exports: the file, and the edits that it does not have yet.
void nameShown(const open_files& open, export_job_options& wanted)
{
    if (open.model().isEdited())
        wanted.edited = snapshotOf(*open.model().file());
    if (open.shown() == open_files::kind::model)
    {
        wanted.model = open.model().file()->path();
        return;
    }
    wanted.model = open.definition().path();
    wanted.choice = open.definition().choice();
}

} // namespace

export_choices::export_choices(shared_config& config, const open_files& open, const scene_pointer& scene,
                               const std::string& default_folder)
    : m_config(config)
    , m_open(open)
    , m_scene(open.shown() == open_files::kind::definition ? scene : nullptr)
    , m_folder(default_folder)
    , m_name(open.shownName())
{
    if (open.shown() == open_files::kind::model)
        m_lods = open.model().file()->data().lods.size();
    else if (scene)
        for (const scene_part& part : scene->parts)
            m_lods = std::max(m_lods, part.model->lods.size());
    findSkeletons(skeletonIds(open, scene));
    if (m_skeletons.empty())
        m_mode = mode::bind_pose;
    recall();
}

// A path counts once: of several archives' copies the last one's is read.
void export_choices::findSkeletons(const std::vector<std::string>& ids)
{
    const path_tree none;
    const path_tree& tree = m_open.game()->archives() ? *m_open.game()->archives() : none;
    for (const std::string& id : ids)
    {
        const std::size_t count = m_skeletons.size();
        for (const pack_file_node* const entry : skeletonEntries(tree, id))
        {
            const std::string operand = game_path::ofInternal(entry->internalPath()).text();
            const auto isSame = [&operand](const skeleton& each) { return each.operand == operand; };
            if (std::none_of(m_skeletons.begin(), m_skeletons.end(), isSame))
                m_skeletons.push_back({id, displayText(entry->fileName()), operand});
        }
        if (m_skeletons.size() == count)
            m_missing.push_back(id);
    }
    m_skeleton = m_skeletons.empty() ? -1 : 0;
}

void export_choices::recall()
{
    if (const std::vector<std::string> folder = m_config.get(config_keys::export_folder); !folder.empty())
        m_folder = folder.front();
    for (const std::string& word : m_config.get(config_keys::export_settings))
        if (const int format = positionOf(formats, "." + word); format >= 0)
            m_format = format;
        else if (const int textures = positionOf(texture_words, word); textures >= 0)
            m_textures = static_cast<texture_form>(textures);
        else if (word == all_lods_word)
            m_lod = 0;
        else if (word == span_word)
            m_is_full_span = true;
        else if (word == apart_word)
            m_is_together = false;
}

void export_choices::remember()
{
    std::vector<std::string> words = {extension().substr(1),
                                      std::string(texture_words[static_cast<std::size_t>(m_textures)])};
    if (m_lod == 0)
        words.emplace_back(all_lods_word);
    if (m_is_full_span)
        words.emplace_back(span_word);
    if (!m_is_together)
        words.emplace_back(apart_word);
    m_config.set(config_keys::export_folder, {m_folder});
    m_config.set(config_keys::export_settings, words);
}

void export_choices::setFormat(int position)
{
    m_format = position >= 0 && static_cast<std::size_t>(position) < formats.size() ? position : -1;
}

bool export_choices::canBeTogether() const
{
    return m_mode == mode::animated && isGltf();
}

std::optional<std::string> export_choices::problem(std::size_t animation_count) const
{
    if (m_format < 0)
        return "ERROR, COMBOBOX";
    if (m_mode == mode::animated && m_skeletons.empty())
        return m_missing.empty() ? "What is open names no skeleton. Export it in its bind pose."
                                 : "There is no skeleton \"" + displayText(m_missing.front()) +
                                       "\" in the archives. Add the game or the mod that it comes from with "
                                       "Tools > Setup Game Folders.";
    if (!toPath(m_folder).is_absolute())
        return "Choose a folder for the files, with its drive.";
    if (std::string reason; hasName() && (m_name.empty() || !relativeDiskPath(m_name + extension(), reason)))
        return m_name.empty() ? "Type a name for the file." : "A file cannot have this name: " + reason + ".";
    if (hasName() && m_name.find_first_of("/\\") != std::string::npos)
        return "A name is wanted, without folders.";
    if (m_mode == mode::animated && animation_count == 0)
        return "Choose one or more animations.";
    return std::nullopt;
}

std::string export_choices::plan(std::size_t animation_count) const
{
    if (hasName())
        return "Writes " + displayText(fileName(filePath())) +
               (m_mode == mode::animated ? " with " + counted(animation_count, "animation") : std::string()) + ".";
    return "Writes " + counted(animation_count, "file") + ", named after the animation" +
           (animation_count == 1 ? "." : "s.");
}

std::string export_choices::filePath() const
{
    const std::string suffix = m_mode == mode::bind_pose ? std::string(bind_pose_suffix) : std::string();
    return toUtf8((toPath(m_folder) / toPath(m_name + suffix + extension())).make_preferred());
}

export_job_options export_choices::options(std::span<const pack_file_node* const> animations) const
{
    export_job_options wanted;
    nameShown(m_open, wanted);
    wanted.known = m_scene;
    wanted.keeps_textures = true;
    wanted.output = hasName() ? filePath() : toUtf8((toPath(m_folder) / "").make_preferred());
    if (m_skeleton >= 0 && static_cast<std::size_t>(m_skeleton) < m_skeletons.size())
        wanted.skeleton = m_skeletons[static_cast<std::size_t>(m_skeleton)].operand;
    if (m_mode == mode::animated)
        for (const pack_file_node* const entry : animations)
            addAnimation(*entry, wanted);
    wanted.lod = m_lod == 0 ? std::nullopt : std::optional(m_lod - 1);
    if (hasTextures() && m_textures != texture_form::as_found)
        wanted.texture_folder = toUtf8((toPath(m_folder) / "textures").make_preferred());
    if (hasTextures() && m_textures == texture_form::png)
    {
        wanted.texture_form = picture_kind::png;
        wanted.makes_normals_blue = true;
    }
    wanted.folder_format = extension().substr(1);
    wanted.is_full_span = hasSpan() && m_is_full_span;
    wanted.spared = {m_config.path()};
    return wanted;
}

std::string export_choices::operandOf(const pack_file_node& entry) const
{
    const path_node* const counting = m_open.game()->archives()->findStored(entry.internalPath());
    return counting != nullptr && counting->file() == &entry ? game_path::ofInternal(entry.internalPath()).text()
                                                             : std::string();
}

void export_choices::addAnimation(const pack_file_node& entry, export_job_options& wanted) const
{
    if (std::string operand = operandOf(entry); !operand.empty())
        return wanted.animations.push_back(std::move(operand));
    wanted.animations.push_back(animation_choice{&entry}.place());
    wanted.copies[wanted.animations.back()] = &entry;
}

std::vector<file_filter> staticExportFilters()
{
    return {{"FBX (*.fbx)", "*.fbx"},
            {"Collada (*.dae)", "*.dae"},
            {"glTF, one file (*.glb)", "*.glb"},
            {"glTF, with files (*.gltf)", "*.gltf"}};
}

std::string staticExportPath(const std::string& picked)
{
    const std::string typed = picked.substr(0, picked.rfind('.'));
    return isExportFile(picked) && isExportFile(typed) ? typed : picked;
}

export_job_options staticExport(const open_files& open, const std::string& output, const std::string& config_path)
{
    export_job_options wanted;
    nameShown(open, wanted);
    wanted.output = output;
    wanted.is_without_bones = true;
    wanted.spared = {config_path};
    return wanted;
}

std::string exportStatus(const work_progress& now)
{
    const bool is_file = now.what.empty() || now.what.starts_with("Exporting File");
    return (is_file ? "Exportint files  " : "Copying textures  ") + std::to_string(now.done) + " / " +
           std::to_string(now.total);
}

std::string exportSummary(const export_job_result& result)
{
    if (result.is_stopped)
        return "Stopped. " + exportedLine(result.files.size());
    return exportedLine(result.files.size()) +
           (result.failed.empty() ? "" : "; " + std::to_string(result.failed.size()) + " failed");
}

std::string exportComplaints(const export_job_result& result)
{
    std::string text;
    for (std::size_t i = 0; i < std::min(result.failed.size(), most_complaints); ++i)
        text += displayText(describe(result.failed[i].why)) + "\r\n";
    if (result.failed.size() > most_complaints)
        text += "... and " + std::to_string(result.failed.size() - most_complaints) + " more (see log.txt)\r\n";
    const auto missing = std::count_if(result.textures.begin(), result.textures.end(),
                                       [](const auto& texture) { return texture.second.empty(); });
    if (missing > 0)
        text += counted(static_cast<std::size_t>(missing), "texture") + " could not be found (see log.txt)\r\n";
    if (!result.kept_textures.empty())
        text += counted(result.kept_textures.size(), "texture") + " beside the files differ and were kept\r\n";
    if (!result.warnings.empty())
        text += counted(result.warnings.size(), "warning") + " about the model (see log.txt)\r\n";
    return text;
}

std::string keptTexturesText(const export_job_options& options, const export_job_result& result)
{
    const std::size_t count = result.kept_textures.size();
    const bool is_one = count == 1;
    return counted(count, "texture") + " in " + displayText(options.texture_folder) + (is_one ? " is" : " are") +
           " not as the game has " + (is_one ? "it" : "them") + ", the first is " +
           displayText(fileName(result.kept_textures.front().path)) + ". " + (is_one ? "It" : "They") +
           " may have been painted on, and " + (is_one ? "was" : "were") + " kept.\r\n\r\nReplace with the game's?";
}

} // namespace korvane
