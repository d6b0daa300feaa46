#include "EASY_GUI/win32/message_box_prompt.h"

#include "EASY_GUI/win32/com_ptr.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/save_question.h"
#include "EASY_GUI/win32/wide_text.h"

#include <shobjidl.h>

namespace korvane
{

namespace
{

// The window that was in front is so again after a dialog: with two windows of the program the system may choose the
// other one.
class front_keeper
{
public:
    front_keeper() : m_active(GetActiveWindow()) {}
    front_keeper(const front_keeper&) = delete;
    front_keeper& operator=(const front_keeper&) = delete;
    ~front_keeper()
    {
        if (m_active != nullptr && GetForegroundWindow() != m_active)
            SetForegroundWindow(m_active);
    }

private:
    HWND m_active;
};

// A box is as wide as its longest word: paths are broken behind a separator.
std::string broken(const std::string& text)
{
    constexpr std::size_t longest_word = 100;
    std::string result;
    std::size_t word = 0;      // length, so far
    std::size_t separator = 0; // behind the last one of the word, in the result; 0: none
    for (const char character : text)
    {
        result += character;
        word = character == ' ' || character == '\n' ? 0 : word + 1;
        if (word == 0)
            separator = 0;
        else if (character == '\\' || character == '/')
            separator = result.size();
        if (word > longest_word && separator != 0)
        {
            result.insert(separator, "\r\n");
            word = result.size() - separator - 2;
            separator = 0;
        }
    }
    return result;
}

UINT iconFlag(prompt_icon icon)
{
    switch (icon)
    {
    case prompt_icon::warning:
        return MB_ICONWARNING;
    case prompt_icon::error:
        return MB_ICONERROR;
    case prompt_icon::information:
        break;
    }
    return MB_ICONINFORMATION;
}

std::optional<std::string> pathOf(IShellItem& item)
{
    PWSTR text = nullptr;
    if (FAILED(item.GetDisplayName(SIGDN_FILESYSPATH, &text)))
        return std::nullopt;
    const std::string path = fromWide(text);
    CoTaskMemFree(text);
    return path;
}

std::optional<std::string> resultOf(IFileDialog& dialog)
{
    com_ptr<IShellItem> item;
    return SUCCEEDED(dialog.GetResult(item.put())) ? pathOf(*item.get()) : std::nullopt;
}

// True: the person chose something.
bool pick(IFileDialog& dialog, HWND owner, const std::string& title, const std::vector<file_filter>& filters,
          FILEOPENDIALOGOPTIONS further = 0)
{
    const front_keeper front;
    std::vector<std::wstring> texts; // label, pattern, label, pattern...
    for (const file_filter& filter : filters)
    {
        texts.push_back(toWide(filter.label));
        texts.push_back(toWide(filter.pattern));
    }
    std::vector<COMDLG_FILTERSPEC> entries;
    for (std::size_t i = 0; i < texts.size(); i += 2)
        entries.push_back({texts[i].c_str(), texts[i + 1].c_str()});
    dialog.SetTitle(toWide(title).c_str());
    if (!entries.empty())
        dialog.SetFileTypes(static_cast<UINT>(entries.size()), entries.data());
    FILEOPENDIALOGOPTIONS options = 0;
    if (SUCCEEDED(dialog.GetOptions(&options)))
        dialog.SetOptions(options | FOS_FORCEFILESYSTEM | further);
    return SUCCEEDED(dialog.Show(owner));
}

void beginIn(IFileDialog& dialog, const std::string& folder)
{
    com_ptr<IShellItem> item;
    if (!folder.empty() &&
        SUCCEEDED(SHCreateItemFromParsingName(toWide(folder).c_str(), nullptr, __uuidof(IShellItem), item.putVoid())))
        dialog.SetFolder(item.get());
}

com_ptr<IFileOpenDialog> openDialog() // null when the system has none
{
    com_ptr<IFileOpenDialog> dialog;
    CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IFileOpenDialog), dialog.putVoid());
    return dialog;
}

} // namespace

HWND message_box_prompt::owner() const
{
    const HWND dialog = dialog_box::innermost();
    return dialog != nullptr ? dialog : m_owner;
}

void message_box_prompt::show(const std::string& title, const std::string& text, prompt_icon icon)
{
    const front_keeper front;
    MessageBoxW(owner(), toWide(broken(text)).c_str(), toWide(title).c_str(), MB_OK | iconFlag(icon));
}

bool message_box_prompt::confirm(const std::string& title, const std::string& text, prompt_answer preset)
{
    const front_keeper front;
    const UINT focused = preset == prompt_answer::yes ? MB_DEFBUTTON1 : MB_DEFBUTTON2;
    return MessageBoxW(owner(), toWide(text).c_str(), toWide(title).c_str(), MB_YESNO | MB_ICONQUESTION | focused) ==
           IDYES;
}

save_answer message_box_prompt::askToSave(const std::string& title, const std::string& text)
{
    const front_keeper front;
    failure why;
    const save_answer answer = save_question(title, text).ask(owner(), why);
    if (why)
        show("Error!", "The question could not be shown.\r\n\r\n" + describe(why), prompt_icon::error);
    return answer;
}

std::optional<std::string> message_box_prompt::pickOpenPath(const std::string& title,
                                                            const std::vector<file_filter>& filters,
                                                            const std::string& folder)
{
    const com_ptr<IFileOpenDialog> dialog = openDialog();
    if (dialog)
        beginIn(*dialog.get(), folder);
    return dialog && pick(*dialog.get(), owner(), title, filters) ? resultOf(*dialog.get()) : std::nullopt;
}

std::vector<std::string> message_box_prompt::pickOpenPaths(const std::string& title,
                                                           const std::vector<file_filter>& filters)
{
    std::vector<std::string> paths;
    const com_ptr<IFileOpenDialog> dialog = openDialog();
    com_ptr<IShellItemArray> chosen;
    DWORD count = 0;
    if (!dialog || !pick(*dialog.get(), owner(), title, filters, FOS_ALLOWMULTISELECT) ||
        FAILED(dialog->GetResults(chosen.put())) || FAILED(chosen->GetCount(&count)))
        return paths;
    for (DWORD i = 0; i < count; ++i)
    {
        com_ptr<IShellItem> item;
        if (SUCCEEDED(chosen->GetItemAt(i, item.put())))
            if (const auto path = pathOf(*item.get()))
                paths.push_back(*path);
    }
    return paths;
}

std::optional<std::string> message_box_prompt::pickFolder(const std::string& title)
{
    const com_ptr<IFileOpenDialog> dialog = openDialog();
    return dialog && pick(*dialog.get(), owner(), title, {}, FOS_PICKFOLDERS) ? resultOf(*dialog.get()) : std::nullopt;
}

std::optional<std::string> message_box_prompt::pickSavePath(const std::string& title,
                                                            const std::vector<file_filter>& filters,
                                                            const std::string& default_extension,
                                                            const save_suggestion& suggestion)
{
    com_ptr<IFileSaveDialog> dialog;
    if (FAILED(CoCreateInstance(CLSID_FileSaveDialog, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IFileSaveDialog),
                                dialog.putVoid())))
        return std::nullopt;
    dialog->SetDefaultExtension(toWide(default_extension).c_str());
    if (!suggestion.name.empty())
        dialog->SetFileName(toWide(suggestion.name).c_str());
    beginIn(*dialog.get(), suggestion.folder);
    return pick(*dialog.get(), owner(), title, filters) ? resultOf(*dialog.get()) : std::nullopt;
}

} // namespace korvane
