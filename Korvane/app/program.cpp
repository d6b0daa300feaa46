// The Windows program: prepares the process, opens the main window and runs the message loop.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/log_file.h"
#include "EASY_GUI/win32/handle_policies.h"
#include "EASY_GUI/win32/message_box_prompt.h"
#include "EASY_GUI/win32/message_loop.h"
#include "EASY_GUI/win32/wide_text.h"
#include "Korvane/app/d3d_model_view.h"
#include "Korvane/app/main_window.h"
#include "Korvane/archives/game_file.h"

#include <commctrl.h>
#include <exception>
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
        ppfnSetAwareness(1); // one density for the whole session
}

void registerControls()
{
    INITCOMMONCONTROLSEX classes{};
    classes.dwSize = sizeof(classes);
    classes.dwICC = ICC_STANDARD_CLASSES | ICC_USEREX_CLASSES;
    InitCommonControlsEx(&classes);
}

// The first operand of the command line as a full path; a path into the archives as it is; empty without one.
std::string fileOfCommandLine()
{
    int count = 0;
    LPWSTR* const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments == nullptr)
        return {};
    const std::wstring file = count > 1 ? arguments[1] : L"";
    LocalFree(arguments);
    if (file.empty() || isPackPath(fromWide(file)))
        return fromWide(file);
    std::wstring full(GetFullPathNameW(file.c_str(), 0, nullptr, nullptr) + std::size_t{1}, L'\0');
    full.resize(GetFullPathNameW(file.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return fromWide(full);
}

void openFolderOf(const std::string& path)
{
    const std::wstring arguments = L"/select,\"" + toWide(path) + L"\"";
    ShellExecuteW(nullptr, nullptr, L"explorer.exe", arguments.c_str(), nullptr, SW_SHOWNORMAL);
}

int runProgram(const std::string& command_line)
{
    config_file config;
    config.load(config_file::defaultPath());
    makeDpiAware();
    registerControls();
    const com_apartment apartment;

    log_file log;
    message_box_prompt prompt;
    main_window window({config, "", log, "log.txt", prompt, [&prompt](HWND owner) { prompt.setOwner(owner); },
                        &makeD3dModelView, &openFolderOf},
                       command_line, fileOfCommandLine());
    failure why;
    if (!window.open(why))
    {
        prompt.show("Error!", "The program could not start.\r\n\r\n" + describe(why), prompt_icon::error);
        return 1;
    }
    return message_loop(window, window.accelerators()).run();
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR command_line, int)
{
    try
    {
        return runProgram(korvane::fromWide(command_line));
    }
    catch (const std::exception& error)
    {
        const std::wstring text = L"The program had to stop: " + korvane::toWide(error.what());
        MessageBoxW(nullptr, text.c_str(), L"Error!", MB_OK | MB_ICONERROR);
    }
    return 1;
}
