// The console program: parses the command line, runs one command, returns its exit status (0 done, 1 failed, 2 wrong
// command line).

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/services/version.h"
#include "Korvane/cli/commands.h"
#include "Korvane/cli/console.h"
#include "Korvane/cli/console_game.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <new>
#include <sstream>
#include <utility>

namespace
{

using namespace korvane;

std::string oneLine(std::string text)
{
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

bool hasCommand(const CLI::App& app, const std::string& name)
{
    const auto isNamed = [&name](const CLI::App* command) { return command->get_name() == name; };
    return !app.get_subcommands(isNamed).empty();
}

// The last of the commands that were understood, and all of them with a blank behind each.
std::pair<const CLI::App*, std::string> understood(const CLI::App& app)
{
    const CLI::App* last = &app;
    std::string names;
    while (!last->get_subcommands().empty())
    {
        last = last->get_subcommands().front();
        names += last->get_name() + " ";
    }
    return {last, names};
}

std::string didYouMean(std::string_view wanted, const std::vector<std::string>& known)
{
    const std::string nearest = nearestName(wanted, known);
    return nearest.empty() ? std::string() : "; did you mean " + nearest + "?";
}

std::string noCommand(const CLI::App& parent, const std::string& before, const std::string& name)
{
    if (before.empty() && name == "render") // in that program it would have been understood
        return "render is in the Windows program alone: korvane-cli.exe render (also under Wine)";
    std::vector<std::string> known;
    for (const CLI::App* command : parent.get_subcommands([](const CLI::App*) { return true; }))
        known.push_back(command->get_name());
    if (before.empty())
        known.emplace_back("render");
    return "there is no command \"" + before + name + "\"" + didYouMean(name, known);
}

// Empty: every option is known.
std::string unknownOption(const CLI::App& app, const CLI::App& last, const std::vector<std::string>& arguments)
{
    std::vector<std::string> known;
    for (const CLI::App* command : {&app, &last})
        for (const CLI::Option* option : command->get_options())
            for (const std::string& name : option->get_lnames())
                known.push_back("--" + name);
    for (const std::string& argument : arguments)
    {
        const std::string name = argument.substr(0, argument.find('='));
        if (argument == "--")
            break;
        if (name.starts_with("--") && std::find(known.begin(), known.end(), name) == known.end())
            return "there is no option " + oneLine(name) + didYouMean(name, known);
    }
    return {};
}

// The library only says that a command is missing where an unknown one stands.
std::string whatIsWrong(const CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& arguments)
{
    const auto [last, before] = understood(app);
    const auto isAny = [](const CLI::App*) { return true; };
    if (dynamic_cast<const CLI::ExtrasError*>(&error))
        if (std::string wrong = unknownOption(app, *last, arguments); !wrong.empty())
            return wrong;
    if (last->get_subcommands(isAny).empty()) // it takes no command
        return oneLine(error.what());
    auto argument = arguments.begin();
    if (last != &app)
        argument = std::find(arguments.begin(), arguments.end(), last->get_name());
    for (; argument != arguments.end(); ++argument)
        if (!argument->starts_with('-') && !hasCommand(*last, *argument) && !hasCommand(app, *argument))
            return noCommand(*last, before, oneLine(*argument));
    return oneLine(error.what());
}

void addSharedOptions(CLI::App& app, cli_context& context)
{
    app.add_option("--data", context.data_folders, "A folder with the games' archives; may be given more than once")
        ->type_name("DIR")
        ->allow_extra_args(false);
    app.add_option("--mod", context.mod_folders,
                   "A folder whose files stand before those of the archives; may be given more than once")
        ->type_name("DIR")
        ->allow_extra_args(false);
    app.add_option("--config", context.config_path, "The configuration file (default: config.cfg beside the program)")
        ->type_name("FILE");
    app.add_flag("--no-cache", context.is_without_cache, "Index the archives again instead of using packs.cache");
    app.add_flag("--quiet", context.is_quiet, "No progress and no notes on standard error");
    const auto showAtOnce = [&context](std::int64_t) { context.showProgressAtOnce(); };
    app.add_flag("--progress-at-once", showAtOnce)->group(""); // for tests: not in the help
}

struct command_group
{
    std::vector<std::string_view> names;
    void (*add)(CLI::App& app, cli_context& context);
};

// In the order of the help.
const std::vector<command_group>& commandGroups()
{
    static const std::vector<command_group> groups = {
        {{"demo-data"}, addDemoDataCommand},
        {{"info"}, addInfoCommand},
        {{"edit"}, addEditCommand},
        {{"patch"}, addPatchCommand},
        {{"archives", "list", "extract"}, addArchiveCommands},
        {{"variant"}, addVariantCommand},
        {{"refs", "needs"}, addUsageCommands},
        {{"export"}, addExportCommand},
        {{"convert"}, addConvertCommand},
        {{"fbx"}, addFbxCommand},
        {{"anim"}, addAnimCommands},
        {{"check"}, addCheckCommand},
        {{"normal-map"}, addNormalMapCommand},
        {{"dds"}, addDdsCommand},
        {{"textures"}, addTexturesCommand},
        {{"config"}, addConfigCommand},
#ifdef _WIN32
        {{"render"}, addRenderCommand},
#endif
    };
    return groups;
}

// All options of all commands take longer to describe than a small file to read: only those commands are made whose
// names stand in the command line; all of them for help, and where none does.
std::vector<bool> groupsMeant(const std::vector<std::string>& arguments)
{
    const std::vector<command_group>& groups = commandGroups();
    std::vector<bool> is_meant(groups.size());
    bool is_any = false;
    bool is_help = false;
    for (const std::string& argument : arguments)
    {
        is_help = is_help || argument == "--help" || argument == "-h";
        for (std::size_t i = 0; i < groups.size(); ++i)
            if (std::find(groups[i].names.begin(), groups[i].names.end(), argument) != groups[i].names.end())
                is_any = is_meant[i] = true;
    }
    if (is_help || !is_any)
        is_meant.assign(groups.size(), true);
    return is_meant;
}

void addCommands(CLI::App& app, cli_context& context, const std::vector<bool>& is_meant)
{
    for (std::size_t i = 0; i < is_meant.size(); ++i)
        if (is_meant[i])
            commandGroups()[i].add(app, context);
}

int run(const std::vector<std::string>& arguments, cli_context& context)
{
    CLI::App app("Reads, converts and checks the models, archives and animations of Total War games.", "korvane");
    app.allow_windows_style_options(false); // a path may begin with '/'
    app.set_version_flag("--version", std::string(program_name) + " " + std::string(program_version));
    app.require_subcommand(1);
    app.fallthrough(); // shared options may stand behind the command, too
    addSharedOptions(app, context);
    std::vector<bool> is_meant = groupsMeant(arguments);
    addCommands(app, context, is_meant);

    try
    {
        std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
        app.parse(std::move(reversed));
    }
    catch (const CLI::Success& success) // --help, --version
    {
        std::ostringstream text;
        app.exit(success, text, text);
        context.print(text.str());
        return context.exitStatus();
    }
    catch (const CLI::ParseError& error)
    {
        is_meant.flip();
        addCommands(app, context, is_meant); // the nearest name may be one of these
        console::error("korvane: " + whatIsWrong(app, error, arguments) + " (see korvane " + understood(app).second +
                       "--help)\n");
        return 2;
    }
    return context.exitStatus();
}

} // namespace

int main(int count, char** values)
{
    console::prepare();
    cli_context context;
    console_game game(context);
    context.setGame(game);
    try
    {
        const int status = run(console::arguments(count, values), context);
        if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
            return status;
        if (status == 0)
            console::error("korvane: standard output cannot be written\n");
        return 1;
    }
    catch (const std::bad_alloc&)
    {
        context.fail({failure_kind::unreadable, "not enough memory", context.currentFile(), 0, ""});
    }
    catch (const std::exception& error)
    {
        context.fail({failure_kind::refused, oneLine(error.what()), "", 0, ""});
    }
    return 1;
}
