#pragma once

// Folders as a person gives them, on a command line, in a dialog or for the configuration.

#include <string>
#include <vector>

namespace korvane
{

[[nodiscard]] bool endsInSeparator(const std::string& folder);
// With a separator at its end: of the kind that it has itself, else of this system.
[[nodiscard]] std::string withSeparator(std::string folder);
// The configuration serves from every folder: one that is there with its whole path; another one as it is.
[[nodiscard]] std::string wholeFolder(const std::string& folder);
// Each as a folder with a separator at its end. In one that does not exist a quotation mark stands where a shell
// took the separator before it for an escape: "C:\a\" and "D:\b\" arrive as one text, C:\a" D:\b". It ends a folder.
[[nodiscard]] std::vector<std::string> foldersGiven(const std::vector<std::string>& given);

} // namespace korvane
