#pragma once

// What becomes of edits that were not saved when a program ended (edit_keeper.h). The next start offers what it finds,
// and what it opens stays where it is until it is saved or discarded: a program that dies in between loses nothing. Of
// several programs the one that has the keep's lock has the keep.

#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/services/user_prompt.h"

#include <string>

namespace korvane
{

class open_files;

// The folder of the program itself.
[[nodiscard]] std::string defaultKeepFolder();

// At the start: asks for each keep whether it is to be opened, until one is. What is declined is removed when a
// second question allows it, what is opened when it is saved or discarded; what is damaged is named and left alone,
// what another program has is passed over, what was never whole is removed. True when the document now shows the edits,
// as edits that are not saved.
bool offerKeptEdits(const std::string& folder, open_files& document, user_prompt& prompt, const log_port& log);

} // namespace korvane
