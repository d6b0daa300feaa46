#include "Korvane/app/fbx_to_anim_dialog.h"

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/menu.h"
#include "Korvane/app/archive_anim_dialog.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/tool_commands.h"
#include "Korvane/presenters/playback_picker.h"

#include <algorithm>
#include <memory>
#include <shellapi.h>
#include <utility>

namespace korvane
{

namespace
{

constexpr UINT_PTR log_timer = 1;
constexpr UINT log_pause = 50; // milliseconds, in which hundreds of lines may come

} // namespace

fbx_to_anim_dialog::fbx_to_anim_dialog(page_host& host, std::string fbx)
    : dialog_box({"Convert FBX animation to .ANIM", {760, 600}, true, helpContext(help_topic::animation_back)})
    , m_host(host)
    , m_form(host.config())
    , m_first_fbx(std::move(fbx))
    , m_looking(host.thread(), {{}, {}, [this](const std::string& what) { m_summary.setText(what); }})
    , m_work(host.thread(), {[this](const work_progress& now) {
                                 m_progress.setRange(static_cast<int>(std::max<std::size_t>(now.total, 1)));
                                 m_progress.setPosition(static_cast<int>(now.done));
                                 m_status.setText("Frame " + grouped(now.done) + " of " + grouped(now.total));
                             },
                             [this](const std::string& line) { log(line); },
                             [this](const std::string& what) {
                                 conversion broken;
                                 fail(broken.why, failure_kind::refused, what);
                                 took(broken, {});
                             }})
{
}

std::optional<layout> fbx_to_anim_dialog::onFill(failure&)
{
    if (!createFiles() || !createFields() || !createResults())
        return std::nullopt;
    nameHandlers();
    DragAcceptFiles(handle(), TRUE);
    setDefault(m_convert);
    setFirstFocus(rowOf(file::fbx).path);
    m_for_games.check(m_form.isForGames());
    for (const std::string_view name : fbx_to_anim_form::version_names)
        m_version.add(name);
    m_version.select(static_cast<int>(m_form.version()));
    m_prefix.setTip("Of the FBX file's bones, taken off (\"rig:\"). Empty: one that all bones have in common is found; "
                    "none: nothing is taken off");
    fillConverted({});
    showLook();
    if (!m_first_fbx.empty())
        choose(file::fbx, m_first_fbx);
    return rows();
}

bool fbx_to_anim_dialog::createFiles()
{
    constexpr auto editable = edit_box::access::editable;
    const struct
    {
        file which;
        const char* name;
        const char* browse;
    } texts[] = {{file::fbx, "&FBX file:", "B&rowse..."},
                 {file::template_anim, "&Template .anim:", "Br&owse..."},
                 {file::bone_table, "&Bone table:", "Bro&wse..."}};
    for (const auto& text : texts)
    {
        file_row& row = rowOf(text.which);
        const int id = static_cast<int>(text.which);
        if (!row.name.create(handle(), text.name) || !row.path.create(handle(), control_convert_path + id, editable) ||
            !row.browse.create(handle(), control_convert_browse + id, text.browse) ||
            (text.which == file::template_anim &&
             !m_archives.create(handle(), control_convert_archives, "&Archives...")))
            return false;
    }
    rowOf(file::fbx).path.setTip("The animation, as another program saved it");
    rowOf(file::template_anim)
        .path.setTip("The skeleton's .anim file, or an animation of it whose bones and tracks the new one is to have");
    rowOf(file::bone_table).path.setTip("If wanted: only the bones of this table are written, in its order");
    return true;
}

bool fbx_to_anim_dialog::createFields()
{
    constexpr auto editable = edit_box::access::editable;
    const struct
    {
        field which;
        const char* name;
    } texts[] = {{field::rate, "Fra&merate"}, {field::end_time, "&End Time"}, {field::frames, "Frame Co&unt"}};
    if (!m_take_name.create(handle(), "Ta&ke:") || !m_take.create(handle(), control_convert_take))
        return false;
    for (const auto& text : texts)
    {
        field_row& row = rowOf(text.which);
        const int id = static_cast<int>(text.which);
        if (!row.name.create(handle(), text.name) ||
            !row.typed.create(handle(), control_convert_field + id, editable) ||
            !row.problem.create(handle(), control_convert_problem + id))
            return false;
    }
    rowOf(field::rate).typed.setTip("Frames a second of the new file");
    rowOf(field::end_time).typed.setTip("Its length in seconds");
    return m_version_name.create(handle(), "&Version:") && m_version.create(handle(), control_convert_version) &&
           m_for_games.create(handle(), control_convert_games,
                              "Version 7: la&yout of the games' own files, which plays here, too") &&
           m_prefix_name.create(handle(), "Prefi&x:") && m_prefix.create(handle(), control_convert_prefix, editable) &&
           m_bones.create(handle(), control_convert_bones, m_form.bones(), {false, true}) &&
           m_summary.create(handle(), control_convert_summary);
}

bool fbx_to_anim_dialog::createResults()
{
    return m_log.createLines(handle(), control_convert_log, edit_box::access::read_only) &&
           m_progress.create(handle(), control_convert_progress) && m_status.create(handle(), control_convert_status) &&
           m_stop.create(handle(), control_convert_stop, "&Stop") && m_converted_name.create(handle(), "Co&nverted:") &&
           m_converted.create(handle(), control_convert_results) &&
           m_play.create(handle(), control_convert_play, "&Play") &&
           m_dump.create(handle(), control_convert_dump, "Anim &Dump...") &&
           m_convert.create(handle(), control_convert_run, "&Convert...") &&
           m_close.create(handle(), control_dialog_close, "C&lose");
}

void fbx_to_anim_dialog::nameHandlers()
{
    for (const file which : {file::fbx, file::template_anim, file::bone_table})
    {
        rowOf(which).path.onTyped = [this, which] { choose(which, rowOf(which).path.text()); };
        rowOf(which).browse.onClick = [this, which] { browse(which); };
    }
    m_archives.onClick = [this] {
        if (const auto path = pickArchiveAnimation(m_host))
            choose(file::template_anim, *path);
    };
    m_take.onSelect = [this](int take) {
        m_form.chooseTake(static_cast<std::size_t>(std::max(0, take)));
        showFields();
    };
    for (const field which : {field::rate, field::end_time, field::frames})
        rowOf(which).typed.onChange = [this, which] {
            m_form.type(which, rowOf(which).typed.text());
            showFields();
        };
    m_version.onSelect = [this](int position) {
        m_form.chooseVersion(static_cast<std::size_t>(std::max(0, position)));
    };
    m_prefix.onTyped = [this] {
        m_prefix.setText(m_prefix.text());
        if (m_form.setPrefix(m_prefix.text()))
            look();
    };
    m_for_games.onClick = [this](bool is_for_games) { m_form.setForGames(is_for_games); };
    m_converted.onSelect = [this](int) { showState(); };
    m_convert.onClick = [this] { convert(); };
    m_stop.onClick = [this] { m_work.requestStop(); };
    m_play.onClick = [this] { playResult(); };
    m_dump.onClick = [this] { dumpAnimation(m_host, chosenResult()); };
    m_close.onClick = [this] { onCancel(); };
}

layout fbx_to_anim_dialog::rows()
{
    using way = layout::direction;
    layout all(way::down);
    all.setMargins(10);
    for (file_row& row : m_files)
    {
        layout across(way::across);
        across.add(row.name, aligned(1)).add(row.path, share(1, 260)).add(row.browse, aligned(2));
        if (&row == &rowOf(file::template_anim))
            across.add(m_archives, aligned(2));
        else
            across.add(layout(way::across), aligned(2));
        all.add(std::move(across));
    }
    all.add(layout(way::across).add(m_take_name, aligned(1)).add(m_take, share(1, 260)));
    for (field_row& row : m_fields)
        all.add(
            layout(way::across).add(row.name, aligned(1)).add(row.typed, fixed(90)).add(row.problem, share(1, 420)));
    all.add(layout(way::across)
                .add(m_version_name, aligned(1))
                .add(m_version, fixed(110))
                .add(m_for_games)
                .add(share())
                .add(m_prefix_name)
                .add(m_prefix, fixed(90)));
    all.add(m_bones, share(3, 110)).add(m_summary);
    all.add(m_log, share(2, 80));
    all.add(layout(way::across).add(m_progress, fixed(160)).add(m_status, share(1, 200)).add(m_stop, aligned(2)));
    all.add(layout(way::across)
                .add(m_converted_name, aligned(1))
                .add(m_converted, share(1, 200))
                .add(m_play, aligned(2))
                .add(m_dump, aligned(2)));
    all.add(layout(way::across).add(share()).add(m_convert, aligned(2)).add(m_close, aligned(2)));
    return all;
}

void fbx_to_anim_dialog::choose(file which, const std::string& path)
{
    const bool is_other = m_form.choose(which, path);
    rowOf(which).path.setText(m_form.path(which));
    if (is_other)
        look();
}

void fbx_to_anim_dialog::onFilesDropped(const std::vector<std::string>& paths)
{
    if (paths.empty() || m_work.isRunning())
        return;
    const bool is_template = endsWithIgnoringCase(paths.front(), ".anim");
    const bool is_table = endsWithIgnoringCase(paths.front(), ".bone_table");
    choose(is_template ? file::template_anim : is_table ? file::bone_table : file::fbx, paths.front());
}

void fbx_to_anim_dialog::browse(file which)
{
    const fbx_to_anim_form::picker picker = fbx_to_anim_form::pickerOf(which);
    if (const auto path = m_host.prompt().pickOpenPath(picker.title, picker.filters, m_form.folderOf(which)))
        choose(which, *path);
}

void fbx_to_anim_dialog::look()
{
    m_looking.start([this, options = m_form.lookOptions(), game = m_host.document().game()](const work_port&) {
        loaded_game source(game);
        auto made = std::make_shared<convert_look>(lookAtConversion(source, options));
        return background_task::answer([this, made] {
            if (m_form.take(std::move(*made)) && isOpen())
                showLook();
        });
    });
    showState();
}

void fbx_to_anim_dialog::showLook()
{
    m_take.clear();
    for (const std::string& take : m_form.takes())
        m_take.add(take);
    m_take.select(m_form.takes().empty() ? -1 : static_cast<int>(m_form.chosenTake()));
    m_take.setEnabled(m_form.takes().size() > 1);
    m_bones.refresh();
    showFields();
    showState();
}

void fbx_to_anim_dialog::showFields()
{
    for (const field which : {field::rate, field::end_time, field::frames})
    {
        field_row& row = rowOf(which);
        if (row.typed.text() != m_form.text(which)) // never while it is typed into
            row.typed.setText(m_form.text(which));
        row.problem.setText(m_form.problem(which));
    }
}

void fbx_to_anim_dialog::showState()
{
    const bool is_working = m_work.isRunning();
    m_summary.setText(m_form.boneSummary());
    m_convert.setEnabled(m_form.canRun() && !is_working);
    m_stop.setEnabled(is_working);
    const bool can_play = m_host.isEnabled(document_command::play_animation);
    m_play.setEnabled(!chosenResult().empty() && can_play);
    m_play.setTip(can_play ? "Shows the converted animation in the 3D view"
                           : "To play it, first open a model or definition with that skeleton");
    m_dump.setEnabled(!chosenResult().empty());
}

void fbx_to_anim_dialog::fillConverted(const std::string& selected)
{
    m_results = m_form.converted();
    m_converted.clear();
    int position = m_results.empty() ? -1 : 0;
    for (std::size_t i = 0; i < m_results.size(); ++i)
    {
        m_converted.add(displayText(m_results[i]));
        if (equalsIgnoringCase(m_results[i], selected))
            position = static_cast<int>(i);
    }
    m_converted.select(position);
    m_converted.setEnabled(!m_results.empty());
}

std::string fbx_to_anim_dialog::chosenResult() const
{
    const int position = m_converted.selected();
    return position < 0 ? std::string() : m_results[static_cast<std::size_t>(position)];
}

void fbx_to_anim_dialog::convert()
{
    for (file_row& row : m_files)
        row.path.take();
    m_prefix.take();
    if (const auto problem = m_form.fileProblem())
    {
        m_host.prompt().show(problem->first.title, problem->first.text, prompt_icon::error);
        return rowOf(problem->second).path.focus();
    }
    if (const auto problem = m_form.firstProblem())
    {
        m_host.prompt().show(problem->first.title, problem->first.text, prompt_icon::error);
        return rowOf(problem->second).typed.focus();
    }
    const fbx_to_anim_form::picker picker = fbx_to_anim_form::outputPicker();
    const auto output = m_host.prompt().pickSavePath(picker.title, picker.filters, "anim", m_form.suggestion());
    if (!output || output->empty())
        return;
    const convert_job_options options = m_form.options(*output);
    m_progress.setPosition(0);
    m_status.setText("Converting...");
    m_work.start([this, options, game = m_host.document().game()](const work_port& work) {
        loaded_game source(game);
        auto made = std::make_shared<conversion>();
        made->is_done = convertFbx(source, options, work, made->result, made->why);
        made->is_stopped = !made->is_done && work.isStopped();
        return background_task::answer([this, made, output = options.output] { took(*made, output); });
    });
    showState();
    m_stop.focus();
}

void fbx_to_anim_dialog::log(const std::string& line)
{
    if (isOpen() && m_unshown_log.empty())
        SetTimer(handle(), log_timer, log_pause, nullptr);
    m_unshown_log += displayText(line) + "\r\n";
}

void fbx_to_anim_dialog::showLog()
{
    KillTimer(handle(), log_timer);
    if (!m_unshown_log.empty())
        m_log.append(std::exchange(m_unshown_log, {}));
}

void fbx_to_anim_dialog::took(const conversion& made, const std::string& output)
{
    const anim_output& anim = made.result.conversion.anim;
    std::string status = made.is_stopped ? "Stopped: nothing was written." : "Failure: " + describe(made.why);
    if (made.is_done)
        status = "Sucess! " + counted(anim.frames.size(), "frame") + ", " +
                 grouped(anim.bones.size() - made.result.conversion.unmatched.size()) + " of " +
                 counted(anim.bones.size(), "bone") + " matched. " + made.result.conversion.warning;
    if (made.is_done && made.result.version == 7 && anim.layout == anim_layout::tools)
        status += "For Play check \"Version 7\".";
    m_host.logLine("fbx_to_anim_dialog::took(). " + displayText(output) + ": " + displayText(status));
    if (made.is_done)
        m_host.tookConverted();
    if (!isOpen())
        return;
    showLog();
    if (!made.is_done && !made.is_stopped && m_log.text().find(displayText(made.why.what)) == std::string::npos)
        m_log.append(displayText(describe(made.why)) + "\r\n");
    m_progress.setPosition(0);
    m_status.setText(displayText(status));
    if (made.is_done)
        fillConverted(m_form.newestConverted());
    const bool had_focus = GetFocus() == m_stop.handle();
    showState();
    if (had_focus)
        (made.is_done && m_play.isEnabled() ? m_play : m_convert).focus();
    if (made.result.conversion.said)
        m_host.prompt().show(made.result.conversion.said->title, made.result.conversion.said->text, prompt_icon::error);
}

void fbx_to_anim_dialog::onCancel()
{
    if (m_work.isRunning())
        return m_work.requestStop();
    dialog_box::onCancel();
}

void fbx_to_anim_dialog::playResult()
{
    if (!m_play.isEnabled())
        return;
    const std::string path = chosenResult();
    if (const read_animation read = readAnimation({nullptr, path}, {}); !read.data)
        return m_host.prompt().show("Play", "This file is not played: " + displayText(read.problem) + ".",
                                    prompt_icon::information);
    m_host.playAnimation(path);
}

LRESULT fbx_to_anim_dialog::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_TIMER && wparam == log_timer)
        return showLog(), 0;
    if (message == WM_ACTIVATE && LOWORD(wparam) != WA_INACTIVE && m_form.isReplaced() && !m_looking.isRunning())
        look(); // it was saved again meanwhile
    const POINT at{static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))};
    if (message == WM_CONTEXTMENU && openMenu(reinterpret_cast<HWND>(wparam), at))
        return 0;
    return dialog_box::handleMessage(message, wparam, lparam);
}

// Of the template and of what was converted: what else can be done with an animation.
bool fbx_to_anim_dialog::openMenu(HWND clicked, POINT on_screen)
{
    const bool is_result = clicked == m_converted.handle();
    const std::string anim = is_result ? chosenResult() : m_form.path(file::template_anim);
    if ((!is_result && clicked != rowOf(file::template_anim).path.handle()) || anim.empty())
        return false;
    if (on_screen.x == -1 && on_screen.y == -1) // by the keyboard
    {
        on_screen = {0, 0};
        ClientToScreen(clicked, &on_screen);
    }
    std::vector<menu_row> rows = {{control_convert_dump, "Anim &Dump..."}};
    if (is_result)
        rows.insert(rows.begin(), {control_convert_play, "&Play", m_play.isEnabled()});
    const int chosen = chooseFromMenu(handle(), on_screen, rows);
    if (chosen == control_convert_play)
        playResult();
    if (chosen == control_convert_dump)
        dumpAnimation(m_host, anim);
    return true;
}

} // namespace korvane
