#include "Korvane/cli/cli_context.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/console.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace korvane
{

void cli_context::addJsonOption(CLI::App& command)
{
    command.add_flag("--json", is_json, "Print one JSON document instead of text");
}

void cli_context::print(std::string_view text)
{
    if (!text.empty() && std::fwrite(text.data(), 1, text.size(), stdout) != text.size() && m_exit_status == 0)
    {
        m_exit_status = 1;
        std::fputs("korvane: standard output cannot be written\n", stderr);
    }
}

void cli_context::printJson(const json& document)
{
    print(document.dump() + "\n");
}

void cli_context::note(const std::string& text)
{
    endProgress();
    if (!is_quiet)
        std::fputs((text + "\n").c_str(), stderr);
}

void cli_context::progress(const std::string& text)
{
    if (is_quiet || !console::isTerminal(stderr))
        return;
    std::fputs(("\r\x1b[K" + text).c_str(), stderr);
    std::fflush(stderr);
    m_has_progress = true;
}

void cli_context::endProgress()
{
    if (m_has_progress)
        std::fputs("\r\x1b[K", stderr);
    m_has_progress = false;
}

void cli_context::fail(const failure& why)
{
    endProgress();
    std::fputs(("korvane: " + displayText(describe(why)) + "\n").c_str(), stderr);
    m_exit_status = 1;
}

json jsonNumber(float value)
{
    if (!std::isfinite(value))
        return floatText(value);
    // The double with the float's shortest digits prints as these digits.
    const std::string text = floatText(value);
    double digits = 0;
    std::from_chars(text.data(), text.data() + text.size(), digits);
    return digits;
}

} // namespace korvane
