#pragma once

// A Windows command line as one text, taken apart by the usual rules of quotation marks and backslashes, but for one
// thing that people write all the time: "C:\Total War\data\" is a folder with its separator. By the rules its last \"
// would be a quotation mark of the value, and everything behind it a part of the value, too.

#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// The arguments without the program's name. In quotation marks a single \" before a blank or the end closes them,
// unless the argument has had a \" before.
[[nodiscard]] std::vector<std::string> splitCommandLine(std::string_view line);

} // namespace korvane
