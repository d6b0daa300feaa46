#pragma once

// The commands below "korvane anim", and what they share. addAnimCommands() is in commands.h.

#include "Korvane/animation/anim_file.h"
#include "Korvane/cli/cli_context.h"

#include <memory>
#include <string>

namespace korvane
{

void addAnimSampleCommand(CLI::App& anim, cli_context& context);

// The .anim file that an operand names, on the disk or with "pack:" in the archives, loaded that deep; null, and the
// reason, when that fails.
[[nodiscard]] std::shared_ptr<const anim_data> loadAnim(cli_context& context, const std::string& operand,
                                                        anim_depth depth, failure& why);

} // namespace korvane
