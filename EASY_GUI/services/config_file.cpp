#include "EASY_GUI/services/config_file.h"

#include "EASY_GUI/services/file_lock.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <utility>

namespace korvane
{

namespace
{

class config_parser
{
public:
    config_parser(std::string text, config_file::table& table) : m_text(std::move(text)), m_table(table) {}

    std::string parse()
    {
        while (readKey())
        {
            m_table[m_key]; // a key without values is a key all the same
            while (readValue())
            {
            }
        }
        return m_error;
    }

private:
    bool atEnd() const { return m_cursor >= m_text.size(); }
    bool standsAt(std::string_view characters) const
    {
        return !atEnd() && characters.find(m_text[m_cursor]) != std::string_view::npos;
    }
    void skip(std::string_view characters)
    {
        while (standsAt(characters))
            ++m_cursor;
    }

    bool readKey()
    {
        skip("; \r\n");
        const std::size_t begin = m_cursor;
        while (standsAt("0123456789abcdefghijklmnopqrstuvwxyz_"))
            ++m_cursor;
        if (atEnd())
            m_error = "DONE";
        else if (m_cursor == begin)
            m_error = "Id has length = 0";
        if (!m_error.empty())
            return false;
        m_key = m_text.substr(begin, m_cursor - begin);
        skip(" =");
        return true;
    }

    // True when another value follows.
    bool readValue()
    {
        skip(" ,\n\r");
        if (standsAt("\""))
        {
            const std::size_t begin = ++m_cursor;
            m_cursor = std::min(m_text.find('"', begin), m_text.size());
            m_table[m_key].push_back(m_text.substr(begin, m_cursor - begin));
            m_cursor += atEnd() ? 0u : 1u;
        }
        else
        {
            // A line end does not end an unquoted value: part of the format's simplicity, relied on by nobody.
            const std::size_t begin = m_cursor;
            m_cursor = std::min(m_text.find_first_of(" ;,", begin), m_text.size());
            if (m_cursor > begin)
                m_table[m_key].push_back(m_text.substr(begin, m_cursor - begin));
        }
        return !atEnd() && m_text[m_cursor] != ';';
    }

    std::string m_text;
    config_file::table& m_table;
    std::size_t m_cursor = 0;
    std::string m_key;
    std::string m_error;
};

constexpr std::chrono::seconds patience(20); // a busy disk may take seconds for each of those who wait before

bool hasQuote(const std::string& value)
{
    return value.find('"') != std::string::npos;
}

} // namespace

std::string config_file::defaultPath()
{
    return executableFolder() + "config.cfg";
}

bool config_file::load(const std::string& path)
{
    // A file that is open while another program puts a new one in its place makes that fail on Windows.
    file_lock lock;
    failure ignored; // better without a lock than not at all
    (void)lock.take(path, patience, ignored);
    return readFrom(path);
}

bool config_file::readFrom(const std::string& path)
{
    m_table.clear();
    m_error.clear();
    memory_file file;
    failure why;
    if (!file.read(path, why))
        return false;
    m_error = config_parser(toLower(file.text()), m_table).parse();
    return true;
}

bool config_file::change(const std::string& given_path, const change_function& change, failure& why, damaged_end end)
{
    const std::string path = given_path.empty() ? defaultPath() : given_path;
    file_lock lock;
    config_file fresh;
    std::error_code error;
    if (lock.take(path, patience, why))
    {
        if (fresh.readFrom(path))
            *this = fresh;
        else if (std::filesystem::symlink_status(toPath(path), error).type() != std::filesystem::file_type::not_found)
            fail(why, failure_kind::unreadable, "the configuration cannot be read", path);
        if (!why && end == damaged_end::refused && !m_error.empty() && m_error != "DONE")
            fail(why, failure_kind::malformed, "the configuration cannot be understood to its end", path);
    }
    const bool is_changed = change(*this);
    if (!why && is_changed && !save(path))
        fail(why, failure_kind::unwritable, "the configuration cannot be written", path);
    return !why;
}

bool config_file::save(const std::string& path) const
{
    std::string text;
    for (const auto& [key, values] : m_table)
    {
        text += key + " = ";
        for (std::size_t i = 0; i < values.size(); ++i)
        {
            if (i > 0)
                text += ", ";
            text += '\r'; // alone, and deliberately so: readers skip it
            // A value with a quotation mark came in unquoted and only survives that way.
            text += hasQuote(values[i]) ? values[i] : '"' + values[i] + '"';
        }
        text += ";\r\n\r\n";
    }
    failure why;
    return writeWholeFile(path.empty() ? defaultPath() : path, text, why);
}

std::vector<std::string> config_file::get(std::string_view key) const
{
    const auto found = m_table.find(toLower(key));
    return found != m_table.end() ? found->second : std::vector<std::string>();
}

bool config_file::contains(std::string_view key, std::string_view value) const
{
    const auto found = m_table.find(toLower(key));
    return found != m_table.end() &&
           std::find(found->second.begin(), found->second.end(), toLower(value)) != found->second.end();
}

bool config_file::add(std::string_view key, const std::vector<std::string>& values, bool at_front)
{
    if (values.empty())
        return false;
    std::vector<std::string> added;
    for (const std::string& value : values)
        if (!contains(key, value) && !hasQuote(value))
            added.push_back(toLower(value));
    std::vector<std::string>& list = m_table[toLower(key)];
    for (std::string& value : added)
        list.insert(at_front ? list.begin() : list.end(), std::move(value));
    return true;
}

void config_file::clear(std::string_view key)
{
    const auto found = m_table.find(toLower(key));
    if (found != m_table.end())
        found->second.clear();
}

} // namespace korvane
