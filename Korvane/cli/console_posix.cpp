#include "Korvane/cli/console.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace korvane::console
{

void prepare() {}

std::vector<std::string> arguments(int count, char** values)
{
    return count > 0 ? std::vector<std::string>(values + 1, values + count) : std::vector<std::string>();
}

void error(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

bool isTerminal(std::FILE* stream)
{
    return isatty(fileno(stream)) != 0;
}

std::size_t columns(std::FILE* stream)
{
    winsize size{};
    return ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : 80;
}

} // namespace korvane::console
