#pragma once

// Where a command's operands come from: the disk, or with the prefix "pack:" the archives of the data folders, which
// are loaded when the first such operand is met.

#include "Korvane/archives/path_tree.h"
#include "Korvane/cli/cli_context.h"
#include "Korvane/models/rmv2_file.h"

#include <memory>
#include <string>

namespace korvane
{

// The tree of all archives; null, and the reason, when they cannot be loaded. Damaged archives are named on standard
// error and left out.
[[nodiscard]] std::shared_ptr<const path_tree> loadArchives(cli_context& context, failure& why);

// True when data folders are named, on the command line or in the configuration.
[[nodiscard]] bool hasDataFolders(const cli_context& context);

// Reads what an operand names, from the disk or out of the archives.
[[nodiscard]] bool readOperand(cli_context& context, const std::string& operand, memory_file& bytes, failure& why);
[[nodiscard]] bool readModelOperand(cli_context& context, const std::string& operand, memory_file& bytes, failure& why);
// A note tells of a model that can be read although its version word contradicts its headers.
[[nodiscard]] bool openModel(cli_context& context, const std::string& operand, rmv2_file& model, failure& why);

} // namespace korvane
