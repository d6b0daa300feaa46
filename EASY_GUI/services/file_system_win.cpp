#include "EASY_GUI/services/file_system_platform.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <windows.h>

namespace korvane::platform
{

namespace
{

bool failWithLastError(std::string& reason)
{
    const DWORD code = GetLastError();
    wchar_t text[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text,
                                  static_cast<DWORD>(std::size(text)), nullptr);
    while (length > 0 && (text[length - 1] == L'\r' || text[length - 1] == L'\n' || text[length - 1] == L'.'))
        --length;
    reason = length > 0 ? utf8FromUtf16(std::u16string(text, text + length)) : "error " + std::to_string(code);
    return false;
}

} // namespace

std::filesystem::path pathFromUtf8(std::string_view text)
{
    const std::u16string units = utf16FromUtf8(text); // the library's own conversion throws at malformed bytes
    return std::wstring(units.begin(), units.end());
}

std::string utf8FromPath(const std::filesystem::path& path)
{
    const std::wstring& native = path.native();
    return utf8FromUtf16(std::u16string(native.begin(), native.end()));
}

std::filesystem::path executablePath()
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;)
    {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size())
        {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

unsigned long processId()
{
    return GetCurrentProcessId();
}

bool writeNewFile(const std::filesystem::path& file, std::span<const std::byte> bytes, bool is_flushed,
                  std::string& reason)
{
    const HANDLE handle =
        CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return failWithLastError(reason);
    bool is_written = true;
    while (is_written && !bytes.empty())
    {
        constexpr std::size_t largest_step = 64u << 20;
        DWORD count = 0;
        if (WriteFile(handle, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), largest_step)), &count, nullptr))
            bytes = bytes.subspan(count);
        else
            is_written = failWithLastError(reason);
    }
    if (is_flushed && is_written && !FlushFileBuffers(handle))
        is_written = failWithLastError(reason);
    CloseHandle(handle);
    return is_written;
}

bool replaceFile(const std::filesystem::path& source, const std::filesystem::path& target, std::string& reason)
{
    return MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0 ||
           failWithLastError(reason);
}

} // namespace korvane::platform
