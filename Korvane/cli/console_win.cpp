#include "Korvane/cli/console.h"

#include "EASY_GUI/services/command_line.h"
#include "EASY_GUI/services/text.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace korvane::console
{

void prepare()
{
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    std::setvbuf(stderr, nullptr, _IOFBF, 4096); // unbuffered, it would be written byte by byte
    SetConsoleOutputCP(CP_UTF8);
}

std::vector<std::string> arguments(int, char**)
{
    // The narrow arguments have lost what the code page cannot express.
    const std::wstring line = GetCommandLineW();
    return splitCommandLine(utf8FromUtf16(std::u16string(line.begin(), line.end())));
}

void error(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

bool isTerminal(std::FILE* stream)
{
    return _isatty(_fileno(stream)) != 0;
}

std::size_t columns(std::FILE* stream)
{
    CONSOLE_SCREEN_BUFFER_INFO info{};
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    const bool is_known = GetConsoleScreenBufferInfo(handle, &info) != 0;
    const int width = info.srWindow.Right - info.srWindow.Left + 1;
    return is_known && width > 1 ? static_cast<std::size_t>(width) : 80;
}

} // namespace korvane::console
