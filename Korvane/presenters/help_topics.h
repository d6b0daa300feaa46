#pragma once

// The guide: one page for a browser, beside the program, with a place for every page and dialog. Texts are UTF-8.

#include "EASY_GUI/services/failure.h"

#include <optional>
#include <string>

namespace korvane
{

// What somebody may want to know about where they are. The numbers go through the system's help messages, in which 0 is
// nothing.
enum class help_topic
{
    none,
    start,
    first_start,
    unit,
    figure,
    playing,
    repaint,
    path_prefix,
    alpha,
    archives,
    archive_order,
    taking_out,
    own_files,
    cache,
    blender,
    animation_back,
    bone_tables,
    pictures,
    checks,
};

// The file to be opened in the browser, which shows the guide at the topic. It is a small page beside the guide that
// leads there: a system that is asked to open a file at a place in it opens it at its start. Where that page cannot be
// written: the guide itself. Nothing, with the reason: there is no guide. The folder ends in a separator.
[[nodiscard]] std::optional<std::string> wayIntoGuide(const std::string& program_folder, help_topic topic,
                                                      failure& why);

} // namespace korvane
