#pragma once

// Internal paths as text. In the archives they are lower case (ASCII), with '\' between components; people, models and
// definitions spell them as they like.

#include <cstddef>
#include <string>
#include <string_view>

namespace korvane
{

// A path as somebody spells it, in the form of the archives: lower case, '\' between components, none of them empty (so
// "\\" counts as "\"), without blanks and separators at the ends.
[[nodiscard]] std::string normalInternalPath(std::string_view spelled);

// The folder in which an internal path stands, without a separator at its end; empty at the top.
[[nodiscard]] std::string_view folderAround(std::string_view path);

// True for a path with an empty component: two separators in a row, or one at either end.
[[nodiscard]] bool hasEmptyComponents(std::string_view path);
// Drops them in place; returns the new length.
[[nodiscard]] std::size_t dropEmptyComponents(char* path, std::size_t length);

// True for a stored path that no spelling leads to by its normal form: with a '/', or with a blank at one of its ends.
// Both are ordinary characters to an archive, and there are some.
[[nodiscard]] bool isOddlyStored(std::string_view path);

} // namespace korvane
