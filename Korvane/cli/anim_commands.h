#pragma once

// The commands below "korvane anim". addAnimCommands() is in commands.h.

#include "Korvane/cli/cli_context.h"

namespace korvane
{

void addAnimInfoCommand(CLI::App& anim, cli_context& context);
void addAnimSampleCommand(CLI::App& anim, cli_context& context);
void addAnimFileCommands(CLI::App& anim, cli_context& context); // dump, bone-table, search

} // namespace korvane
