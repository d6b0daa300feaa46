#pragma once

// The window program, watched from outside by what measures it: a copy in a folder of its own, its start, its process
// and its windows.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/win32/handle_policies.h"
#include "EASY_GUI/win32/wide_text.h"
#include "bench/pack_corpus.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <string_view>

namespace korvane::bench
{

using clock_type = std::chrono::steady_clock;

inline constexpr UINT patience_ms = 60000;

inline void require(bool is_right, const char* what)
{
    if (is_right)
        return;
    std::fprintf(stderr, "bench_window: %s (error %lu)\n", what, GetLastError());
    std::exit(1);
}

using unique_object = unique_handle<simple_handle_policy<HANDLE, &CloseHandle>>;

class process
{
public:
    explicit process(const std::string& command_line)
    {
        std::wstring line = toWide(command_line);
        STARTUPINFOW start{};
        start.cb = sizeof start;
        PROCESS_INFORMATION made{};
        require(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &made) != 0,
                "a program could not be started");
        m_process.reset(made.hProcess);
        const unique_object thread(made.hThread);
    }
    HANDLE handle() const { return m_process.get(); }
    DWORD wait() const
    {
        DWORD status = 1;
        WaitForSingleObject(handle(), patience_ms);
        GetExitCodeProcess(handle(), &status);
        return status;
    }
    // Wine knows the times of the process that asks only, but shows the files of the system below.
    double cpuSeconds() const
    {
        if (const std::vector<std::string> values = systemValues(); !values.empty())
            return (std::stod(values[11]) + std::stod(values[12])) / 100; // hundredths, user and system
        FILETIME made, ended, kernel, user;
        GetProcessTimes(handle(), &made, &ended, &kernel, &user);
        const auto seconds = [](FILETIME time) {
            return (static_cast<double>(time.dwHighDateTime) * 4294967296.0 + time.dwLowDateTime) * 1e-7;
        };
        return seconds(kernel) + seconds(user);
    }
    // Resident; 0 where only the system's files could say it and are not there.
    std::uint64_t memoryBytes() const
    {
        const std::vector<std::string> values = systemValues();
        return values.size() > 21 ? std::stoull(values[21]) * 4096 : 0;
    }

private:
    // Of the program that began last: what /proc/NUMBER/stat says behind its name.
    static std::vector<std::string> systemValues()
    {
        std::error_code error;
        std::vector<std::string> newest;
        for (const auto& entry : std::filesystem::directory_iterator("Z:\\proc", error))
        {
            std::ifstream file(entry.path() / "stat");
            std::string line;
            std::getline(file, line);
            const std::size_t name_end = line.find("(Korvane.exe) ");
            std::string command; // there may be others that nobody measures
            std::getline(std::ifstream(entry.path() / "cmdline"), command);
            if (name_end == std::string::npos || command.find("korvane_bench_window") == std::string::npos)
                continue;
            std::istringstream fields(line.substr(name_end + 14));
            std::vector<std::string> values(std::istream_iterator<std::string>(fields), {});
            if (values.size() > 21 && (newest.empty() || std::stoll(values[19]) > std::stoll(newest[19])))
                newest = std::move(values);
        }
        return newest;
    }

    unique_object m_process;
};

// The main window of the process, also while it is hidden.
inline HWND mainWindowOf(const process& of)
{
    struct search
    {
        DWORD process;
        HWND found;
    } wanted{GetProcessId(of.handle()), nullptr};
    EnumWindows(
        [](HWND window, LPARAM parameter) -> BOOL {
            auto& looked_for = *reinterpret_cast<search*>(parameter);
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (owner == looked_for.process && GetMenu(window) != nullptr)
                looked_for.found = window;
            wchar_t title[16]{}; // before it has its menu
            if (owner == looked_for.process && GetWindowTextW(window, title, 16) > 0 &&
                std::wstring_view(title).starts_with(L"Korvane 0"))
                looked_for.found = window;
            return looked_for.found == nullptr;
        },
        reinterpret_cast<LPARAM>(&wanted));
    return wanted.found;
}

struct started
{
    double usable = 0;       // seconds until the window is shown and takes input
    double cpu = 0;          // seconds of its own, until then
    double longest_wait = 0; // seconds, for an answer
    double longest_at = 0;   // seconds after the start, its end
    double own_lateness = 0; // seconds, the most that the one who asks was late itself: the machine is busy
    HWND window = nullptr;
};

inline started watchStart(const process& program, clock_type::time_point begin)
{
    started result;
    while (secondsSince(begin) * 1000 < patience_ms)
    {
        result.window = mainWindowOf(program);
        DWORD_PTR ignored = 0;
        if (result.window != nullptr)
        {
            const auto asked = clock_type::now();
            SendMessageTimeoutW(result.window, WM_NULL, 0, 0, SMTO_NORMAL, patience_ms, &ignored);
            const double waited = secondsSince(asked);
            if (waited > result.longest_wait)
                result.longest_at = secondsSince(begin);
            result.longest_wait = std::max(result.longest_wait, waited);
        }
        if (result.window != nullptr && IsWindowVisible(result.window) && IsWindowEnabled(result.window))
        {
            result.usable = secondsSince(begin);
            result.cpu = program.cpuSeconds();
            return result;
        }
        const auto slept = clock_type::now();
        Sleep(20);
        result.own_lateness = std::max(result.own_lateness, secondsSince(slept) - 0.02);
    }
    require(false, "the window did not appear");
    return result;
}

inline void close(const process& program, HWND window)
{
    PostMessageW(window, WM_CLOSE, 0, 0);
    require(program.wait() == 0, "the window program did not end well");
}

// A copy of the program in a folder of its own, with what its configuration says.
class installed_program
{
public:
    explicit installed_program(const std::string& program)
        : m_folder(toUtf8(std::filesystem::temp_directory_path()) + "korvane_bench_window\\")
    {
        std::filesystem::remove_all(toPath(m_folder));
        std::filesystem::create_directories(toPath(m_folder));
        std::filesystem::copy_file(toPath(program), toPath(path()));
    }
    ~installed_program()
    {
        std::error_code error;
        std::filesystem::remove_all(toPath(m_folder), error);
    }
    const std::string& folder() const { return m_folder; }
    std::string path() const { return m_folder + "Korvane.exe"; }
    void configure(const std::string& data_folder, const std::vector<std::string>& recent, bool has_cache = true) const
    {
        std::error_code error;
        std::filesystem::remove(toPath(m_folder + "packs.cache"), error);
        config_file config;
        config.add("first_time", {"no"}, false);
        config.add("data_paths", {data_folder}, false);
        if (!has_cache)
            config.add("cache_use", {"never"}, false);
        if (!recent.empty())
            config.add("config_recent_files", recent, false);
        require(config.save(m_folder + "config.cfg"), "config.cfg could not be written");
    }

private:
    std::string m_folder;
};

inline double secondsOf(const std::string& command_line)
{
    const auto begin = clock_type::now();
    require(process(command_line).wait() == 0, "the console program failed");
    return secondsSince(begin);
}

} // namespace korvane::bench
