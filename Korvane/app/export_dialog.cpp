#include "Korvane/app/export_dialog.h"

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/menu.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/text_dialogs.h"
#include "Korvane/app/tool_commands.h"
#include "Korvane/game/game_source.h"
#include "Korvane/jobs/output_paths.h"
#include "Korvane/scene/scene_loader.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace korvane
{

namespace
{

// "exports" beside the program, as its configuration is.
std::string defaultExportFolder(page_host& host)
{
    const std::string& config = host.config().path();
    return toUtf8(toPath(config.empty() ? config_file::defaultPath() : config).parent_path() / "exports");
}

} // namespace

export_dialog::export_dialog(page_host& host, export_choices& choices, folder_port open_folder)
    : dialog_box({"Export Model+Skeleton+ANIM", {640, 600}, true, helpContext(help_topic::blender)})
    , m_host(host)
    , m_choices(choices)
    , m_open_folder(std::move(open_folder))
    , m_search(host.thread(), {[this](const work_progress& now) {
                                   takeFound();
                                   if (isExporting() || m_is_ended)
                                       return;
                                   m_progress.setRange(static_cast<int>(std::max<std::size_t>(1, now.total)));
                                   m_progress.setPosition(static_cast<int>(now.done));
                                   m_status.setText("Seaching for compatible animations: " + grouped(now.done) + " / " +
                                                    grouped(now.total));
                               },
                               [&host](const std::string& line) { host.logLine(line); },
                               [this](const std::string& what) {
                                   m_host.logLine("export_dialog: the search ended early: " + what);
                                   endSearch(true);
                               }})
    , m_export(host.thread(), {[this](const work_progress& now) {
                                   m_progress.setRange(static_cast<int>(std::max<std::size_t>(1, now.total)));
                                   m_progress.setPosition(static_cast<int>(now.done));
                                   m_status.setText(exportStatus(now));
                               },
                               [&host](const std::string& line) { host.logLine(line); },
                               [this](const std::string& what) {
                                   failure why;
                                   fail(why, failure_kind::unreadable, "the export ended early: " + what);
                                   end(std::make_shared<export_job_result>(), false, why);
                               }})
{
}

std::optional<layout> export_dialog::onFill(failure& why)
{
    if (!createChoice() || !createOutput())
    {
        fail(why, failure_kind::refused,
             "a control could not be created (error " + std::to_string(GetLastError()) + ")");
        return std::nullopt;
    }
    fill();
    connectChoice();
    connectOutput();
    setDefault(m_export_button);
    setFirstFocus(m_choices.skeletons().empty() ? static_cast<control&>(m_mode) : m_filter);
    return rows();
}

bool export_dialog::createChoice()
{
    return m_mode_name.create(handle(), "&What:") && m_mode.create(handle(), control_export_mode) &&
           m_format_name.create(handle(), "File &type:") && m_format.create(handle(), control_export_format) &&
           m_skeleton_name.create(handle(), "S&keleton:") && m_skeleton.create(handle(), control_export_skeleton) &&
           m_filter_name.create(handle(), "&Find:") &&
           m_filter.create(handle(), control_export_filter, edit_box::access::editable) &&
           m_all.create(handle(), control_export_all, "&All") &&
           m_none.create(handle(), control_export_none, "N&one") &&
           m_list.create(handle(), control_export_list, m_rows, {true, false}) &&
           m_status.create(handle(), control_export_status) &&
           m_stop_search.create(handle(), control_export_stop, "Sto&p_Search") &&
           m_progress.create(handle(), control_export_progress);
}

bool export_dialog::createOutput()
{
    constexpr auto editable = edit_box::access::editable;
    return m_lod_name.create(handle(), "&Level of detail:") && m_lod.create(handle(), control_export_lod) &&
           m_texture_name.create(handle(), "Te&xtures:") && m_textures.create(handle(), control_export_textures) &&
           m_span.create(handle(), control_export_span, "Time span up to the last f&rame") &&
           m_together.create(handle(), control_export_together, "All an&imations in one file") &&
           m_folder_name.create(handle(), "Output fol&der:") &&
           m_folder.create(handle(), control_export_folder, editable) &&
           m_browse.create(handle(), control_export_browse, "&Browse...") &&
           m_name_name.create(handle(), "Output na&me:") && m_name.create(handle(), control_export_name, editable) &&
           m_message.create(handle(), control_export_message) &&
           m_open.create(handle(), control_export_open, "Open Folder") &&
           m_dump.create(handle(), control_export_dump, "Anim D&ump...") &&
           m_export_button.create(handle(), control_export_start, "&Export") &&
           m_close.create(handle(), control_dialog_close, "Close");
}

void export_dialog::fill()
{
    for (const std::string_view name : export_choices::mode_names)
        m_mode.add(name);
    for (const std::string_view name : export_choices::formats)
        m_format.add(name);
    for (const export_choices::skeleton& each : m_choices.skeletons())
        m_skeleton.add(each.label);
    m_lod.add("All, in the same file");
    for (std::size_t lod = 1; lod <= m_choices.lodCount(); ++lod)
        m_lod.add(std::to_string(lod) + (lod == 1 ? " (the finest)" : ""));
    for (const std::string_view name : export_choices::texture_names)
        m_textures.add(name);
    m_mode.select(static_cast<int>(m_choices.chosenMode()));
    m_format.select(m_choices.format());
    m_skeleton.select(m_choices.chosenSkeleton());
    m_skeleton.setEnabled(!m_choices.skeletons().empty());
    m_lod.select(static_cast<int>(m_choices.lod()));
    m_textures.select(static_cast<int>(m_choices.textures()));
    m_span.check(m_choices.isFullSpan());
    m_together.check(m_choices.isTogether());
    m_folder.setText(m_choices.folder());
    m_name.setText(m_choices.name());
    m_filter.setTip("Parts of names and folders; with several words each has to be there");
    m_span.setTip("The span that players loop ends with the last frame. Without, it ends in the middle, as the games' "
                  "own tools expect it; the keys are all there in any case");
    m_together.setTip("A glTF file can hold any number of animations");
    m_dump.setTip("Writes the chosen animation's rotations as a text");
    m_open.setTip("Shows the last file that was written in its folder");
}

void export_dialog::connectChoice()
{
    m_mode.onSelect = [this](int position) {
        m_choices.setMode(static_cast<export_choices::mode>(position));
        showChoices();
    };
    m_format.onSelect = [this](int position) {
        m_choices.setFormat(position);
        showChoices();
    };
    m_skeleton.onSelect = [this](int position) {
        const std::string former = m_choices.skeletons()[static_cast<std::size_t>(m_choices.chosenSkeleton())].id;
        m_choices.chooseSkeleton(position);
        if (m_choices.skeletons()[static_cast<std::size_t>(position)].id != former)
            search();
    };
    m_filter.onChange = [this] { filter(); };
    m_all.onClick = [this] {
        m_list.selectAll();
        chosen();
    };
    m_none.onClick = [this] {
        m_rows.chooseNone();
        showChosenRows();
        showTexts();
    };
    m_list.onSelect = [this](int) { chosen(); };
    m_list.onActivate = [this](int) { m_export_button.press(); };
    m_list.onContextMenu = [this](int, POINT on_screen) { showMenu(on_screen); };
    m_filter.onKey = [this](unsigned key) {
        return key == VK_RETURN ? (m_export_button.press(), true) : key == VK_DOWN && walkIn();
    };
    m_stop_search.onClick = [this] { m_found->stopSearch(); };
}

void export_dialog::connectOutput()
{
    m_lod.onSelect = [this](int position) { m_choices.setLod(static_cast<std::size_t>(position)); };
    m_textures.onSelect = [this](int position) {
        m_choices.setTextures(static_cast<export_choices::texture_form>(position));
    };
    m_span.onClick = [this](bool is_full) { m_choices.setFullSpan(is_full); };
    m_together.onClick = [this](bool is_together) {
        m_choices.setTogether(is_together);
        showChoices();
    };
    m_folder.onChange = [this] {
        m_choices.setFolder(m_folder.text());
        showTexts();
    };
    m_browse.onClick = [this] {
        const auto picked = m_host.prompt().pickFolder("Choose the folder for exported files");
        if (!picked)
            return;
        m_folder.setText(*picked);
        m_choices.setFolder(*picked);
        showTexts();
    };
    m_name.onChange = [this] {
        m_choices.setName(m_name.text());
        showTexts();
    };
    m_open.onClick = [this] { m_open_folder(m_last_written); };
    m_dump.onClick = [this] { dumpAnimation(m_host, focusedAnimation()); };
    m_export_button.onClick = [this] { start(); };
    m_close.onClick = [this] { onCancel(); };
}

layout export_dialog::rows()
{
    using way = layout::direction;
    layout all(way::down);
    all.setMargins(10);
    all.add(layout(way::across)
                .add(m_mode_name, aligned(1))
                .add(m_mode, share(2, 220))
                .add(m_format_name)
                .add(m_format, fixed(64))
                .add(m_skeleton_name)
                .add(m_skeleton, share(1, 120)));
    all.add(layout(way::across).add(m_filter_name, aligned(1)).add(m_filter, share()).add(m_all).add(m_none));
    all.add(m_list, share(1, 120));
    all.add(layout(way::across).add(m_status, share(1, 260)).add(m_stop_search));
    all.add(m_progress, fixed(8));
    all.add(layout(way::across)
                .add(m_lod_name, aligned(1))
                .add(m_lod, share(1, 120))
                .add(m_texture_name)
                .add(m_textures, share(2, 220)));
    all.add(layout(way::across).add(layout(way::across), aligned(1)).add(m_together).add(m_span).add(share()));
    all.add(layout(way::across).add(m_folder_name, aligned(1)).add(m_folder, share()).add(m_browse));
    all.add(layout(way::across).add(m_name_name, aligned(1)).add(m_name, share()));
    all.add(m_message, lines(4));
    all.add(layout(way::across)
                .add(m_open)
                .add(m_dump)
                .add(share())
                .add(m_export_button, aligned(2))
                .add(m_close, aligned(2)));
    return all;
}

void export_dialog::onShown()
{
    showChoices();
    if (m_choices.skeletons().empty())
        return m_stop_search.setEnabled(false);
    search();
}

void export_dialog::onDestroyed()
{
    m_search.stop();
    m_export.stop();
    dialog_box::onDestroyed();
}

void export_dialog::search()
{
    m_rows.restart();
    m_list.refresh();
    m_is_ended = false;
    m_stop_search.setEnabled(true);
    const auto& skeleton = m_choices.skeletons()[static_cast<std::size_t>(m_choices.chosenSkeleton())];
    m_found = std::make_shared<export_finder>(m_host.document().game()->archives(), skeleton.id);
    m_search.start([this, finder = m_found](const work_port& work) -> background_task::answer {
        finder->run(work);
        return [this] { takeFound(); };
    });
    showTexts();
}

void export_dialog::takeFound()
{
    const export_finder::finds found = m_found->take();
    if (!found.empty())
    {
        m_rows.add(found);
        m_list.refresh();
    }
    if (found.search != export_finder::state::searching)
        endSearch(found.search == export_finder::state::stopped);
}

void export_dialog::endSearch(bool is_stopped)
{
    if (std::exchange(m_is_ended, true))
        return;
    m_stop_search.setEnabled(false);
    if (isExporting() || !m_outcome.empty())
        return;
    m_progress.setPosition(0);
    m_status.setText(std::to_string(m_rows.animationCount()) + " compatible animatimations found. " +
                     (is_stopped ? "Stopped." : "Done!"));
    showTexts();
}

void export_dialog::filter()
{
    m_rows.setFilter(m_filter.text());
    m_list.refresh();
    showChosenRows();
    showTexts();
}

// From the filter into the list; what is chosen there stays.
bool export_dialog::walkIn()
{
    if (m_rows.rowCount() == 0)
        return true;
    m_list.focus();
    if (m_list.selectedRows().empty())
    {
        m_list.select(0);
        chosen();
    }
    return true;
}

void export_dialog::chosen()
{
    m_rows.choose(m_list.selectedRows());
    m_outcome.clear();
    showTexts();
}

std::string export_dialog::focusedAnimation() const
{
    const int row = m_list.selected();
    return row < 0 ? std::string() : m_choices.operandOf(*m_rows.choice(static_cast<std::size_t>(row)).entry);
}

void export_dialog::showMenu(POINT on_screen)
{
    const std::vector<menu_row> rows = {{control_export_start, "&Export", m_export_button.isEnabled()},
                                        {control_export_dump, "Anim &Dump...", !focusedAnimation().empty()}};
    const int chosen = chooseFromMenu(handle(), on_screen, rows);
    if (chosen == control_export_start)
        start();
    else if (chosen == control_export_dump)
        dumpAnimation(m_host, focusedAnimation());
}

void export_dialog::showChosenRows()
{
    m_list.select(std::span<const std::size_t>(m_rows.chosenRows()));
}

// What cannot be chosen in this mode or format is disabled.
void export_dialog::showChoices()
{
    const bool is_animated = m_choices.chosenMode() == export_choices::mode::animated;
    for (control* const each : {static_cast<control*>(&m_filter), static_cast<control*>(&m_list),
                                static_cast<control*>(&m_all), static_cast<control*>(&m_none)})
        each->setEnabled(is_animated && !m_choices.skeletons().empty());
    m_together.setEnabled(m_choices.canBeTogether());
    m_together.check(m_choices.canBeTogether() && m_choices.isTogether());
    m_span.setEnabled(m_choices.hasSpan());
    m_textures.setEnabled(m_choices.hasTextures());
    m_name.setEnabled(m_choices.hasName());
    m_outcome.clear();
    showTexts();
}

void export_dialog::showTexts()
{
    if (isExporting())
        return;
    const std::size_t count = m_rows.chosenCount();
    const std::optional<std::string> problem = m_choices.problem(count);
    std::string text = problem ? *problem : m_choices.plan(count);
    if (const std::size_t hidden = m_rows.hiddenChosenCount();
        hidden > 0 && m_choices.chosenMode() == export_choices::mode::animated)
        text += " " + grouped(hidden) + " of the chosen ones " + (hidden == 1 ? "is" : "are") + " not shown.";
    m_message.setText(m_outcome.empty() ? text : m_outcome);
    m_export_button.setEnabled(!problem);
    m_open.setEnabled(!m_last_written.empty());
    m_dump.setEnabled(m_list.isEnabled() && !focusedAnimation().empty());
}

std::vector<control*> export_dialog::inputs()
{
    return {&m_mode, &m_format,   &m_skeleton, &m_filter, &m_all,  &m_none, &m_list, &m_lod,          &m_textures,
            &m_span, &m_together, &m_folder,   &m_browse, &m_name, &m_open, &m_dump, &m_export_button};
}

void export_dialog::enableAll(bool is_enabled)
{
    if (!is_enabled)
        m_close.focus(); // the focus needs a place to go
    for (control* const each : inputs())
        each->setEnabled(is_enabled);
    m_close.setText(is_enabled ? "Close" : "Stop");
    if (!is_enabled)
        return;
    m_skeleton.setEnabled(!m_choices.skeletons().empty());
    showChoices();
}

// Files of the last export may have been worked on since.
bool export_dialog::mayReplace(const export_job_options& options)
{
    std::size_t there = 0;
    std::string first;
    for (const std::string& path : exportPaths(options))
    {
        std::error_code error;
        if (!std::filesystem::exists(toPath(path), error))
            continue;
        first = first.empty() ? path : first;
        ++there;
    }
    if (there == 0)
        return true;
    const std::string what = there == 1 ? displayText(first) + " is there already."
                                        : counted(there, "file") + " of the folder would be replaced, the first is " +
                                              displayText(fileName(first)) + ".";
    return m_host.prompt().confirm("Replace Files?", what + " Replace?", prompt_answer::no);
}

void export_dialog::start()
{
    if (isExporting() || m_choices.problem(m_rows.chosenCount()))
        return;
    export_job_options options = m_choices.options(m_rows.chosen());
    if (!mayReplace(options))
        return;
    m_choices.remember();
    enableAll(false);
    m_message.setText({});
    m_status.setText(exportStatus({0, std::max<std::size_t>(1, options.animations.size()), {}}));
    m_export.start([this, options = std::make_shared<const export_job_options>(std::move(options)),
                    game = m_host.document().game(),
                    folder = m_choices.folder()](const work_port& work) -> background_task::answer {
        auto result = std::make_shared<export_job_result>();
        failure why;
        loaded_game source(game);
        const bool is_begun = createFolder(folder, why) && runExport(source, *options, work, *result, why);
        return [this, options, result, is_begun, why] {
            end(result, is_begun, why);
            askForTextures(options, result);
        };
    });
}

void export_dialog::end(std::shared_ptr<export_job_result> result, bool is_begun, const failure& why)
{
    if (!result->files.empty())
        m_last_written = result->files.back().path;
    enableAll(true);
    m_progress.setPosition(0);
    m_status.setText(is_begun ? exportSummary(*result) : "Nothing was exported.");
    m_outcome = is_begun ? exportComplaints(*result) : displayText(describe(why));
    if (m_outcome.empty() && !result->files.empty())
        m_outcome = "The files are in " + displayText(m_choices.folder()) + ".";
    if (!is_begun)
        m_host.logLine("export_dialog: " + describe(why));
    showTexts();
    m_export_button.focus();
    m_host.setStatus(m_status.text());
}

// Copies that differ may have been painted on: they were kept, and are replaced on demand.
void export_dialog::askForTextures(const std::shared_ptr<const export_job_options>& options,
                                   const std::shared_ptr<export_job_result>& result)
{
    if (result->kept_textures.empty() ||
        !m_host.prompt().confirm("Replace Textures?", keptTexturesText(*options, *result), prompt_answer::no))
        return;
    enableAll(false);
    m_export.start([this, options, result, game = m_host.document().game()](const work_port& work) {
        failure why;
        loaded_game source(game);
        const bool is_done = replaceKeptTextures(source, *options, work, *result, why);
        return background_task::answer([this, result, is_done, why] { end(result, is_done, why); });
    });
}

void export_dialog::onCancel()
{
    if (isExporting())
        return m_export.requestStop();
    m_choices.remember();
    dialog_box::onCancel();
}

void exportAnimated(page_host& host, const scene_pointer& former, const export_dialog::folder_port& open_folder)
{
    if (!host.document().game()->hasArchives())
        return host.prompt().show("Error!", ".pack File Not Found. Closing Search Dialog...", prompt_icon::error);
    scene_pointer figure = former;
    if (const open_definition& definition = host.document().definition();
        host.document().shown() == open_files::kind::definition &&
        !host.work("Looking at " + displayText(fileName(definition.path())), [&](const work_port& port) {
            figure = scene_loader(*host.document().game(), port)
                         .loadFigure(definition.figure(), definition.path(), 0, former);
        }))
        return;
    export_choices choices(host.config(), host.document(), figure, defaultExportFolder(host));
    export_dialog dialog(host, choices, open_folder);
    runDialog(host, dialog);
}

void exportStatic(page_host& host)
{
    const auto picked = host.prompt().pickSavePath("Export Static Model", staticExportFilters(), "fbx",
                                                   {{}, host.document().shownName() + ".fbx"});
    if (!picked || picked->empty())
        return;
    const std::string path = staticExportPath(*picked);
    if (std::error_code error;
        path != *picked && std::filesystem::exists(toPath(path), error) &&
        !host.prompt().confirm("Replace File?", displayText(path) + " is there already. Replace?", prompt_answer::no))
        return;
    const export_job_options options = staticExport(host.document(), path, host.config().path());
    export_job_result result;
    failure why;
    bool is_done = false;
    const bool is_through = host.work("Exporting " + displayText(fileName(path)), [&](const work_port& port) {
        loaded_game source(host.document().game());
        is_done = runExport(source, options, port, result, why);
    });
    if (is_done && !result.files.empty())
        return host.setStatus("Exported " + displayText(path));
    if (!is_through && !why)
        return host.setStatus("Nothing was exported: it was stopped.");
    host.logLine("exportStatic(). " + describe(why));
    host.prompt().show("Error!", "The model could not be exported.\r\n\r\n" + describe(why), prompt_icon::error);
}

} // namespace korvane
