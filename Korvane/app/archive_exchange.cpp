#include "Korvane/app/archive_exchange.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/app/take_out_dialog.h"
#include "Korvane/app/text_dialogs.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace korvane
{

namespace
{

// "men\guard.dds, 12,345 bytes", "31 files, 123,456 bytes in the archives".
std::string filesText(const archive_exchange::file_list& files)
{
    std::uint64_t bytes = 0;
    for (const pack_file_node* const file : files)
        bytes += file->size();
    const std::string what =
        files.size() == 1 ? displayText(files.front()->internalPath()) : counted(files.size(), "file");
    return what + ", " + counted(bytes, "byte") + " in the archives";
}

} // namespace

void archive_exchange::takeOut(const std::shared_ptr<const path_tree>& tree, const file_list& files)
{
    if (files.empty())
        return;
    take_out_choices choices(m_host.config());
    const bool has_textures =
        std::any_of(files.begin(), files.end(), [](const pack_file_node* file) { return file->extension() == "dds"; });
    if (take_out_dialog asked(m_host, choices, filesText(files), has_textures);
        runDialog(m_host, asked) != take_out_dialog::accepted)
        return;
    choices.remember();
    extract_job_result result;
    const bool is_whole = m_host.work("Taking out " + counted(files.size(), "file"), [&](const work_port& work) {
        extractEntries(tree, files, choices.options(), work, result);
    });
    const take_out_report report = reportOf(result, choices.folder(), is_whole);
    m_host.setStatus(report.line);
    if (report.text.empty())
        return;
    report_dialog shown(m_host, "Take Out", report.text);
    runDialog(m_host, shown);
}

} // namespace korvane
