#include "Korvane/cli/console_game.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/pack_reader.h"
#include "Korvane/game/data_folders.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

// A notice for a window begins with a line that says no more than its title does.
void nameFailures(cli_context& context, const notice& said)
{
    const std::string& text = said.text;
    for (std::size_t begin = text.starts_with(archive_damage_heading) ? archive_damage_heading.size() : 0;
         begin < text.size();)
    {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        if (end > begin)
            context.nameFailure(terminalText(text.substr(begin, end - begin)));
        begin = end + 1;
    }
}

} // namespace

// The folders of the command line; where it gives none, those of the configuration.
game_loader console_game::loader(config_file& config) const
{
    game_loader loader(config, m_context.config_path);
    std::vector<std::string> folders = foldersGiven(m_context.data_folders);
    std::vector<std::string> mod_folders = foldersGiven(m_context.mod_folders);
    if (folders.empty() || mod_folders.empty())
        config.load(m_context.config_path.empty() ? config_file::defaultPath() : m_context.config_path);
    if (!folders.empty())
        loader.useFolders(std::move(folders));
    if (!mod_folders.empty())
        loader.useModFolders(std::move(mod_folders));
    if (m_context.is_without_cache)
        loader.leaveOutCache();
    return loader;
}

bool console_game::hasFolders() const
{
    config_file config;
    return loader(config).hasFolders();
}

std::shared_ptr<const game_data> console_game::archives(failure& why)
{
    if (m_po_game)
        return m_po_game;
    config_file config;
    const game_loader loader = this->loader(config);
    if (!loader.hasFolders())
    {
        fail(why, failure_kind::not_found, "no data folders: give --data DIR, or add data_paths to the configuration");
        return nullptr;
    }
    work_port work;
    work.progress = [this](const work_progress& step) {
        m_context.progress("reading archive " + std::to_string(step.done + 1) + " of " + std::to_string(step.total) +
                           ": " + displayText(step.what));
    };
    game_load loaded = loader.load(work);
    if (!loaded.game)
    {
        fail(why, failure_kind::not_found, loaded.notices.empty() ? std::string() : loaded.notices.back().text);
        return nullptr;
    }
    for (const notice& each : loaded.notices)
        nameFailures(m_context, each);
    for (const std::string& line : loaded.left_out)
        m_context.note(displayText(line)); // the archive itself serves
    m_po_game = std::move(loaded.game);
    publishGame(*m_po_game);
    return m_po_game;
}

} // namespace korvane
