#pragma once

// An FBX file as a tree of records, without any knowledge of what they mean: name, values and children
// (docs/formats/fbx.md, "Container"). The readers make one out of a binary or text file of any version from 6100 to
// 7700, the writer makes a binary file of version 7400 out of one. Values own their data. One thread at a time.

#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <cstdint>
#include <functional>
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

// Type letters of the binary form: C (a truth value as bool, a letter like the 'U' of a version 6100 key as char), Y,
// I, L, F, D, S, R, and the arrays b, i, l, f, d. Texts are the file's bytes; an object's full name is "Name\0\1Class",
// in text files, too. Text files do not say types: a whole number is I, or L when it needs more than 32 bits, any other
// D.
using fbx_value = std::variant<bool, char, std::int16_t, std::int32_t, std::int64_t, float, double, std::string,
                               fbx_bytes, std::vector<std::uint8_t>, std::vector<std::int32_t>,
                               std::vector<std::int64_t>, std::vector<float>, std::vector<double>>;

struct fbx_record
{
    std::string name;
    std::vector<fbx_value> values;
    std::vector<fbx_record> children;
    // A list record ends with an empty record in binary files even when it has no children; kept so that what is
    // written is what was read.
    bool is_list = false;
    std::uint64_t offset = 0; // where it begins in the file that it was read from

    fbx_record() = default;
    explicit fbx_record(std::string record_name) : name(std::move(record_name)) {}
    template <typename... types>
    explicit fbx_record(std::string record_name, types&&... arguments) : name(std::move(record_name))
    {
        values.reserve(sizeof...(arguments));
        (values.emplace_back(std::forward<types>(arguments)), ...);
    }

    // Adds a child and returns it; valid until the next one is added.
    template <typename... types>
    fbx_record& add(std::string record_name, types&&... arguments)
    {
        is_list = true;
        return children.emplace_back(std::move(record_name), std::forward<types>(arguments)...);
    }

    // The first child of that name; null: none.
    const fbx_record* find(std::string_view wanted) const;

    // Values by position, converted where that loses nothing that matters: numbers of any type among each other (a
    // fraction is cut off; the letters Y and T are 1, N and F are 0). The fallback is for a value that is not there, of
    // another kind, or too large. A letter is a text, too.
    std::int64_t integerAt(std::size_t position, std::int64_t fallback = 0) const;
    double numberAt(std::size_t position, double fallback = 0) const;
    std::string_view textAt(std::size_t position) const; // empty: none
    // All numbers as one list: those of arrays and, as version 6100 lists them, single ones in a row. Texts are left
    // out.
    std::vector<double> numbers() const;
    std::vector<std::int64_t> integers() const; // of those, the ones that are no whole number in range as 0
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
// contradicts itself; the document then stays as it is, and so it does for bad_alloc, the only thing thrown. Limits:
// depth of records (64), length of names (255), bytes of all unpacked arrays (32 MiB, or 64 times the file's size, but
// never more than 4 GiB), and no count or length that the file's own bytes do not justify. Large compressed arrays are
// unpacked by several threads, which have ended on return.
[[nodiscard]] bool readFbx(std::span<const std::byte> bytes, fbx_document& document, failure& why);

// A binary file of version 7400, whatever the document's own version and byte order. FileId, CreationTime and the
// footer, which fit together, are put in by the writer, behind FBXHeaderExtension or in the place of those in the
// document, and FBXHeaderExtension/FBXVersion, where it stands, says 7400: the same document gives the same bytes
// (creation time: see creationTime()). Names have at most 255 bytes. Empty: more than the 4 GiB that positions in such
// a file can reach.
[[nodiscard]] std::vector<std::byte> writeFbx(const fbx_document& document);

// For several documents that begin alike: the large arrays of the first one, compressed, in the order of writing; and a
// file of a document whose first large arrays are these. The bytes are those that writeFbx(document) gives.
using fbx_packed_arrays = std::vector<std::vector<std::byte>>;
[[nodiscard]] fbx_packed_arrays packFbx(const fbx_document& document);
[[nodiscard]] std::vector<std::byte> writeFbx(const fbx_document& document, const fbx_packed_arrays& first_arrays);

// "1970-01-01 10:00:00:000", or what SOURCE_DATE_EPOCH says (seconds, UTC).
[[nodiscard]] std::string creationTime();

// Takes a text's parts in their order.
using fbx_text_sink = std::function<void(std::string_view part)>;

// All records as text, one line each, indented by two blanks a level: name, values with their type letters, and for an
// array the count and its numbers, shortened to so many (0: whole). Control characters are shown as \x01.
void dumpFbx(const fbx_document& document, std::size_t array_limit, const fbx_text_sink& sink);
// In one piece, for small documents.
[[nodiscard]] std::string dumpFbx(const fbx_document& document, std::size_t array_limit = 0);

} // namespace korvane
