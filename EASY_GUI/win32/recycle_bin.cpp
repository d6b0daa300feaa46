#include "EASY_GUI/win32/recycle_bin.h"

#include "EASY_GUI/win32/wide_text.h"

#include <algorithm>
#include <shellapi.h>

namespace korvane
{

bool moveToBin(HWND owner, std::span<const std::string> paths, failure& why)
{
    std::wstring list; // each ends with a zero, and the list with another
    for (const std::string& path : paths)
    {
        std::wstring wide = toWide(path);
        std::replace(wide.begin(), wide.end(), L'/', L'\\'); // the shell knows no other
        if (wide.empty() || wide.size() >= MAX_PATH)
            return fail(why, failure_kind::refused, "the system's bin takes no path as long as this", path);
        list += wide + L'\0';
    }
    SHFILEOPSTRUCTW wanted{};
    wanted.hwnd = owner;
    wanted.wFunc = FO_DELETE;
    wanted.pFrom = list.c_str();
    wanted.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_WANTNUKEWARNING | FOF_NOERRORUI | FOF_SILENT;
    const int result = SHFileOperationW(&wanted);
    if (result != 0)
        return fail(why, failure_kind::unwritable,
                    "not all of it could be deleted (error " + std::to_string(result) +
                        "); is it open in another program, or read-only?",
                    paths.empty() ? std::string() : paths.front());
    return wanted.fAnyOperationsAborted == FALSE ||
           fail(why, failure_kind::refused, "not all of it was deleted: somebody said no");
}

} // namespace korvane
