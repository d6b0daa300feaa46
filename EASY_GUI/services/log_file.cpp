#include "EASY_GUI/services/log_file.h"

#include "EASY_GUI/services/file_system.h"

#include <chrono>
#include <fstream>

namespace korvane
{

utc_time systemUtcTime()
{
    using namespace std::chrono;
    const auto now = system_clock::now();
    const auto today = floor<days>(now);
    const year_month_day date(today);
    const hh_mm_ss<minutes> time(floor<minutes>(now - today));
    return {static_cast<int>(static_cast<unsigned>(date.day())), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(date.year()), static_cast<int>(time.hours().count()),
            static_cast<int>(time.minutes().count())};
}

bool log_file::open(const std::string& file_name)
{
    return openAt(executableFolder() + file_name);
}

bool log_file::openAt(const std::string& path)
{
    const utc_time now = m_clock();
    const std::string stars = std::string(80, '*') + "\r\n";
    const std::string stamp = "\t" + std::to_string(now.day) + "-" + std::to_string(now.month) + "-" +
                              std::to_string(now.year) + " " + std::to_string(now.hour) + ":" +
                              std::to_string(now.minute);
    m_path = path;
    if (append("\r\n\r\n\r\n" + stars + "*\t\t\t\t\t\t\tKorvane 0.X debugging log\r\n" + stars + "*" + stamp + "\r\n" +
               stars))
        return true;
    m_path.clear();
    return false;
}

void log_file::write(const std::string& text)
{
    if (!m_path.empty())
        append(text);
}

bool log_file::append(const std::string& text) const
{
    std::ofstream file(toPath(m_path), std::ios::app);
    file << text;
    file.flush();
    return file.good();
}

} // namespace korvane
