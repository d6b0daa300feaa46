#pragma once

// How a row of a list, a tree or a panel stands out. What shows it picks colours that fit the system's.

namespace korvane
{

enum class row_mark
{
    plain,
    good,
    dimmed, // there, but of no effect now
    note,
    warning,
    error // missing, broken
};

} // namespace korvane
