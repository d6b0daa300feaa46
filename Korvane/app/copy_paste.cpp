#include "Korvane/app/copy_paste.h"

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/clipboard.h"
#include "Korvane/document/pasted_path.h"

#include <optional>

namespace korvane
{

namespace
{

bool isField(HWND control)
{
    return control != nullptr && (SendMessageW(control, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0;
}

bool hasSelectedText(HWND field)
{
    DWORD first = 0;
    DWORD last = 0;
    SendMessageW(field, EM_GETSEL, reinterpret_cast<WPARAM>(&first), reinterpret_cast<LPARAM>(&last));
    return first != last;
}

// "3 lines", or the line itself.
std::string toldText(const std::string& text)
{
    const std::size_t end = text.find_first_of("\r\n");
    if (end == std::string::npos)
        return displayText(text);
    std::size_t lines = 0;
    for (const char character : text)
        lines += character == '\n' ? 1u : 0u;
    lines += text.back() == '\n' ? 0u : 1u;
    return lines == 1 ? displayText(text.substr(0, end)) : counted(lines, "line");
}

} // namespace

void copyText(page_host& host, const std::string& text)
{
    failure why;
    if (text.empty())
        return host.setStatus("There is nothing selected to copy.");
    if (setClipboardText(host.frame(), text, why))
        return host.setStatus("Copied: " + toldText(text));
    host.logLine("copyText(). " + describe(why));
    host.setStatus("The clipboard could not be used: " + describe(why));
}

void copySelection(page_host& host, page& shown)
{
    const HWND focused = GetFocus();
    if (!isField(focused) || !hasSelectedText(focused))
    {
        if (!shown.copyMore())
            copyText(host, shown.copiedText());
        return;
    }
    SendMessageW(focused, WM_COPY, 0, 0);
    host.setStatus("Copied the selected text.");
}

void pasteText(page_host& host, page& shown)
{
    const HWND focused = GetFocus();
    failure why;
    const std::optional<std::string> text = clipboardText(host.frame(), why);
    if (why)
        host.logLine("pasteText(). " + describe(why));
    if (!text)
        return host.setStatus(why ? "The clipboard could not be used: " + describe(why)
                                  : std::string("There is no text on the clipboard."));
    if (focused != nullptr && IsChild(shown.handle(), focused) && shown.paste(*text))
        return;
    if (isField(focused) && (GetWindowLongPtrW(focused, GWL_STYLE) & ES_READONLY) == 0)
        SendMessageW(focused, WM_PASTE, 0, 0);
    else if (const std::string path = openablePath(*text, *host.document().game()); !path.empty())
        host.openFile(path);
    else
        host.setStatus("Choose a field that can be edited first, then paste.");
}

} // namespace korvane
