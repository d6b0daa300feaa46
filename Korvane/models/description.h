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

} // namespace korvane
