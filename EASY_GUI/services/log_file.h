#pragma once

// The program's diagnostic log: append-only, one banner per start. Every write opens, appends, flushes and closes the
// file, so that a message is on disk before write returns. For the user-interface thread, but for the last words of
// another one that ends the program.

#include <functional>
#include <string>
#include <utility>

namespace korvane
{

struct utc_time
{
    int day, month, year, hour, minute;
};

[[nodiscard]] utc_time systemUtcTime();

class log_file
{
public:
    explicit log_file(std::function<utc_time()> clock = systemUtcTime) : m_clock(std::move(clock)) {}

    // A file name in the program's own folder; writes the banner. False when the file cannot be opened: then write
    // does nothing.
    bool open(const std::string& file_name);
    // The same for a path anywhere.
    bool openAt(const std::string& path);

    // Appends the text; callers bring their own line ends "\r\n". In text mode: on Windows each "\n" gets one more
    // carriage return: that is the log's form.
    void write(const std::string& text);

private:
    bool append(const std::string& text) const;

    std::function<utc_time()> m_clock;
    std::string m_path; // empty until opened
};

} // namespace korvane
