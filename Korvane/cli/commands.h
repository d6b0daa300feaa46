#pragma once

// Every command of the console program; each is defined in a file of its own.

#include "Korvane/cli/cli_context.h"

namespace korvane
{

void addInfoCommand(CLI::App& app, cli_context& context);
void addArchiveCommands(CLI::App& app, cli_context& context);
void addAnimCommands(CLI::App& app, cli_context& context);
void addCheckCommand(CLI::App& app, cli_context& context);
void addConfigCommand(CLI::App& app, cli_context& context);
void addConvertCommand(CLI::App& app, cli_context& context);
void addDemoDataCommand(CLI::App& app, cli_context& context);
void addEditCommand(CLI::App& app, cli_context& context);
void addExportCommand(CLI::App& app, cli_context& context);
void addFbxCommand(CLI::App& app, cli_context& context);
void addDdsCommand(CLI::App& app, cli_context& context);
void addNormalMapCommand(CLI::App& app, cli_context& context);
void addPatchCommand(CLI::App& app, cli_context& context);
void addTexturesCommand(CLI::App& app, cli_context& context);
void addUsageCommands(CLI::App& app, cli_context& context);
void addVariantCommand(CLI::App& app, cli_context& context);
#ifdef _WIN32
void addRenderCommand(CLI::App& app, cli_context& context);
#endif

} // namespace korvane
