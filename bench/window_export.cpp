#include "bench/window_export.h"

#include "EASY_GUI/services/memory_file.h"
#include "Korvane/animation/anim_search.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/archives/pack_file.h"
#include "tests/support/anim_builder.h"
#include "tests/support/pack_builder.h"

#include <commctrl.h>

namespace korvane::bench
{

namespace
{

constexpr int archive_count = 50, animations_per_archive = 1000, exported_count = 100, rounds = 5;
const std::string model_path = "pack:variantmeshes/wh_variantmodels/hu1/demo/demo_guard.rigid_model_v2";
const std::string real_animation = "animations\\battle\\humanoid01\\walk\\hu1_walk_forward.anim";

std::string quoted(const std::string& text)
{
    return '"' + text + '"';
}

std::string bytesOf(const std::string& path)
{
    memory_file file;
    failure why;
    require(file.read(path, why), "a file cannot be read");
    return std::string(file.text());
}

std::string realName(int number)
{
    return "animations\\bench\\real_" + std::to_string(100 + number) + ".anim";
}

void writePack(const std::string& path, const test::test_pack& pack)
{
    failure why;
    require(writeWholeFile(path, pack.bytes(), why), "an archive could not be written");
}

std::string makeData(const installed_program& installed, const std::string& console)
{
    const std::string folder = installed.folder() + "demo\\";
    secondsOf(quoted(console) + " --quiet demo-data " + quoted(installed.folder() + "demo"));
    const std::string real = installed.folder() + "real.anim";
    secondsOf(quoted(console) + " --quiet --data " + quoted(installed.folder() + "demo") + " extract " +
              real_animation + " -o " + quoted(real));
    test::test_pack pack;
    for (int i = 0; i < exported_count; ++i)
        pack.entries.push_back({realName(i), bytesOf(real)});
    writePack(folder + "bench_real.pack", pack);
    test::test_anim source;
    source.frame_count = 60;
    source.frames.assign(source.frame_count, source.frames[0]);
    for (int i = 0; i < archive_count; ++i)
    {
        pack.entries.clear();
        for (int k = 0; k < animations_per_archive; ++k)
        {
            source.skeleton_name = k % 10 == 0 ? "humanoid01" : "humanoid02";
            pack.entries.push_back(
                {"animations\\bench\\unit_" + std::to_string(i) + "\\walk_" + std::to_string(k) + ".anim",
                 source.bytes()});
        }
        writePack(folder + "bench_" + std::to_string(i) + ".pack", pack);
    }
    return folder;
}

// What the console's search does, without its start and its output.
double searchAlone(const std::string& folder, std::size_t& found_count)
{
    path_tree tree;
    failure why;
    for (const auto& entry : std::filesystem::directory_iterator(toPath(folder)))
        if (entry.path().extension() == ".pack")
        {
            pack_file archive(tree);
            require(archive.open(toUtf8(entry.path()), why), "an archive cannot be read");
            archive.enter();
        }
    double best = 1e9;
    for (int i = 0; i < rounds; ++i)
    {
        const auto begin = clock_type::now();
        entry_list found;
        require(findAnimations(animationCandidates(tree), "humanoid01", found, why), "the search failed");
        best = std::min(best, secondsSince(begin));
        found_count = found.size();
    }
    return best;
}

class dialog_watch
{
public:
    explicit dialog_watch(const process& of) : m_process(GetProcessId(of.handle())) {}

    bool find()
    {
        m_dialog = nullptr;
        EnumWindows(
            [](HWND window, LPARAM parameter) -> BOOL {
                auto& self = *reinterpret_cast<dialog_watch*>(parameter);
                DWORD owner = 0;
                GetWindowThreadProcessId(window, &owner);
                if (owner == self.m_process && GetDlgItem(window, control_export_list) != nullptr &&
                    IsWindowVisible(window))
                    self.m_dialog = window;
                return self.m_dialog == nullptr;
            },
            reinterpret_cast<LPARAM>(this));
        return m_dialog != nullptr;
    }
    DWORD_PTR ask(int id, UINT message, WPARAM first = 0, LPARAM second = 0)
    {
        DWORD_PTR answer = 0;
        const auto asked = clock_type::now();
        SendMessageTimeoutW(id == 0 ? m_dialog : GetDlgItem(m_dialog, id), message, first, second, SMTO_NORMAL,
                            patience_ms, &answer);
        m_longest = std::max(m_longest, secondsSince(asked));
        return answer;
    }
    bool says(int id, std::string_view what)
    {
        wchar_t text[300] = {};
        ask(id, WM_GETTEXT, 300, reinterpret_cast<LPARAM>(text));
        return fromWide(text).find(what) != std::string::npos;
    }
    std::size_t rowCount() { return ask(control_export_list, LVM_GETITEMCOUNT); }
    void type(int id, const std::string& text)
    {
        ask(id, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(toWide(text).c_str()));
    }
    template <typename condition>
    double secondsUntil(const char* what, condition isSo)
    {
        const auto begin = clock_type::now();
        while (!isSo())
        {
            require(secondsSince(begin) * 1000 < patience_ms, what);
            Sleep(2);
        }
        return secondsSince(begin);
    }
    double takeLongest() { return std::exchange(m_longest, 0.0); }
    HWND dialog() const { return m_dialog; }

private:
    DWORD m_process;
    HWND m_dialog = nullptr;
    double m_longest = 0; // seconds
};

struct search_times
{
    double shown = 1e9, first = 1e9, all = 1e9, longest_wait = 0;
};

search_times watchSearch(dialog_watch& watch, HWND window, std::size_t count)
{
    search_times times;
    PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(numberOf(document_command::export_animated)), 0);
    times.shown = watch.secondsUntil("the dialog did not appear", [&] { return watch.find(); });
    const auto begin = clock_type::now();
    watch.secondsUntil("no row came", [&] { return watch.rowCount() > 0; });
    times.first = secondsSince(begin);
    watch.secondsUntil("not all rows came", [&] { return watch.rowCount() >= count; });
    times.all = secondsSince(begin);
    watch.secondsUntil("the search did not end", [&] { return watch.says(control_export_status, "Done!"); });
    times.longest_wait = watch.takeLongest();
    return times;
}

double watchExport(dialog_watch& watch, const std::string& folder, double& longest_wait)
{
    Sleep(3000); // the frames of what was found are counted
    watch.type(control_export_filter, "real_");
    watch.secondsUntil("the filter did not work", [&] { return watch.rowCount() == exported_count; });
    watch.ask(control_export_all, BM_CLICK);
    watch.type(control_export_folder, folder);
    watch.takeLongest();
    const auto begin = clock_type::now();
    watch.ask(control_export_start, BM_CLICK);
    watch.secondsUntil("the export did not end",
                       [&] { return watch.says(control_export_status, "Done. Files Exported: 100"); });
    longest_wait = std::max(longest_wait, watch.takeLongest());
    return secondsSince(begin);
}

std::size_t countSame(const std::string& left, const std::string& right)
{
    std::size_t same = 0, all = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(toPath(left)))
        if (entry.is_regular_file())
        {
            ++all;
            const auto other = toPath(right) / entry.path().lexically_relative(toPath(left));
            same += std::filesystem::exists(other) && bytesOf(toUtf8(entry.path())) == bytesOf(toUtf8(other)) ? 1u : 0u;
        }
    require(same == all, "the dialog's files are not those of the console");
    return same;
}

} // namespace

void measureExport(const installed_program& installed, const std::string& console)
{
    const std::string data = makeData(installed, console);
    installed.configure(data, {model_path});
    std::size_t count = 0;
    const double alone = searchAlone(data, count);
    const std::string start = quoted(console) + " --config " + quoted(installed.folder() + "config.cfg") + " --quiet ";
    std::string export_line = start + "export " + model_path + " --textures {}textures --as png --normal blue -o {}";
    const std::string folder = installed.folder() + "console\\";
    for (std::size_t at = 0; (at = export_line.find("{}")) != std::string::npos;)
        export_line.replace(at, 2, folder);
    for (int i = 0; i < exported_count; ++i)
        export_line += " --anim pack:" + realName(i);

    const process program('"' + installed.path() + '"');
    const HWND window = watchStart(program, clock_type::now()).window;
    SendMessageW(window, WM_COMMAND, static_cast<WPARAM>(recent_file_first), 0);
    dialog_watch watch(program);
    search_times best;
    double in_dialog = 1e9, on_console = 1e9, started = 1e9, searched = 1e9, longest_wait = 0;
    for (int i = 0; i < rounds; ++i)
    {
        const search_times times = watchSearch(watch, window, count);
        best = {std::min(best.shown, times.shown), std::min(best.first, times.first), std::min(best.all, times.all),
                std::max(best.longest_wait, times.longest_wait)};
        for (const char* each : {"console\\", "dialog\\"})
            std::filesystem::remove_all(toPath(installed.folder() + each));
        in_dialog = std::min(in_dialog, watchExport(watch, installed.folder() + "dialog", longest_wait));
        PostMessageW(watch.dialog(), WM_CLOSE, 0, 0);
        watch.secondsUntil("the dialog did not close", [&] { return !watch.find(); });
        on_console = std::min(on_console, secondsOf(export_line));
        started = std::min(started, secondsOf(start + "--version"));
        searched = std::min(searched, secondsOf(start + "anim search humanoid01"));
    }
    std::printf(
        "search of 50,000 animations: dialog there after %.0f ms, first rows %.0f ms later, all %zu %.0f ms later; "
        "longest wait for an answer %.0f ms; the search alone %.0f ms (%.2f of it), on the console %.0f ms\n",
        best.shown * 1e3, best.first * 1e3, count, best.all * 1e3, best.longest_wait * 1e3, alone * 1e3,
        best.all / alone, searched * 1e3);
    std::printf(
        "export of %d animations: %.2f s, longest wait for an answer %.0f ms; on the console %.2f s (%.2f of it; "
        "start and end of the program alone: %.2f s); %zu files are the same\n",
        exported_count, in_dialog, longest_wait * 1e3, on_console, in_dialog / on_console, started,
        countSame(installed.folder() + "console\\", installed.folder() + "dialog\\"));
    close(program, window);
}

} // namespace korvane::bench
