#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/game/data_folders.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace korvane
{

namespace
{

struct config_options
{
    std::string key;
    std::vector<std::string> values;
    bool at_front = false;
};

std::string configPath(const cli_context& context)
{
    return context.config_path.empty() ? config_file::defaultPath() : context.config_path;
}

void noteDamage(cli_context& context, const config_file& config, const char* consequence)
{
    if (!config.errorText().empty() && config.errorText() != "DONE")
        context.note(configPath(context) + ": reading stopped where a key was expected; what follows there is " +
                     consequence);
}

// A missing file is an empty configuration; one that is there but cannot be read is a failure.
bool loadConfig(cli_context& context, config_file& config)
{
    const std::string path = configPath(context);
    std::error_code error;
    const bool is_read = config.load(path);
    noteDamage(context, config, "left out");
    if (is_read || std::filesystem::symlink_status(toPath(path), error).type() == std::filesystem::file_type::not_found)
        return true;
    context.fail({failure_kind::unreadable, "the configuration cannot be read", path, 0, {}});
    return false;
}

void changeConfig(cli_context& context, const config_file::change_function& change)
{
    config_file config;
    failure why;
    const bool is_done = config.change(configPath(context), change, why, config_file::damaged_end::dropped);
    noteDamage(context, config, is_done ? "lost, for it was not understood" : "not understood");
    if (!is_done)
        context.fail(why);
}

void showConfig(cli_context& context)
{
    config_file config;
    if (!loadConfig(context, config))
        return;
    if (context.is_json)
    {
        json document = json::object();
        for (const auto& [key, values] : config.entries())
        {
            json list = json::array();
            for (const std::string& value : values)
                list.push_back(displayText(value));
            document[key] = std::move(list);
        }
        return context.printJson(document);
    }
    for (const auto& [key, values] : config.entries())
    {
        context.print(key + "\n");
        for (const std::string& value : values)
            context.print("    " + displayText(value) + "\n");
    }
}

bool isKey(const std::string& key)
{
    return !key.empty() && toLower(key).find_first_not_of("0123456789abcdefghijklmnopqrstuvwxyz_") == std::string::npos;
}

// Any key may be stored, and nobody would notice a misspelt one.
void noteUnknownKey(cli_context& context, const std::string& key)
{
    if (context.exitStatus() != 0)
        return;
    const std::vector<std::string> known(config_keys::known.begin(), config_keys::known.end());
    if (std::find(known.begin(), known.end(), key) != known.end())
        return;
    const std::string nearest = nearestName(key, known);
    context.note("the program has no key \"" + key + "\"" +
                 (nearest.empty() ? std::string() : "; did you mean " + nearest + "?"));
}

void addValues(cli_context& context, const config_options& options)
{
    const std::string key = toLower(options.key);
    const bool is_folders = key == config_keys::data_folders || key == config_keys::mod_folders;
    std::vector<std::string> values = is_folders ? foldersGiven(options.values) : options.values;
    if (values.empty())
        return context.fail({failure_kind::refused, "no folder is given", configPath(context), 0, {}});
    if (is_folders)
        for (std::string& value : values)
            value = wholeFolder(value);
    for (const std::string& value : values)
        if (value.find('"') != std::string::npos)
            return context.fail(
                {failure_kind::refused, "a value cannot hold a quotation mark: " + value, configPath(context), 0, {}});
    changeConfig(context, [&](config_file& config) { return config.add(key, values, options.at_front); });
    noteUnknownKey(context, key);
}

void clearKey(cli_context& context, const config_options& options)
{
    changeConfig(context, [&options](config_file& config) {
        config.clear(options.key);
        return true;
    });
    noteUnknownKey(context, toLower(options.key));
}

} // namespace

void addConfigCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<config_options>();
    const auto key_check = CLI::Validator(
        [](const std::string& key) {
            return isKey(key) ? std::string() : "a key is made of letters, digits and '_', not \"" + key + "\"";
        },
        "KEY");

    CLI::App* command = app.add_subcommand("config", "Show or change the configuration");
    context.addJsonOption(*command);
    command->require_subcommand(0, 1);

    CLI::App* add = command->add_subcommand("add", "Add values to a key");
    add->add_option("KEY", options->key)->required()->check(key_check);
    add->add_option("VALUE", options->values)->required();
    add->add_flag("--front", options->at_front, "Put the values before those that are there");
    add->callback([options, &context] { addValues(context, *options); });

    CLI::App* clear = command->add_subcommand("clear", "Empty a key's list");
    clear->add_option("KEY", options->key)->required()->check(key_check);
    clear->callback([options, &context] { clearKey(context, *options); });

    command->callback([command, &context] {
        if (command->get_subcommands().empty())
            showConfig(context);
    });
}

} // namespace korvane
