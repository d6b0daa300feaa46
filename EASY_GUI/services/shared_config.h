#pragma once

// The configuration of a program that runs for long, beside others that change the same file: each change is made to
// the file as it stands now, and changes of others are taken up when the program asks. A folder that cannot be written
// to is told once; the program then goes on with what it knows. For the user-interface thread only.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/file_stamp.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

class shared_config
{
public:
    // The table outlives this and is loaded already. An empty path: "config.cfg" beside the program. not_kept is told
    // the first time that a change could not be written; the log line of each time goes there, too.
    struct listeners
    {
        std::function<void(const failure& why)> not_kept = {};
        std::function<void(const failure& why)> failed = {}; // each time
    };
    shared_config(config_file& table, const std::string& path, listeners told);

    std::vector<std::string> get(std::string_view key) const { return m_table.get(key); }
    const config_file& table() const { return m_table; }
    config_file& table() { return m_table; } // for loaders, which change it and the file themselves
    const std::string& path() const { return m_path; }

    // What is known has changed in any case; false when the file has not.
    bool change(const config_file::change_function& change);
    bool set(std::string_view key, const std::vector<std::string>& values); // in place of what the key holds
    // True when another program had changed the file since, and its table is known now.
    bool takeUp();
    // The file was changed by a loader: its stamp is that of what is known.
    void noteOwnChange() { m_stamp = stampOf(m_path); }

private:
    config_file& m_table;
    std::string m_path;
    listeners m_told;
    file_stamp m_stamp; // of the table that is known
    bool m_has_told = false;
};

} // namespace korvane
