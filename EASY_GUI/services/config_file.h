#pragma once

// The user's settings: a table of keys, each with a list of texts, kept in "config.cfg" (docs/formats/config_cfg.md).
// Keys and values are lower case in memory, ASCII letters only; every function takes them in any case. There are no
// built-in defaults: a key that was never set has an empty list. For the user-interface thread only.

#include "EASY_GUI/services/failure.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

class config_file
{
public:
    // Replaces the table by the file's content; false, with an empty table, when the file cannot be read. A malformed
    // file gives what stands before the damage (errorText() says why reading ended) and is no failure.
    bool load(const std::string& path);
    // The one way to change the file, for other programs change it, too: reads it as it is now, makes the change and
    // writes it, all under its lock (file_lock.h). The change says whether there is anything to write. A file that is
    // not there is made of this table. False, with the reason, when the file cannot be read, locked or written, or not
    // be understood to its end (writing it would lose the rest, which a person may allow); this table is changed all
    // the same, and the file is what it was. An empty path is "config.cfg" beside the program.
    using change_function = std::function<bool(config_file&)>;
    enum class damaged_end
    {
        refused,
        dropped
    };
    [[nodiscard]] bool change(const std::string& path, const change_function& change, failure& why,
                              damaged_end end = damaged_end::refused);

    // Writes the whole table through the whole-file writer. An empty path is "config.cfg" beside the program.
    [[nodiscard]] bool save(const std::string& path) const;

    std::vector<std::string> get(std::string_view key) const;
    bool contains(std::string_view key, std::string_view value) const;
    // Adds the values that the key does not hold yet: each in turn to the front (so that the last one comes to stand
    // first) or to the end. A value with a double-quote mark cannot be stored in the file and is left out. False when
    // the given list is empty.
    bool add(std::string_view key, const std::vector<std::string>& values, bool at_front);
    // Empties the list of an existing key; the key stays.
    void clear(std::string_view key);

    using table = std::map<std::string, std::vector<std::string>, std::less<>>;
    const table& entries() const { return m_table; }
    // "DONE" after a file was read to its end, "Id has length = 0" when a key was expected and none stood there.
    const std::string& errorText() const { return m_error; }

    static std::string defaultPath();

private:
    bool readFrom(const std::string& path);

    table m_table; // in byte order, which is the order in the file
    std::string m_error;
};

} // namespace korvane
