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

// "LOD 0, group 2, texture 1"; empty for a whole file. first: what the first of each is called.
[[nodiscard]] inline std::string placeText(const finding_place& place, std::size_t first = 0)
{
    std::string text;
    if (place.lod)
        text = "LOD " + std::to_string(*place.lod + first);
    if (place.group)
        text += ", group " + std::to_string(*place.group + first);
    if (place.texture)
        text += ", texture " + std::to_string(*place.texture + first);
    return text;
}
[[nodiscard]] inline const char* severityName(finding_severity severity)
{
    return severity == finding_severity::note ? "note" : severity == finding_severity::warning ? "warning" : "error";
}

struct finding
{
    finding_severity severity = finding_severity::note;
    std::string file; // as it was given, or with "pack:" an internal path
    finding_place place;
    std::string kind; // one word for programs, "texture_missing": docs/command_line.md has them all
    std::string text; // one sentence, without the place
};

// "warning: LOD 0, group 2: ...", one line, without the file.
[[nodiscard]] inline std::string describe(const finding& each, std::size_t first = 0)
{
    const std::string place = placeText(each.place, first);
    return severityName(each.severity) + (place.empty() ? "" : ": " + place) + ": " + each.text;
}

} // namespace korvane
