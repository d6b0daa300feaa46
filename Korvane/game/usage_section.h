#pragma once

// What the models and definitions of one archive name, as tables: a part of usage_index, and what its store writes.

#include "Korvane/game/usage_index.h"

#include <span>

namespace korvane
{

struct usage_index::section
{
    struct text_place
    {
        std::uint32_t at = 0;
        std::uint32_t length = 0;
    };
    struct name // of a file that is named
    {
        text_place path; // or a skeleton's id
        std::uint32_t first_use = 0;
    };
    struct use
    {
        std::uint32_t user = 0; // a number in users
        std::uint32_t texture_type = 0;
        use_kind kind = use_kind::texture;
    };

    // The archive as it was; of a mod folder, which is read anew each time, no size and no time.
    std::string archive_path;
    std::uint64_t archive_size = 0;
    std::int64_t archive_time = 0;

    std::string text;
    std::vector<text_place> users; // internal paths of the models and definitions
    std::vector<name> names;       // ordered by path; the uses of each follow those of the one before
    std::vector<use> uses;
    std::vector<std::string> damaged;

    std::string_view textAt(text_place place) const { return std::string_view(text).substr(place.at, place.length); }
    // The uses of that path or id.
    std::span<const use> usesOf(std::string_view path) const;
};

} // namespace korvane
