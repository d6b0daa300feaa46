#include "EASY_GUI/services/shared_config.h"

#include <utility>

namespace korvane
{

shared_config::shared_config(config_file& table, const std::string& path, listeners told)
    : m_table(table)
    , m_path(path.empty() ? config_file::defaultPath() : path)
    , m_told(std::move(told))
    , m_stamp(stampOf(m_path))
{
}

bool shared_config::change(const config_file::change_function& change)
{
    failure why;
    const bool is_written = m_table.change(m_path, change, why);
    noteOwnChange();
    if (is_written)
        return true;
    if (m_told.failed)
        m_told.failed(why);
    if (!std::exchange(m_has_told, true) && m_told.not_kept)
        m_told.not_kept(why);
    return false;
}

bool shared_config::set(std::string_view key, const std::vector<std::string>& values)
{
    return change([&](config_file& config) {
        if (config.get(key) == values)
            return false;
        config.clear(key);
        config.add(key, values, false);
        return true;
    });
}

bool shared_config::takeUp()
{
    const file_stamp now = stampOf(m_path);
    config_file fresh;
    if (now == m_stamp || !fresh.load(m_path))
        return false;
    m_table = std::move(fresh);
    m_stamp = now;
    return true;
}

} // namespace korvane
