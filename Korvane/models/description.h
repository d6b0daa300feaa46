#pragma once

// A model told to a person: a laid-out plain text, UTF-8, LF line ends.

#include "Korvane/models/rmv2_file.h"

#include <string>

namespace korvane
{

[[nodiscard]] std::string describeModel(const rmv2_file& model);

} // namespace korvane
