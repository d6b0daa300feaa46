#pragma once

// Where code without a window writes its log lines. The program gives it the log file, the console its standard error,
// tests a list.

#include <functional>
#include <string>

namespace korvane
{

// Takes one line of UTF-8 without its end. Empty: nobody listens. Who hands a port to several threads says so and makes
// it safe for them.
using log_port = std::function<void(const std::string& line)>;

inline void tell(const log_port& log, const std::string& line)
{
    if (log)
        log(line);
}

} // namespace korvane
