#include "bench/window_archives.h"

#include "EASY_GUI/win32/wide_text.h"
#include "Korvane/app/command_ids.h"
#include "bench/pack_corpus.h"

#include <commctrl.h>

#include <cstdio>
#include <iterator>

namespace korvane::bench
{

namespace
{

std::string textOf(HWND control)
{
    wchar_t text[256] = {};
    SendMessageW(control, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
    return fromWide(text);
}

HWND controlOf(HWND window, int id)
{
    struct wanted_control
    {
        int id;
        HWND found;
    } wanted{id, nullptr};
    EnumChildWindows(
        window,
        [](HWND child, LPARAM parameter) -> BOOL {
            auto& asked = *reinterpret_cast<wanted_control*>(parameter);
            asked.found = GetDlgCtrlID(child) == asked.id ? child : asked.found;
            return asked.found == nullptr;
        },
        reinterpret_cast<LPARAM>(&wanted));
    require(wanted.found != nullptr, "a control is missing");
    return wanted.found;
}

// As a key press does it; then the rows are waited for.
void measureSearch(HWND window, const wchar_t* text)
{
    const HWND find = controlOf(window, control_archive_find), list = controlOf(window, control_archive_list);
    const HWND status = controlOf(window, control_archive_status);
    const auto begin = clock_type::now();
    SendMessageW(find, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)); // which says EN_CHANGE
    const double answered = secondsSince(begin);
    double first = 0, whole = 0;
    const auto rows = [list] { return SendMessageW(list, LVM_GETITEMCOUNT, 0, 0); };
    for (bool is_whole = false; !is_whole; Sleep(1))
    {
        const std::string said = textOf(status);
        is_whole = !said.ends_with("searching...");
        whole = secondsSince(begin);
        first = first == 0 && (is_whole || said.find(": 0 files") == std::string::npos) ? whole : first;
        require(whole < 60, "the search does not end");
    }
    std::printf("  %-12s the key answered after %4.1f ms, first rows after %5.1f ms, all (%lld) after %5.1f ms\n",
                fromWide(text).c_str(), answered * 1e3, first * 1e3, static_cast<long long>(rows()), whole * 1e3);
}

// Pages down in a list, as the window's own time on the processor for each.
void measureScrolling(const process& program, HWND window)
{
    constexpr int pages = 300;
    const HWND list = controlOf(window, control_archive_list);
    const auto rows = SendMessageW(list, LVM_GETITEMCOUNT, 0, 0);
    const double before = program.cpuSeconds();
    double longest = 0;
    for (int i = 0; i < pages; ++i)
    {
        const auto begin = clock_type::now();
        SendMessageW(list, WM_VSCROLL, SB_PAGEDOWN, 0);
        RedrawWindow(list, nullptr, nullptr, RDW_UPDATENOW);
        SendMessageW(list, WM_NULL, 0, 0); // the paint before it
        longest = std::max(longest, secondsSince(begin));
    }
    std::printf("scrolling %lld rows: %.1f ms of own work a page, the longest seen %.1f ms\n",
                static_cast<long long>(rows), (program.cpuSeconds() - before) / pages * 1e3, longest * 1e3);
}

// A folder of a million files, by its path; the longest time that the window did not answer meanwhile.
void measureLargeFolder(HWND window)
{
    const HWND path = controlOf(window, control_archive_path), list = controlOf(window, control_archive_list);
    const auto begin = clock_type::now();
    SendMessageW(path, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"all"));
    double longest = secondsSince(begin);
    for (bool is_listed = false; !is_listed; Sleep(1))
    {
        const auto asked = clock_type::now();
        is_listed = SendMessageW(list, LVM_GETITEMCOUNT, 0, 0) == 1000000;
        longest = std::max(longest, secondsSince(asked));
        require(secondsSince(begin) < 60, "the folder is not listed");
    }
    std::printf("a folder of 1,000,000 files is listed after %.0f ms, the longest wait for the window %.0f ms\n",
                secondsSince(begin) * 1e3, longest * 1e3);
}

} // namespace

void measureArchives(const installed_program& installed)
{
    const pack_corpus corpus;
    installed.configure(toUtf8(corpus.folder()) + "\\", {}, false);
    const process program('"' + installed.path() + '"');
    const HWND window = watchStart(program, clock_type::now()).window;
    Sleep(3000); // as a person who looks at the window first
    double page = 0;
    for (int i = 0; i < 3; ++i)
    {
        const auto begin = clock_type::now();
        SendMessageW(window, WM_COMMAND, MAKELONG(next_page_command, 1), 0);
        page = secondsSince(begin);
    }
    std::printf("page Archives over 1,000,000 files: there after %.0f ms\n", page * 1e3);
    const double before = static_cast<double>(program.memoryBytes());
    Sleep(5000); // they are put in order once
    const auto sayMemory = [&](const char* when) {
        std::printf("  memory, %s: %.1f MiB more than with the page just opened\n", when,
                    (static_cast<double>(program.memoryBytes()) - before) / (1 << 20));
    };
    sayMemory("in order");
    for (const wchar_t* const text :
         {L"u", L"un", L"unit_1", L"unit_12345", L"armour 77", L"sh*d_n*99", L"no such", L"dds"})
        measureSearch(window, text);
    sayMemory("500,000 rows found");
    measureSearch(window, L"culture");
    sayMemory("all rows found");
    measureScrolling(program, window);
    close(program, window);
}

void measureFolder(const installed_program& installed)
{
    const pack_corpus corpus(0, 100, 10000, true);
    installed.configure(toUtf8(corpus.folder()) + "\\", {}, false);
    const process program('"' + installed.path() + '"');
    const HWND window = watchStart(program, clock_type::now()).window;
    for (int i = 0; i < 3; ++i)
        SendMessageW(window, WM_COMMAND, MAKELONG(next_page_command, 1), 0);
    Sleep(5000);
    measureLargeFolder(window);
    measureScrolling(program, window);
    close(program, window);
}

} // namespace korvane::bench
