#include "EASY_GUI/services/file_system_platform.h"

#include "EASY_GUI/services/kernel_handle_win.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <vector>
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
    if (code == ERROR_ACCESS_DENIED || code == ERROR_SHARING_VIOLATION)
        reason += "; it is not yours to change, or another program has it open";
    return false;
}

unique_kernel_handle createTemporary(const std::filesystem::path& path)
{
    return unique_kernel_handle(
        CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool setDeletedOnClose(HANDLE file, bool is_wanted)
{
    FILE_DISPOSITION_INFO information{};
    information.DeleteFile = is_wanted ? TRUE : FALSE;
    return SetFileInformationByHandle(file, FileDispositionInfo, &information, sizeof information) != 0;
}

bool writePiece(HANDLE file, std::span<const std::byte> bytes, std::string& reason)
{
    while (!bytes.empty())
    {
        constexpr std::size_t largest_step = 64u << 20;
        DWORD count = 0;
        if (!WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), largest_step)), &count, nullptr))
            return failWithLastError(reason);
        bytes = bytes.subspan(count);
    }
    return true;
}

bool writeAll(HANDLE file, const next_piece& bytes, bool is_flushed, std::string& reason)
{
    std::span<const std::byte> piece;
    do
        if (!bytes(piece) || !writePiece(file, piece, reason))
            return false;
    while (!piece.empty());
    return !is_flushed || FlushFileBuffers(file) || failWithLastError(reason);
}

// By its handle: the file is open, and so safe from those who clean up, until it bears its own name.
bool renameOver(HANDLE file, const std::filesystem::path& target)
{
    const std::wstring& name = target.native();
    std::vector<std::byte> buffer(sizeof(FILE_RENAME_INFO) + name.size() * sizeof(wchar_t));
    const auto information = reinterpret_cast<FILE_RENAME_INFO*>(buffer.data());
    information->ReplaceIfExists = TRUE;
    information->FileNameLength = static_cast<DWORD>(name.size() * sizeof(wchar_t));
    std::copy(name.begin(), name.end(), information->FileName); // the buffer's zeros end it
    return SetFileInformationByHandle(file, FileRenameInfo, information, static_cast<DWORD>(buffer.size())) != 0;
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

bool canReplace(const std::filesystem::path& target, const std::filesystem::path& temporary, std::string& reason)
{
    const unique_kernel_handle file = createTemporary(temporary);
    if (!file)
        return failWithLastError(reason);
    static_cast<void>(setDeletedOnClose(file.get(), true));
    const DWORD attributes = GetFileAttributesW(target.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_READONLY) == 0)
        return true;
    SetLastError(ERROR_ACCESS_DENIED); // what the rename would say
    return failWithLastError(reason);
}

bool replaceWhole(const std::filesystem::path& target, const std::filesystem::path& temporary, const next_piece& bytes,
                  bool is_flushed, std::string& reason)
{
    const unique_kernel_handle owner = createTemporary(temporary);
    if (!owner)
        return failWithLastError(reason);
    const HANDLE file = owner.get();
    // The system deletes it with its last handle, whatever becomes of this process, until that is taken back.
    static_cast<void>(setDeletedOnClose(file, true));
    bool is_done = writeAll(file, bytes, is_flushed, reason);
    if (is_done)
    {
        static_cast<void>(setDeletedOnClose(file, false));
        is_done = renameOver(file, target) || failWithLastError(reason);
        if (!is_done)
            static_cast<void>(setDeletedOnClose(file, true));
    }
    return is_done;
}

void removeAbandoned(const std::filesystem::path& temporary)
{
    DeleteFileW(temporary.c_str()); // one that is being written is open, and not shared
}

} // namespace korvane::platform
