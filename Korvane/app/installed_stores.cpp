#include "Korvane/app/installed_stores.h"

#include "EASY_GUI/win32/wide_text.h"

#include <algorithm>
#include <array>
#include <windows.h>

namespace korvane
{

namespace
{

// Empty: there is none.
std::string registryText(HKEY root, const std::wstring& key, const wchar_t* name)
{
    std::wstring text(32768, L'\0');
    DWORD bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (RegGetValueW(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text.data(), &bytes) != ERROR_SUCCESS)
        return {};
    text.resize(bytes / sizeof(wchar_t));
    return fromWide(text.substr(0, text.find(L'\0')));
}

std::string environment(const wchar_t* name)
{
    std::wstring text(32768, L'\0');
    text.resize(GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return fromWide(text);
}

void add(std::vector<std::string>& folders, const std::string& folder)
{
    if (!folder.empty() && std::find(folders.begin(), folders.end(), folder) == folders.end())
        folders.push_back(folder);
}

// Programs of 32 bits have a part of the registry of their own.
constexpr std::array software_keys = {L"SOFTWARE\\", L"SOFTWARE\\WOW6432Node\\"};

void addGogGames(std::vector<std::string>& games)
{
    for (const wchar_t* const software : software_keys)
    {
        const std::wstring path = std::wstring(software) + L"GOG.com\\Games";
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
            continue;
        std::array<wchar_t, 256> name{};
        DWORD length = static_cast<DWORD>(name.size());
        for (DWORD i = 0;
             RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
             ++i, length = static_cast<DWORD>(name.size()))
            add(games, registryText(HKEY_LOCAL_MACHINE, path + L"\\" + name.data(), L"path"));
        RegCloseKey(key);
    }
}

} // namespace

game_stores installedStores()
{
    game_stores stores;
    add(stores.steam, registryText(HKEY_CURRENT_USER, L"SOFTWARE\\Valve\\Steam", L"SteamPath"));
    for (const wchar_t* const software : software_keys)
        add(stores.steam, registryText(HKEY_LOCAL_MACHINE, std::wstring(software) + L"Valve\\Steam", L"InstallPath"));
    if (const std::string shared = environment(L"ProgramData"); !shared.empty())
        add(stores.epic_manifests, shared + "\\Epic\\EpicGamesLauncher\\Data\\Manifests");
    addGogGames(stores.games);
    for (const wchar_t* const name : {L"ProgramFiles(x86)", L"ProgramFiles", L"ProgramW6432"})
    {
        const std::string programs = environment(name);
        if (programs.empty())
            continue;
        add(stores.steam, programs + "\\Steam");
        add(stores.games_folders, programs + "\\GOG Galaxy\\Games");
        add(stores.games_folders, programs + "\\Epic Games");
    }
    if (std::string drive = environment(L"SystemDrive"); !drive.empty())
        add(stores.games_folders, drive + "\\GOG Games");
    return stores;
}

} // namespace korvane
