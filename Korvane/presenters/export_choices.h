#pragma once

// What is chosen in the dialog of exports, what is said of it, and the job that comes of it. What most people want is
// chosen at first, and what was chosen is remembered. For the thread that owns the configuration.

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/user_prompt.h"
#include "Korvane/document/open_files.h"
#include "Korvane/jobs/export_job.h"
#include "Korvane/jobs/model_snapshot.h"
#include "Korvane/presenters/animation_rows.h"
#include "Korvane/scene/loaded_scene.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

class export_choices
{
public:
    enum class mode
    {
        animated,
        bind_pose
    };
    enum class texture_form
    {
        as_found,
        dds,
        png
    };
    static constexpr std::array<std::string_view, 2> mode_names{"[ANIMATION+model+skeleton]",
                                                                "[Models+Skeleton In Bind Pose]"};
    static constexpr std::array<std::string_view, 3> formats{".fbx", ".dae", ".glb"};
    static constexpr std::array<std::string_view, 3> texture_names{
        "Named as the model does, not copied", "Copied as DDS files", "Copied as PNG pictures, normal maps blue"};

    // What is shown is what is exported; the scene, if there is one, knows its skeletons. Configuration
    // and document outlive this; the folder is where exports go at first.
    export_choices(shared_config& config, const open_files& open, const scene_pointer& scene,
                   const std::string& default_folder);

    mode chosenMode() const { return m_mode; }
    void setMode(mode chosen) { m_mode = chosen; }
    int format() const { return m_format; } // a position in formats; -1: none
    void setFormat(int position);
    texture_form textures() const { return m_textures; }
    bool hasTextures() const { return !isGltf(); } // a glTF file always holds pictures of them
    void setTextures(texture_form chosen) { m_textures = chosen; }
    const std::string& folder() const { return m_folder; }
    void setFolder(const std::string& path) { m_folder = path; }
    const std::string& name() const { return m_name; } // of the bind pose's file, or of one file with all animations
    void setName(const std::string& name) { m_name = name; }
    std::size_t lodCount() const { return m_lods; }
    std::size_t lod() const { return m_lod; } // 0: all, else counted from 1
    void setLod(std::size_t chosen) { m_lod = chosen; }
    bool isFullSpan() const { return m_is_full_span; }
    void setFullSpan(bool is_full) { m_is_full_span = is_full; }
    // Several animations in one file, where the format can hold them.
    bool isTogether() const { return m_is_together; }
    void setTogether(bool is_together) { m_is_together = is_together; }
    bool canBeTogether() const;

    bool hasSpan() const { return m_mode == mode::animated && !canBeTogether(); } // glTF has none
    bool hasName() const { return m_mode == mode::bind_pose || (canBeTogether() && m_is_together); }
    // The skeletons of what is open, as far as the archives have them: whose animations are listed.
    struct skeleton
    {
        std::string id;
        std::string label;   // file name
        std::string operand; // for the job
    };
    const std::vector<skeleton>& skeletons() const { return m_skeletons; }
    int chosenSkeleton() const { return m_skeleton; } // -1: there is none
    void chooseSkeleton(int position) { m_skeleton = position; }

    // Why it cannot begin, for the person; nothing: it can.
    std::optional<std::string> problem(std::size_t animation_count) const;
    // What will be written, while there is no problem.
    std::string plan(std::size_t animation_count) const;
    // The path of the game that finds an animation; empty: another archive overrides it.
    std::string operandOf(const pack_file_node& entry) const;
    // Without a problem. The animations live as long as their archives, which the document holds.
    export_job_options options(std::span<const pack_file_node* const> animations) const;
    void remember();

private:
    std::string extension() const { return std::string(formats[static_cast<std::size_t>(m_format)]); }
    bool isGltf() const { return m_format >= 0 && extension() == ".glb"; }
    std::string filePath() const; // of the one file that has a name
    void findSkeletons(const std::vector<std::string>& ids);
    void recall();
    void addAnimation(const pack_file_node& entry, export_job_options& wanted) const;

    shared_config& m_config;
    const open_files& m_open;
    scene_pointer m_scene; // of a definition
    std::vector<skeleton> m_skeletons;
    std::vector<std::string> m_missing; // ids that the archives do not have
    int m_skeleton = -1;
    std::size_t m_lods = 1;
    mode m_mode = mode::animated;
    int m_format = 0;
    texture_form m_textures = texture_form::png;
    std::string m_folder;
    std::string m_name;
    std::size_t m_lod = 1;
    bool m_is_full_span = false;
    bool m_is_together = true;
};

// "Export STATIC model...": what is shown, without bones.
[[nodiscard]] std::vector<file_filter> staticExportFilters();
// Of a path that was picked: a known ending that was typed wins over the one that the picker put behind it.
[[nodiscard]] std::string staticExportPath(const std::string& picked);
[[nodiscard]] export_job_options staticExport(const open_files& open, const std::string& output,
                                              const std::string& config_path);

// What came of an export, for the status and, when something failed, for the lines below it.
[[nodiscard]] std::string exportStatus(const work_progress& now);            // while it runs
[[nodiscard]] std::string exportSummary(const export_job_result& result);    // "Done. Files Exported: 3"
[[nodiscard]] std::string exportComplaints(const export_job_result& result); // empty: there are none
// The question what becomes of textures that were kept.
[[nodiscard]] std::string keptTexturesText(const export_job_options& options, const export_job_result& result);

} // namespace korvane
