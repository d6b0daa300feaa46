#include "Korvane/cli/cli_context.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/console.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace korvane
{

void cli_context::addJsonOption(CLI::App& command)
{
    command.add_flag("--json", is_json, "Print one JSON document instead of text");
}

void cli_context::print(std::string_view text)
{
    if (text.empty())
        return;
    m_progress.clear();
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() && m_exit_status == 0)
    {
        m_exit_status = 1;
        console::error("korvane: standard output cannot be written\n");
    }
}

void cli_context::printJson(const json& document)
{
    print(document.dump() + "\n");
}

void cli_context::note(const std::string& text)
{
    if (!is_quiet)
        printError(text + "\n");
}

log_port cli_context::notePort()
{
    return [this](const std::string& line) { note(terminalText(line)); };
}

work_port cli_context::workPort()
{
    work_port work;
    work.log = notePort();
    work.failed = [this](const failure& why) { nameFailure(why); };
    work.progress = [this](const work_progress& step) { progress(terminalText(step.what)); };
    return work;
}

void cli_context::progress(const std::string& text)
{
    if (!is_quiet && console::isTerminal(stderr))
        m_progress.show(text);
}

void cli_context::printError(const std::string& text)
{
    m_progress.clear();
    std::fflush(stdout); // results keep their place before it
    console::error(text);
}

void cli_context::nameFailure(const failure& why)
{
    nameFailure(terminalText(describe(why)));
}

void cli_context::nameFailure(const std::string& line)
{
    printError(line + "\n");
}

void cli_context::fail(const failure& why)
{
    printError("korvane: " + displayText(describe(why)) + "\n");
    m_exit_status = 1;
}

CLI::Validator notEmpty()
{
    return CLI::Validator(
        [](const std::string& text) { return text.empty() ? std::string("it is empty") : std::string(); }, "");
}

CLI::Validator endingIn(const std::string& ending)
{
    return CLI::Validator(
        [ending](const std::string& text) {
            return endsWithIgnoringCase(text, ending) ? std::string()
                                                      : "the name must end in " + ending + ", not as in " + text;
        },
        "");
}

CLI::Validator finiteNumber()
{
    return CLI::Validator(
        [](const std::string& text) {
            char* end = nullptr;
            const double value = std::strtod(text.c_str(), &end);
            return !text.empty() && *end == '\0' && std::isfinite(value) ? std::string()
                                                                         : "\"" + text + "\" is no number";
        },
        "");
}

CLI::Validator wholeNumber()
{
    return CLI::Validator(
        [](const std::string& text) {
            const bool is_whole =
                !text.empty() && text.size() <= 10 && text.find_first_not_of("0123456789") == std::string::npos;
            return is_whole ? std::string() : "\"" + text + "\" is no whole number from 0 on";
        },
        "");
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
