#pragma once

// The commands below "korvane anim", and what they share. addAnimCommands() is in commands.h.

#include "Korvane/animation/anim_file.h"
#include "Korvane/cli/cli_context.h"

#include <memory>
#include <string>
#include <vector>

namespace korvane
{

void addAnimInfoCommand(CLI::App& anim, cli_context& context);
void addAnimSampleCommand(CLI::App& anim, cli_context& context);
void addAnimFileCommands(CLI::App& anim, cli_context& context); // dump, bone-table, search

// The .anim file that an operand names, on the disk or with "pack:" in the archives, loaded that deep; null, and the
// reason, when that fails.
[[nodiscard]] std::shared_ptr<const anim_data> loadAnim(cli_context& context, const std::string& operand,
                                                        anim_depth depth, failure& why);

// False, with the reason, when the output would replace a file that it is made of.
[[nodiscard]] bool isFreeToWrite(const std::vector<std::string>& inputs, const std::string& output, failure& why);

} // namespace korvane
