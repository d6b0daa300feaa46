#include "Korvane/cli/anim_commands.h"

#include "Korvane/cli/commands.h"

namespace korvane
{

void addAnimCommands(CLI::App& app, cli_context& context)
{
    CLI::App* const anim = app.add_subcommand("anim", "Skeletons and animations");
    anim->require_subcommand(1);
    anim->fallthrough();
    addAnimInfoCommand(*anim, context);
    addAnimSampleCommand(*anim, context);
    addAnimFileCommands(*anim, context);
}

} // namespace korvane
