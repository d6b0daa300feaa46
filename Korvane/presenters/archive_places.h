#pragma once

// What the page of the archives keeps in the configuration: the folder that was shown, how its list was sorted, and the
// folders that a person comes back to. Nonsense that stands there is passed over.

#include "EASY_GUI/services/config_file.h"
#include "Korvane/presenters/archive_browser.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// Internal paths, in the order in which they were added.
[[nodiscard]] std::vector<std::string> favouriteFolders(const config_file& config);
// True when the configuration changed.
bool setFavourite(config_file& config, const std::string& folder, bool is_wanted);

// Before the browser is given archives.
void restorePlace(archive_browser& browser, const config_file& config);
bool keepPlace(config_file& config, const archive_browser& browser);

} // namespace korvane
