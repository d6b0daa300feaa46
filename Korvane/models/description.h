#pragma once

// A model told to a person: a laid-out plain text, UTF-8, LF line ends.

#include "Korvane/models/rmv2_file.h"

#include <functional>
#include <string>

namespace korvane
{

// Handed to print piece by piece; with_vertices adds a line for each vertex and triangle. Control characters in the
// file's texts are shown as \x1b and so on.
void describeModel(const rmv2_file& model, bool with_vertices, const std::function<void(const std::string&)>& print);

// One group with all that belongs to it, as describeModel tells of it, with the paths and alpha mode that a save would
// write; index is the number that it is called by.
[[nodiscard]] std::string describeGroup(const group_data& group, std::size_t index);

} // namespace korvane
