// The window program as a person meets it, measured from outside: its start with a million files in the archives (with
// a cache below 0.5 s of its own CPU; it answers within 0.2 s all the time), opening a model of 50,000 vertices out of
// an archive (below 1.3 times the console's `info` on the same), a thousand opens (not one GDI or user handle more),
// the dialog of exports (window_export.cpp), and the page Archives (window_archives.cpp).
//
//   bench_window KORVANE_EXE KORVANE_CLI_EXE [start|open|handles|export|archives]
//
// Needs a display (tools/with_wine). The windows come and go while it measures.

#include "Korvane/app/command_ids.h"
#include "bench/large_model.h"
#include "bench/window_archives.h"
#include "bench/window_export.h"
#include "tests/support/pack_builder.h"
#include "tests/windows/ui_handles.h"

namespace
{

using namespace korvane;
using namespace korvane::bench;

constexpr int cached_starts = 7;
constexpr int handle_opens = 1000;

started measureOneStart(const installed_program& installed, const char* what)
{
    const auto begin = clock_type::now();
    const process program('"' + installed.path() + '"');
    const started result = watchStart(program, begin);
    std::printf("start %s, 1,000,000 files: usable after %.2f s, %.2f s of CPU, longest wait for an answer %.0f ms "
                "(after %.2f s; the machine kept the one who asked up to %.0f ms)\n",
                what, result.usable, result.cpu, result.longest_wait * 1e3, result.longest_at,
                result.own_lateness * 1e3);
    close(program, result.window);
    return result;
}

// The program writes it beside what one does.
void waitForCache(const installed_program& installed)
{
    const process program('"' + installed.path() + '"');
    const HWND window = watchStart(program, clock_type::now()).window;
    const auto begin = clock_type::now();
    for (std::error_code error; !std::filesystem::exists(toPath(installed.folder() + "packs.cache"), error); Sleep(50))
        require(secondsSince(begin) < 60, "no cache was written");
    std::printf("the cache is there %.1f s after the start\n", secondsSince(begin));
    close(program, window);
}

// The machine's own noise is as large as the figure: the first start also reads a cache that is being written to the
// disk still. The median of the starts counts.
void measureStart(const installed_program& installed)
{
    const pack_corpus corpus;
    installed.configure(toUtf8(corpus.folder()) + "\\", {});
    measureOneStart(installed, "without a cache");
    waitForCache(installed);
    std::vector<double> cpu;
    for (int i = 0; i < cached_starts; ++i)
        cpu.push_back(measureOneStart(installed, "with a cache").cpu);
    std::sort(cpu.begin(), cpu.end());
    std::printf("%d starts with a cache: %.2f s of CPU at least, %.2f s in the median\n", cached_starts, cpu.front(),
                cpu[cpu.size() / 2]);
}

std::string writeModelArchive(const installed_program& installed)
{
    const std::string folder = installed.folder() + "data\\";
    std::filesystem::create_directories(toPath(folder));
    test::test_pack pack;
    pack.entries = {{"men\\large.rigid_model_v2", largeModel()},
                    {"men\\small.rigid_model_v2", test::test_model().bytes()}};
    failure why;
    require(writeWholeFile(folder + "a.pack", pack.bytes(), why), "the archive could not be written");
    return folder;
}

// A recent file, by its place in the menu.
double openRecent(HWND window, int place)
{
    const auto begin = clock_type::now();
    SendMessageW(window, WM_COMMAND, static_cast<WPARAM>(recent_file_first + place), 0);
    return secondsSince(begin);
}

const std::vector<std::string> both_models{"pack:men/large.rigid_model_v2", "pack:men/small.rigid_model_v2"};

void measureOpen(const installed_program& installed, const std::string& console)
{
    installed.configure(writeModelArchive(installed), both_models);
    const process program('"' + installed.path() + '"');
    const HWND window = watchStart(program, clock_type::now()).window;
    double large = 1e9, small = 1e9, info = 1e9, nothing = 1e9;
    openRecent(window, 1); // the small one
    for (int i = 0; i < 5; ++i)
    {
        large = std::min(large, openRecent(window, 1));
        small = std::min(small, openRecent(window, 1));
    }
    close(program, window);
    const std::string start = '"' + console + "\" --config \"" + installed.folder() + "config.cfg\" ";
    for (int i = 0; i < 5; ++i)
    {
        info = std::min(info, secondsOf(start + "--quiet info --json " + both_models[0]));
        nothing = std::min(nothing, secondsOf(start + "--version"));
    }
    std::printf("a model of 50,000 vertices: opened after %.0f ms (a small one: %.0f ms), `info` takes %.0f ms (start "
                "and end of the program alone: %.0f ms): %.2f of it\n",
                large * 1e3, small * 1e3, info * 1e3, nothing * 1e3, large / info);
}

void measureHandles(const installed_program& installed)
{
    installed.configure(writeModelArchive(installed), both_models);
    const process program('"' + installed.path() + '"');
    const HWND window = watchStart(program, clock_type::now()).window;
    for (int i = 0; i < 20; ++i)
        openRecent(window, 1);
    Sleep(2000);
    const test::ui_handles before = test::uiHandlesOf(program.handle());
    for (int i = 0; i < handle_opens; ++i)
        openRecent(window, 1);
    Sleep(2000);
    const test::ui_handles after = test::uiHandlesOf(program.handle());
    std::printf("%d opens: %+d GDI handles (of %d), %+d user handles (of %d)\n", handle_opens, after.gdi - before.gdi,
                before.gdi, after.user - before.user, before.user);
    close(program, window);
}

} // namespace

int main(int count, char** values)
{
    if (count < 3)
        return 2;
    const std::string_view only = count > 3 ? values[3] : "";
    const installed_program installed(values[1]);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    if (only.empty() || only == "start")
        measureStart(installed);
    if (only.empty() || only == "open")
        measureOpen(installed, values[2]);
    if (only.empty() || only == "handles")
        measureHandles(installed);
    if (only.empty() || only == "export")
        measureExport(installed, values[2]);
    if (only.empty() || only == "archives")
    {
        measureArchives(installed);
        measureFolder(installed);
    }
    return 0;
}
