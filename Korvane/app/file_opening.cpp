#include "Korvane/app/file_opening.h"

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/document/recent_files.h"
#include "Korvane/fbx/scene/fbx_model_import.h"

#include <utility>

namespace korvane
{

void file_opening::chooseFile()
{
    openChosen({{"RMV2+VMD Files (*.rigid_model_v2)", "*.rigid_model_v2;*.variantmeshdefinition"},
                {"FBX Files (*.fbx)", "*.fbx"}});
}

void file_opening::chooseDefinition()
{
    openChosen({{"VMD Files (*.variantmeshdefinition)", "*.variantmeshdefinition"}});
}

void file_opening::openChosen(const std::vector<file_filter>& filters)
{
    if (const std::optional<std::string> path = m_host.prompt().pickOpenPath("Open File", filters))
        open(*path);
}

void file_opening::openRecent(std::size_t position)
{
    if (position >= m_menu.recentFiles().size() || !m_host.isEnabled(document_command::open_recent))
        return;
    const std::string path = m_menu.recentFiles()[position];
    if (isRecentFileThere(path, *m_host.document().game()))
        open(path);
    else if (m_host.prompt().confirm("Recent Files",
                                     "This file cannot be found any more:\r\n" + path + "\r\n\r\nTake it off the list?",
                                     prompt_answer::yes))
    {
        m_host.config().change([&path](config_file& config) { return removeRecentFile(config, path); });
        fillRecentFiles();
    }
}

void file_opening::fillRecentFiles()
{
    m_menu.setRecentFiles(recentFiles(m_host.config().table()));
}

void file_opening::addRecentFile(const std::string& path)
{
    m_host.config().change([&path](config_file& config) { return korvane::addRecentFile(config, path), true; });
    fillRecentFiles();
}

void file_opening::openAll(const std::vector<std::string>& paths)
{
    const file_choice choice = chooseFiles(paths);
    for (const std::string& path : choice.opened)
        open(path);
    if (!choice.left_out.empty())
        m_host.prompt().show("Open", choice.describeLeftOut(), prompt_icon::information);
}

// Nothing is made of it yet: what was read is shown on a page of its own, and the view stays.
bool file_opening::importFbx(const std::string& path)
{
    fbx_report report;
    failure why;
    bool is_read = false;
    const bool went_on = m_host.work("Opening " + std::string(fileName(path)), [&](const work_port&) {
        memory_file bytes;
        is_read = m_host.document().game()->read(game_path(path), bytes, why) &&
                  readFbxReport(path, bytes.bytes(), report, why);
    });
    if (!went_on)
        return false;
    if (!is_read)
    {
        m_host.logLine("main_window::importFbx(). " + describe(why));
        if (why.path.empty())
            why.path = std::string(fileName(path));
        m_host.prompt().show("Error!", fbxImportError(path) + "\r\n\r\n" + describe(why), prompt_icon::error);
        return false;
    }
    addRecentFile(path);
    m_host.setStatus(report.status());
    m_imported(std::move(report));
    return true;
}

bool file_opening::open(const std::string& path)
{
    if (!m_host.isEnabled(document_command::open)) // long work runs
        return false;
    if (isFbxPath(path))
        return importFbx(path);
    if (!isDefinitionPath(path) && !m_host.mayLeaveModel())
        return false;
    failure why;
    opened_file file;
    bool is_read = false;
    const bool went_on = m_host.work("Opening " + std::string(fileName(path)), [&](const work_port&) {
        is_read = open_files::read(path, *m_host.document().game(), file, why);
        if (const auto& archives = m_host.document().game()->archives(); is_read && archives != nullptr)
            archives->prepareForMisses(); // here, so that no panel has to wait for it
    });
    if (!went_on)
        return m_host.setStatus(std::string(fileName(path)) + " was not opened: stopped."), false;
    if (!is_read)
    {
        const open_error error = describeOpenFailure(path, why, *m_host.document().game());
        m_host.logLine("main_window::openFile(). " + describe(why));
        m_host.prompt().show(error.title, error.text, prompt_icon::error);
        return false;
    }
    m_host.document().take(std::move(file));
    addRecentFile(path);
    m_opened(path);
    return true;
}

} // namespace korvane
