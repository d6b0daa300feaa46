#include "Korvane/app/mod_folder_commands.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/recycle_bin.h"
#include "Korvane/app/name_dialog.h"
#include "Korvane/app/text_dialogs.h"
#include "Korvane/jobs/replace_picture.h"
#include "Korvane/presenters/game_folders.h"
#include "Korvane/presenters/take_out.h"

#include <algorithm>
#include <filesystem>

namespace korvane
{

namespace
{

enum mod_command : int
{
    put_rows = 600,
    put_files,
    rename_row,
    delete_rows
};

const std::string put_title = "Put Into the Mod Folder";

// One message instead of one for each file.
bool isWritable(page_host& host, const std::string& mod_folder)
{
    failure why;
    if (canWriteBelow(mod_folder, why))
        return true;
    host.prompt().show(put_title, "The mod folder cannot be written to.\r\n\r\n" + displayText(describe(why)),
                       prompt_icon::error);
    return false;
}

} // namespace

std::string wantedModFolder(page_host& host, const std::string& title)
{
    if (std::string folder = game_folders(host.config()).modFolder(); !folder.empty())
        return folder;
    host.prompt().show(title, std::string(no_mod_folder_text), prompt_icon::information);
    host.runCommand(document_command::game_folders);
    return game_folders(host.config()).modFolder();
}

menu_row mod_folder_commands::menu(const rows_of_list& rows) const
{
    constexpr std::size_t looked_at = 100; // the commands look at all of them
    const bool is_own = ownRows(m_browser, std::span(rows).first(std::min(rows.size(), looked_at))).reason.empty();
    const auto text = [is_own](const char* own, const char* foreign) { return std::string(is_own ? own : foreign); };
    return {
        0,
        "&Mod Folder",
        true,
        false,
        {{put_rows, "&Put Into the Mod Folder", !rows.empty() && !is_own},
         {put_files, "Put &Files of the Disk Here..."},
         {},
         {rename_row, text("&Rename...\tF2", "Rename (only what lies in the mod folder)"), is_own && rows.size() == 1},
         {delete_rows, text("&Delete\tDel", "Delete (only what lies in the mod folder)"), is_own}}};
}

bool mod_folder_commands::run(int command, const rows_of_list& rows)
{
    switch (command)
    {
    case put_rows:
        return putRows(rows), true;
    case put_files:
        return put(m_host.prompt().pickOpenPaths("Files for the Mod Folder", {{"All Files (*.*)", "*.*"}})), true;
    case rename_row:
        return rename(rows), true;
    case delete_rows:
        return remove(rows), true;
    default:
        return false;
    }
}

bool mod_folder_commands::onKey(unsigned key, const rows_of_list& rows)
{
    return (key == VK_F2 && run(rename_row, rows)) || (key == VK_DELETE && run(delete_rows, rows));
}

void mod_folder_commands::changed(const std::string& said, const std::string& path)
{
    m_host.rereadArchives(true);
    m_shown(path);
    m_host.setStatus(said);
}

void mod_folder_commands::report(const std::string& title, const std::string& text)
{
    if (text.empty())
        return;
    report_dialog shown(m_host, title, text);
    runDialog(m_host, shown);
}

void mod_folder_commands::put(const std::vector<std::string>& paths)
{
    if (paths.empty())
        return;
    const std::string mod_folder = wantedModFolder(m_host, put_title);
    if (mod_folder.empty() || !isWritable(m_host, mod_folder))
        return;
    const std::string folder = m_browser.folder();
    put_plan plan;
    if (!m_host.work("Looking at the files",
                     [&](const work_port& work) { plan = planPut(mod_folder, paths, folder, work); }))
        return m_host.setStatus("Stopped: nothing was put into the mod folder.");
    if (plan.files.empty())
        return report(put_title, leftOutReport(plan.refused, {}));
    const prompt_answer preset = plan.replaced.empty() ? prompt_answer::yes : prompt_answer::no;
    if (!m_host.prompt().confirm(put_title, putQuestion(plan, mod_folder, folder), preset))
        return m_host.setStatus("Nothing was put into the mod folder.");
    put_result result;
    const bool is_whole = m_host.work("Putting " + counted(plan.files.size(), "file") + " into the mod folder",
                                      [&](const work_port& work) { result = putFiles(plan, work); });
    if (result.written > 0)
        changed(counted(result.written, "file") + " put into the mod folder" + (is_whole ? "." : "; stopped."),
                rowPathOf(folder, plan.files.front().internal_path));
    report(put_title, leftOutReport(plan.refused, result.failures));
}

void mod_folder_commands::putRows(const rows_of_list& rows)
{
    const auto former = m_browser.game();
    const std::string mod_folder = wantedModFolder(m_host, put_title);
    if (mod_folder.empty() || !isWritable(m_host, mod_folder))
        return;
    if (m_browser.game() != former) // the rows are others now
        return m_host.setStatus("The mod folder is set. Choose the files again that go there.");
    std::vector<const pack_file_node*> files = filesOf(m_browser, rows);
    const auto tree = m_browser.game()->archives();
    const std::string path = rows.empty() ? std::string() : std::string(m_browser.rows().pathAt(rows.front()));
    const archive_record* own = nullptr; // the folder itself, as an archive
    std::error_code error;
    for (const auto& each : tree->archives())
        if (each->is_folder && std::filesystem::equivalent(toPath(each->path), toPath(mod_folder), error))
            own = each.get();
    std::erase_if(files, [own](const pack_file_node* file) { return &file->archive() == own; });
    extract_job_options options;
    options.folder = mod_folder;
    extract_job_result result;
    const auto extract = [&] {
        return m_host.work("Putting " + counted(files.size(), "file") + " into the mod folder",
                           [&](const work_port& work) { extractEntries(tree, files, options, work, result); });
    };
    bool is_whole = extract();
    if (result.kept > 0 && is_whole &&
        m_host.prompt().confirm(
            put_title, counted(result.kept, "file") + " that differ are in the mod folder already. Replace them?",
            prompt_answer::no))
    {
        options.overwrites = true;
        is_whole = extract();
    }
    const take_out_report said = reportOf(result, mod_folder, is_whole);
    if (result.written > 0)
        changed(counted(result.written, "file") + " put into the mod folder" + (is_whole ? "." : "; stopped."), path);
    else
        m_host.setStatus("Nothing was put into the mod folder.");
    report(put_title, said.text);
}

void mod_folder_commands::rename(const rows_of_list& rows)
{
    const own_choice own = ownRows(m_browser, rows);
    if (!own.reason.empty() || rows.size() != 1)
        return m_host.setStatus(own.reason.empty() ? "Choose one file or folder to rename." : own.reason);
    const std::string path(m_browser.rows().pathAt(rows.front()));
    std::string renamed;
    name_dialog asked(std::string(fileName(displayText(path))), [&](const std::string& name) {
        failure why;
        return renameInModFolder(own.mod_folder, path, name, renamed, why)
                   ? std::string()
                   : "Not renamed: " + displayText(why.what) + ".";
    });
    if (runDialog(m_host, asked) == name_dialog::accepted)
        changed("Renamed: " + displayText(renamed), renamed);
}

void mod_folder_commands::remove(const rows_of_list& rows)
{
    const own_choice own = ownRows(m_browser, rows);
    if (!own.reason.empty())
        return m_host.setStatus(own.reason);
    const std::string what = rows.size() == 1 ? displayText(m_browser.rows().pathAt(rows.front()))
                                              : counted(rows.size(), "file or folder", "files and folders");
    if (!m_host.prompt().confirm("Delete From the Mod Folder",
                                 "Move " + what +
                                     " of the mod folder into the system's bin?\r\n\r\nWhere an archive has the same " +
                                     "path, its copy counts again then.",
                                 prompt_answer::no))
        return;
    const std::size_t behind = rows.back() + 1; // which is chosen then, else the one in front
    const std::size_t next =
        behind < m_browser.rows().rowCount() ? behind : rows.front() - std::min<std::size_t>(rows.front(), 1);
    const std::string path(m_browser.rows().pathAt(next));
    failure why;
    const bool is_done = moveToBin(m_host.frame(), own.places, why);
    changed(is_done ? "Moved into the bin: " + what : "Not deleted: " + displayText(describe(why)), path);
    if (!is_done)
        m_host.prompt().show("Delete From the Mod Folder", displayText(describe(why)), prompt_icon::error);
}

} // namespace korvane
