#pragma once

// Why an operation returned false, zero or nothing. The one way in which portable code reports an error: nothing
// throws across a folder's border.

#include <cstdint>
#include <string>

namespace korvane
{

enum class failure_kind
{
    none,
    not_found,   // no such file, entry or key
    unreadable,  // it is there, but reading it failed
    unwritable,  // the target could not be created, written or renamed
    truncated,   // the input ends inside a field
    malformed,   // a value contradicts the rest of the input or a limit
    unsupported, // well formed, but a version or kind that is not handled
    refused      // a request that makes no sense for what is loaded
};

struct failure
{
    failure_kind kind = failure_kind::none; // programs branch on this
    std::string what;                       // people read this: found and expected, one sentence, UTF-8
    std::string path;                       // the file or internal path, as it was given; UTF-8
    std::uint64_t offset = 0;               // byte position in the input
    std::string field;                      // "LOD 0, group 2, vertex_count"; empty: offset says nothing

    explicit operator bool() const { return kind != failure_kind::none; }
};

// Stores the failure unless an earlier one stands there: the first failure wins. Always returns false.
bool fail(failure& why, failure_kind kind, std::string what, std::string path = {});

// One line: path, what, and for a damaged file "(at byte OFFSET, FIELD)".
[[nodiscard]] std::string describe(const failure& why);

} // namespace korvane
