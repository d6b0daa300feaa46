#pragma once

// An FBX file as a tree of records, without any knowledge of what they mean: name, values and children
// (docs/formats/fbx.md, "Container"). The readers make one out of a binary or text file of any version from 6100 to 7700,
// the writer makes a binary file of version 7400 out of one. Values own their data. One thread at a time.

#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace korvane
{

struct fbx_bytes // a value of type R
{
    std::vector<std::byte> data;
    friend bool operator==(const fbx_bytes&, const fbx_bytes&) = default;
};

// Type letters of the binary form: C, Y, I, L, F, D, S, R, and the arrays b, i, l, f, d. Texts are the file's bytes; an
// object's full name is "Name\0\1Class", in text files, too.
using fbx_value = std::variant<bool, std::int16_t, std::int32_t, std::int64_t, float, double, std::string, fbx_bytes,
                               std::vector<std::uint8_t>, std::vector<std::int32_t>, std::vector<std::int64_t>,
                               std::vector<float>, std::vector<double>>;

struct fbx_record
{
    std::string name;
    std::vector<fbx_value> values;
    std::vector<fbx_record> children;
    // A list record ends with an empty record in binary files even when it has no children; kept so that what is
    // written is what was read.
    bool is_list = false;

    fbx_record() = default;
    explicit fbx_record(std::string record_name) : name(std::move(record_name)) {}
    template <typename... types>
    explicit fbx_record(std::string record_name, types&&... arguments) : name(std::move(record_name))
    {
        values.reserve(sizeof...(arguments));
        (values.emplace_back(std::forward<types>(arguments)), ...);
    }

    // Adds a child and returns it; valid until the next one is added.
    template <typename... types> fbx_record& add(std::string record_name, types&&... arguments)
    {
        is_list = true;
        return children.emplace_back(std::move(record_name), std::forward<types>(arguments)...);
    }

    // The first child of that name; null: none.
    const fbx_record* find(std::string_view wanted) const;

    // Values by position, converted where that loses nothing that matters: numbers of any type among each other, arrays
    // of numbers among each other, several numbers in a row as an array (version 6100 lists them so). The fallback is for
    // a value that is not there or of another kind.
    std::int64_t integerAt(std::size_t position, std::int64_t fallback = 0) const;
    double numberAt(std::size_t position, double fallback = 0) const;
    std::string_view textAt(std::size_t position) const; // empty: none
    std::vector<double> numbers() const;                 // all values as one list
    std::vector<std::int64_t> integers() const;
};

struct fbx_document
{
    std::uint32_t version = 7400;
    bool is_binary = true;
    bool is_big_endian = false;
    std::vector<fbx_record> records; // of the top level

    const fbx_record* find(std::string_view wanted) const;
};

// Reads either form; which one it is, the first bytes say. False, with the reason and the position, for anything that
// contradicts itself; the document then stays as it is. Limits: depth of records, values of a record, names, and memory
// that is justified by the file's own bytes.
[[nodiscard]] bool readFbx(std::span<const std::byte> bytes, fbx_document& document, failure& why);

// A binary file of version 7400. FileId, CreationTime and the footer, which fit together, are put in by the writer: the
// same document gives the same bytes (creation time: see creationTime()).
[[nodiscard]] std::vector<std::byte> writeFbx(const fbx_document& document);

// "1970-01-01 10:00:00:000", or what SOURCE_DATE_EPOCH says (seconds, UTC).
[[nodiscard]] std::string creationTime();

// All records as text, one line each, arrays shortened to so many numbers (0: whole).
[[nodiscard]] std::string dumpFbx(const fbx_document& document, std::size_t array_limit = 0);

} // namespace korvane
