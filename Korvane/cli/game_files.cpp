#include "Korvane/cli/game_files.h"

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/silent_prompt.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/game_file.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/pack_reader.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

// Those of the command line; without any the configuration is loaded, and they are its.
std::vector<std::string> dataFolders(const cli_context& context, config_file& config)
{
    std::vector<std::string> folders = context.data_folders;
    for (std::string& folder : folders)
        if (!folder.ends_with('/') && !folder.ends_with('\\'))
            folder += '/';
    if (!folders.empty())
        return folders;
    config.load(context.config_path.empty() ? config_file::defaultPath() : context.config_path);
    return config.get("data_paths");
}

void noteLines(cli_context& context, const std::string& text)
{
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        if (end > begin)
            context.note(displayText(text.substr(begin, end - begin)));
        begin = end + 1;
    }
}

} // namespace

std::shared_ptr<const path_tree> loadArchives(cli_context& context, failure& why)
{
    if (pack_file::sm_poPathTree)
        return pack_file::sm_poPathTree;
    config_file config;
    const std::vector<std::string> folders = dataFolders(context, config);
    if (folders.empty())
    {
        fail(why, failure_kind::not_found, "no data folders: give --data DIR, or add data_paths to the configuration");
        return nullptr;
    }
    const pack_cache cache = pack_cache::of(config, context.config_path);
    // Folders of the command line are for once: a cache of them would replace that of the configuration's.
    const bool has_cache = context.data_folders.empty() && !context.is_without_cache;
    silent_prompt messages;
    const auto showProgress = [&context](std::size_t done, std::size_t of, const std::string& path) {
        context.progress("reading archive " + std::to_string(done + 1) + " of " + std::to_string(of) + ": " +
                         displayText(path));
    };
    pack_reader reader({messages, {}, showProgress, has_cache ? &cache : nullptr});
    if (!reader.loadAllArchives(folders))
    {
        fail(why, failure_kind::not_found, messages.message());
        return nullptr;
    }
    noteLines(context, messages.message());
    for (const archive_listing& archive : reader.listings())
        for (const std::string& path : archive.left_out)
            context.note(displayText(describeLeftOut(archive, path)));
    if (reader.hasWrittenCache() && pack_cache::recordIn(config))
        static_cast<void>(config.save(context.config_path)); // the cache is found by its usual name as well
    return pack_file::sm_poPathTree;
}

bool hasDataFolders(const cli_context& context)
{
    config_file config;
    return !dataFolders(context, config).empty();
}

bool readOperand(cli_context& context, const std::string& operand, memory_file& bytes, failure& why)
{
    context.workOn(operand);
    return (!isPackPath(operand) || loadArchives(context, why)) && readGameFile(operand, bytes, why);
}

bool readModelOperand(cli_context& context, const std::string& operand, memory_file& bytes, failure& why)
{
    context.workOn(operand);
    return isPackPath(operand) ? readOperand(context, operand, bytes, why) : readModelFile(operand, bytes, why);
}

bool openModel(cli_context& context, const std::string& operand, rmv2_file& model, failure& why)
{
    context.workOn(operand);
    memory_file bytes;
    const bool is_open = isPackPath(operand) ? readOperand(context, operand, bytes, why) &&
                                                   model.openFromMemory(std::move(bytes), operand, why)
                                             : model.open(operand, why);
    if (is_open && isVersion7OverVersion6(model.image().bytes()))
        context.note(displayText(operand) +
                     ": the version word says 7, but the LOD headers are those of version 6, and the games cannot read "
                     "that; korvane patch --repair makes a version 7 file of it");
    return is_open;
}

} // namespace korvane
