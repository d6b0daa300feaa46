// The Windows program: prepares the process, opens the main window and runs the message loop.

#include "D3D11_RENDER_LIB/d3d_check.h"
#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/kernel_handle_win.h"
#include "EASY_GUI/services/log_file.h"
#include "EASY_GUI/win32/handle_policies.h"
#include "EASY_GUI/win32/message_box_prompt.h"
#include "EASY_GUI/win32/message_loop.h"
#include "EASY_GUI/win32/wide_text.h"
#include "Korvane/app/d3d_model_view.h"
#include "Korvane/app/fatal_end.h"
#include "Korvane/app/main_window.h"
#include "Korvane/document/kept_edits.h"
#include "Korvane/game/game_path.h"
#include "Korvane/viewer/preview_pictures.h"

#include <commctrl.h>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <objbase.h>
#include <shellapi.h>

namespace
{

using namespace korvane;

class com_apartment // the file dialogs need COM on this thread
{
public:
    com_apartment() : m_result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
    com_apartment(const com_apartment&) = delete;
    com_apartment& operator=(const com_apartment&) = delete;
    ~com_apartment()
    {
        if (SUCCEEDED(m_result))
            CoUninitialize();
    }

private:
    HRESULT m_result;
};

void makeDpiAware()
{
    const unique_module library(LoadLibraryExW(L"Shcore.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    if (!library)
        return;
    using set_awareness = HRESULT(WINAPI*)(int);
    void* const address = reinterpret_cast<void*>(GetProcAddress(library.get(), "SetProcessDpiAwareness"));
    if (const auto ppfnSetAwareness = reinterpret_cast<set_awareness>(address); ppfnSetAwareness != nullptr)
        ppfnSetAwareness(
            1); // where the system has read the manifest, this finds per-monitor awareness set and does nothing
}

void registerControls()
{
    INITCOMMONCONTROLSEX classes{};
    classes.dwSize = sizeof(classes);
    classes.dwICC = ICC_STANDARD_CLASSES | ICC_USEREX_CLASSES;
    InitCommonControlsEx(&classes);
}

// An operand of the command line as a full path; a path into the archives as it is.
std::string fullPath(const std::wstring& operand)
{
    if (game_path(fromWide(operand)).isInternal())
        return fromWide(operand);
    std::wstring full(GetFullPathNameW(operand.c_str(), 0, nullptr, nullptr) + std::size_t{1}, L'\0');
    full.resize(GetFullPathNameW(operand.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return fromWide(full);
}

std::vector<std::string> filesOfCommandLine()
{
    int count = 0;
    LPWSTR* const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments == nullptr)
        return {};
    std::vector<std::string> files;
    for (int i = 1; i < count; ++i)
        if (*arguments[i] != L'\0')
            files.push_back(fullPath(arguments[i]));
    LocalFree(arguments);
    return files;
}

void openFolderOf(const std::string& path)
{
    const DWORD kind = GetFileAttributesW(toWide(path).c_str());
    const bool is_folder = kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const std::wstring arguments = std::wstring(is_folder ? L"\"" : L"/select,\"") + toWide(path) + L"\"";
    ShellExecuteW(nullptr, nullptr, L"explorer.exe", arguments.c_str(), nullptr, SW_SHOWNORMAL);
}

bool openWith(const wchar_t* verb, const std::string& path)
{
    SHELLEXECUTEINFOW wanted{};
    wanted.cbSize = sizeof wanted;
    wanted.fMask = SEE_MASK_FLAG_NO_UI | SEE_MASK_NOASYNC;
    wanted.lpVerb = verb;
    const std::wstring file = toWide(path);
    wanted.lpFile = file.c_str();
    wanted.nShow = SW_SHOWNORMAL;
    return ShellExecuteExW(&wanted) != 0;
}

bool openPage(const std::string& path)
{
    return openWith(L"open", path);
}

// Painted in what a person has set up for that; a program that only shows pictures comes second.
bool openEditor(const std::string& path)
{
    return openWith(L"edit", path) || openWith(L"open", path);
}

constexpr int exit_status = 3; // that of abort()
constexpr const char* running_mutex = "KorvaneIsRunning";

// Of the whole process; the handlers below have no other way to it.
fatal_end* s_po_end = nullptr;

[[noreturn]] void onTerminate()
{
    std::string reason = "unexpected end";
    try
    {
        if (std::current_exception())
            std::rethrow_exception(std::current_exception());
    }
    catch (const std::exception& error)
    {
        reason = error.what();
    }
    catch (...)
    {
    }
    s_po_end->report(reason);
    std::_Exit(exit_status);
}

LONG WINAPI onCrash(EXCEPTION_POINTERS* crash)
{
    const DWORD code = crash->ExceptionRecord->ExceptionCode;
    if ((code & 0x20ffffff) == 0x20474343)   // the compiler's own, of a C++ exception that nobody catches
        return EXCEPTION_CONTINUE_EXECUTION; // to terminate()
    char reason[80];
    std::snprintf(reason, sizeof reason, "crash, code %08lX", code);
    s_po_end->report(reason);
    return EXCEPTION_CONTINUE_SEARCH;
}

void endWith(fatal_end& end)
{
    s_po_end = &end;
    setAssertionPort([&end](const std::string& text) { end.report(text); });
    std::set_terminate(&onTerminate);
    SetUnhandledExceptionFilter(&onCrash);
}

int runProgram(const std::string& command_line, log_file& log, edit_keeper& keeper, fatal_end& end)
{
    config_file config;
    config.load(config_file::defaultPath());
    makeDpiAware();
    registerControls();
    const com_apartment apartment;

    message_box_prompt prompt;
    const auto set_owner = [&prompt, &end](HWND owner) {
        prompt.setOwner(owner);
        end.setOwner(owner);
    };
    main_window window({config, "", log, "log.txt", prompt, set_owner, &makeD3dModelView, &openFolderOf, keeper,
                        &openEditor, &openPage, executableFolder(), std::make_shared<preview_pictures>()},
                       command_line, filesOfCommandLine());
    failure why;
    if (!end.open(why) || !window.open(why))
    {
        prompt.show("Error!", "The program could not start.\r\n\r\n" + describe(why), prompt_icon::error);
        return 1;
    }
    return message_loop(window, window.accelerators()).run();
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR command_line, int)
{
    // Says to installers that the program runs, as long as one of its processes does; nobody waits for it.
    const unique_kernel_handle running(CreateMutexA(nullptr, FALSE, running_mutex));
    log_file log;
    const log_port to_log = [&log](const std::string& line) { log.write(line + "\r\n"); };
    edit_keeper keeper(defaultKeepFolder(), to_log);
    fatal_end end({keeper, to_log,
                   [](const std::string& text, HWND owner) {
                       MessageBoxW(owner, toWide(text).c_str(), L"Error!", MB_OK | MB_ICONERROR | MB_SETFOREGROUND);
                   },
                   [] { std::_Exit(exit_status); }});
    endWith(end);
    try
    {
        return runProgram(fromWide(command_line), log, keeper, end);
    }
    catch (const std::exception& error)
    {
        end.report(error.what());
    }
    return 1;
}
