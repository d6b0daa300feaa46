#pragma once

// One thing that a check found in a model or a definition: how bad it is, where it is, and what it means in words that
// a person understands without knowing the file format. Texts are UTF-8.

#include <cstddef>
#include <optional>
#include <string>

namespace korvane
{

enum class finding_severity
{
    note,    // worth knowing
    warning, // probably not what was meant
    error    // goes wrong in the game or in an exchange
};

// Counted from 0; nothing where a finding is about the whole file, LOD or group.
struct finding_place
{
    std::optional<std::size_t> lod;
    std::optional<std::size_t> group;
    std::optional<std::size_t> texture;
};

struct finding
{
    finding_severity severity = finding_severity::note;
    std::string file; // as it was given, or with "pack:" an internal path
    finding_place place;
    std::string kind; // one word for programs, "texture_missing": docs/command_line.md has them all
    std::string text; // one sentence, without the place
};

} // namespace korvane
