#include "EASY_GUI/services/command_line.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view blanks = " \t";

class command_line_splitter
{
public:
    explicit command_line_splitter(std::string_view line) : m_line(line) { skipProgram(); }

    bool next(std::string& argument)
    {
        m_at = std::min(m_line.find_first_not_of(blanks, m_at), m_line.size());
        if (m_at == m_line.size())
            return false;
        m_argument.clear();
        m_is_quoted = false;
        m_has_escapes = false;
        while (m_at < m_line.size() && (m_is_quoted || !standsBlankAt(m_at)))
            takeCharacter();
        argument = std::move(m_argument);
        return true;
    }

private:
    // A file name has no quotation marks, so nothing is escaped in it.
    void skipProgram()
    {
        bool is_quoted = false;
        for (; m_at < m_line.size() && (is_quoted || !standsBlankAt(m_at)); ++m_at)
            is_quoted ^= m_line[m_at] == '"';
    }
    bool standsBlankAt(std::size_t at) const { return blanks.find(m_line[at]) != std::string_view::npos; }

    void takeCharacter()
    {
        if (m_line[m_at] == '\\')
            takeBackslashes();
        else if (m_line[m_at] == '"')
            takeQuote();
        else
            m_argument += m_line[m_at++];
    }

    // Backslashes are ordinary characters unless a quotation mark follows them.
    void takeBackslashes()
    {
        const std::size_t end = std::min(m_line.find_first_not_of('\\', m_at), m_line.size());
        const std::size_t count = end - m_at;
        const bool is_before_quote = end < m_line.size() && m_line[end] == '"';
        m_at = end;
        if (!is_before_quote || isSeparatorAtEnd(count))
        {
            m_argument.append(count, '\\');
            return;
        }
        m_argument.append(count / 2, '\\');
        if (count % 2 == 0)
            return;
        m_argument += '"';
        m_has_escapes = true;
        ++m_at;
    }
    bool isSeparatorAtEnd(std::size_t count) const
    {
        return count == 1 && m_is_quoted && !m_has_escapes && (m_at + 1 == m_line.size() || standsBlankAt(m_at + 1));
    }

    void takeQuote()
    {
        ++m_at;
        if (m_is_quoted && m_at < m_line.size() && m_line[m_at] == '"') // doubled: one of the value
            m_argument += m_line[m_at++];
        else
            m_is_quoted = !m_is_quoted;
    }

    std::string_view m_line;
    std::size_t m_at = 0;
    std::string m_argument;
    bool m_is_quoted = false;
    bool m_has_escapes = false;
};

} // namespace

std::vector<std::string> splitCommandLine(std::string_view line)
{
    command_line_splitter splitter(line);
    std::vector<std::string> arguments;
    for (std::string argument; splitter.next(argument);)
        arguments.push_back(argument);
    return arguments;
}

} // namespace korvane
