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
        is_whole = !textOf(status).ends_with("searching...");
        whole = secondsSince(begin);
        first = first == 0 && rows() > 0 ? whole : first;
        require(whole < 60, "the search does not end");
    }
    std::printf("  %-12s the key answered after %4.1f ms, first rows after %5.1f ms, all (%lld) after %5.1f ms\n",
                fromWide(text).c_str(), answered * 1e3, first * 1e3, static_cast<long long>(rows()), whole * 1e3);
}

} // namespace

void measureArchives(const installed_program& installed)
{
    const pack_corpus corpus;
    installed.configure(toUtf8(corpus.folder()) + "\\", {});
    const process program('"' + installed.path() + '"');
    const HWND window = watchStart(program, clock_type::now()).window;
    double page = 0;
    for (int i = 0; i < 3; ++i)
    {
        const auto begin = clock_type::now();
        SendMessageW(window, WM_COMMAND, MAKELONG(next_page_command, 1), 0);
        page = secondsSince(begin);
    }
    std::printf("page Archives over 1,000,000 files: there after %.0f ms\n", page * 1e3);
    Sleep(5000); // they are put in order once
    for (const wchar_t* const text :
         {L"u", L"un", L"unit_1", L"unit_12345", L"armour 77", L"sh*d_n*99", L"no such", L"dds"})
        measureSearch(window, text);
    close(program, window);
}

} // namespace korvane::bench
