// Looks at and acts on the windows of another program, for tests and scripts under Wine. Output is UTF-8, one JSON
// value. Exit status 0 done, 1 not found, 2 wrong command line.
//
//   window_probe wait TITLE SECONDS        until a visible top-level window's title starts with TITLE; prints it whole
//   window_probe gone TITLE SECONDS        until there is none
//   window_probe texts TITLE               its controls: [{"id", "class", "text", "enabled"}]
//   window_probe choose TITLE ID POSITION  an entry of a drop-down list, as the person does
//   window_probe command TITLE NUMBER      a command by its number (Korvane/app/command_ids.h)
//   window_probe click TITLE ID            a button
//   window_probe close TITLE               asks the window to close
//   window_probe lose TITLE STEP TIMES     the view's next steps lose the graphics device (Korvane/viewer/d3d_window.h)
//   window_probe place TITLE [ID]          its client area on the screen, or a control's: [left, top, width, height]

#include "EASY_GUI/win32/wide_text.h"

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>
#include <windows.h>

namespace
{

using korvane::fromWide;
using korvane::toWide;

constexpr UINT patience_ms = 5000;

std::wstring textOf(HWND handle)
{
    DWORD_PTR length = 0;
    if (!SendMessageTimeoutW(handle, WM_GETTEXTLENGTH, 0, 0, SMTO_ABORTIFHUNG, patience_ms, &length))
        return {};
    std::wstring text(length + 1, L'\0');
    DWORD_PTR copied = 0;
    SendMessageTimeoutW(handle, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), SMTO_ABORTIFHUNG,
                        patience_ms, &copied);
    text.resize(copied);
    return text;
}

struct search
{
    std::wstring title;
    HWND found = nullptr;
};

BOOL CALLBACK matches(HWND handle, LPARAM parameter)
{
    auto& wanted = *reinterpret_cast<search*>(parameter);
    if (IsWindowVisible(handle) && textOf(handle).starts_with(wanted.title))
        wanted.found = handle;
    return wanted.found == nullptr;
}

HWND topLevel(const std::wstring& title)
{
    search wanted{title};
    EnumWindows(&matches, reinterpret_cast<LPARAM>(&wanted));
    return wanted.found;
}

// Waits until the window is there, or until it is not; null when it is not there at the end.
HWND waitFor(const std::wstring& title, double seconds, bool is_wanted)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    for (;;)
    {
        const HWND handle = topLevel(title);
        if ((handle != nullptr) == is_wanted || std::chrono::steady_clock::now() >= end)
            return handle;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

std::string quoted(const std::wstring& text)
{
    std::string result = "\"";
    for (const char character : fromWide(text))
    {
        const auto code = static_cast<unsigned char>(character);
        char escaped[8];
        if (code < 0x20)
        {
            std::snprintf(escaped, sizeof(escaped), "\\u%04x", code);
            result += escaped;
            continue;
        }
        if (character == '"' || character == '\\')
            result += '\\';
        result += character;
    }
    return result + '"';
}

BOOL CALLBACK describeControl(HWND child, LPARAM parameter)
{
    auto& entries = *reinterpret_cast<std::vector<std::string>*>(parameter);
    wchar_t class_name[128] = {};
    GetClassNameW(child, class_name, 128);
    entries.push_back("{\"id\": " + std::to_string(GetDlgCtrlID(child)) + ", \"class\": " + quoted(class_name) +
                      ", \"text\": " + quoted(textOf(child)) +
                      ", \"enabled\": " + (IsWindowEnabled(child) ? "true" : "false") + "}");
    return TRUE;
}

void printControls(HWND handle)
{
    std::vector<std::string> entries;
    EnumChildWindows(handle, &describeControl, reinterpret_cast<LPARAM>(&entries));
    std::string separator = "[";
    for (const std::string& entry : entries)
    {
        std::fputs((separator + entry).c_str(), stdout);
        separator = ",\n ";
    }
    std::puts(entries.empty() ? "[]" : "]");
}

struct control_search
{
    int id;
    HWND found = nullptr;
};

HWND controlOf(HWND window, int id)
{
    control_search wanted{id};
    EnumChildWindows(
        window,
        [](HWND child, LPARAM parameter) -> BOOL {
            auto& looked_for = *reinterpret_cast<control_search*>(parameter);
            if (GetDlgCtrlID(child) == looked_for.id)
                looked_for.found = child;
            return looked_for.found == nullptr;
        },
        reinterpret_cast<LPARAM>(&wanted));
    return wanted.found;
}

bool choose(HWND window, int id, int position)
{
    const HWND list = controlOf(window, id);
    if (list == nullptr || SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(position), 0) != position)
        return false;
    SendMessageW(GetParent(list), WM_COMMAND, static_cast<WPARAM>(MAKELONG(id, CBN_SELCHANGE)),
                 reinterpret_cast<LPARAM>(list));
    return true;
}

int act(const std::wstring& action, HWND window, const std::vector<int>& numbers)
{
    if (action == L"texts")
        printControls(window);
    else if (action == L"place")
    {
        const HWND of = numbers.empty() ? window : controlOf(window, numbers[0]);
        RECT client{};
        POINT origin{};
        if (!GetClientRect(of, &client) || !ClientToScreen(of, &origin))
            return 1;
        std::printf("[%ld, %ld, %ld, %ld]\n", origin.x, origin.y, client.right, client.bottom);
    }
    else if (action == L"close")
        return PostMessageW(window, WM_CLOSE, 0, 0) ? 0 : 1;
    else if (action == L"command" && numbers.size() == 1)
        return PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(numbers[0]), 0) ? 0 : 1;
    else if (action == L"lose" && numbers.size() == 2)
        return PostMessageW(window, RegisterWindowMessageW(L"korvane_lose_device"), static_cast<WPARAM>(numbers[0]),
                            numbers[1])
                   ? 0
                   : 1;
    else if (action == L"choose" && numbers.size() == 2)
        return choose(window, numbers[0], numbers[1]) ? 0 : 1;
    else if (action == L"click" && numbers.size() == 1)
    {
        const HWND control = controlOf(window, numbers[0]);
        return control != nullptr && PostMessageW(control, BM_CLICK, 0, 0) ? 0 : 1;
    }
    else
        return 2;
    return 0;
}

} // namespace

int wmain(int count, wchar_t** arguments)
{
    if (count < 3)
        return 2;
    const std::wstring action = arguments[1];
    const std::wstring title = arguments[2];
    if (action == L"wait" || action == L"gone")
    {
        const bool is_wanted = action == L"wait";
        const HWND found = waitFor(title, count > 3 ? std::wcstod(arguments[3], nullptr) : 10.0, is_wanted);
        if (found != nullptr)
            std::puts(quoted(textOf(found)).c_str());
        return (found != nullptr) == is_wanted ? 0 : 1;
    }
    const HWND window = topLevel(title);
    if (window == nullptr)
        return 1;
    std::vector<int> numbers;
    for (int i = 3; i < count; ++i)
        numbers.push_back(static_cast<int>(std::wcstol(arguments[i], nullptr, 10)));
    return act(action, window, numbers);
}
