#pragma once

// How many GDI and user handles a process holds, for tests and measurements that look for leaks. Wine has no
// GetGuiResources: there the table of GDI handles is read, which each process has at the place that its environment
// block names, and the numbers that user handles can have are tried one by one.

#include <cstdint>
#include <vector>
#include <windows.h>
#include <winternl.h>

namespace korvane::test
{

struct ui_handles
{
    int gdi = 0;
    int user = 0; // windows, and menus, icons and shortcut tables of this process
};

inline int countGdiHandles(HANDLE process)
{
    struct entry
    {
        void* object;
        std::uint16_t owner, count, unique;
        std::uint8_t type, flags;
        void* user_data;
    };
    constexpr std::size_t table_offset = 0xf8; // in the 64-bit process environment block
    constexpr std::size_t most_handles = 16384;
    using query = NTSTATUS(NTAPI*)(HANDLE, PROCESSINFOCLASS, void*, ULONG, ULONG*);
    void* const address =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationProcess"));
    PROCESS_BASIC_INFORMATION about{};
    const void* table = nullptr;
    std::vector<entry> entries(most_handles);
    if (reinterpret_cast<query>(address)(process, ProcessBasicInformation, &about, sizeof about, nullptr) != 0 ||
        !ReadProcessMemory(process, reinterpret_cast<const char*>(about.PebBaseAddress) + table_offset, &table,
                           sizeof table, nullptr) ||
        !ReadProcessMemory(process, table, entries.data(), entries.size() * sizeof(entry), nullptr))
        return 0;
    int count = 0;
    for (const entry& each : entries)
        count += each.type != 0 ? 1 : 0;
    return count;
}

inline int countUserHandles(HANDLE process)
{
    const DWORD wanted = GetProcessId(process);
    const bool is_own = wanted == GetCurrentProcessId();
    int count = 0;
    for (std::uintptr_t number = 0x20; number < 0x10000; ++number) // the rest of a handle may be left out
    {
        DWORD owner = 0;
        ICONINFO icon{};
        if (GetWindowThreadProcessId(reinterpret_cast<HWND>(number), &owner) != 0)
            count += owner == wanted ? 1 : 0;
        else if (is_own && (IsMenu(reinterpret_cast<HMENU>(number)) ||
                            CopyAcceleratorTableW(reinterpret_cast<HACCEL>(number), nullptr, 0) > 0))
            ++count;
        else if (is_own && GetIconInfo(reinterpret_cast<HICON>(number), &icon))
        {
            DeleteObject(icon.hbmMask);
            DeleteObject(icon.hbmColor);
            ++count;
        }
    }
    return count;
}

inline ui_handles uiHandlesOf(HANDLE process)
{
    const DWORD gdi = GetGuiResources(process, GR_GDIOBJECTS);
    if (gdi != 0)
        return {static_cast<int>(gdi), static_cast<int>(GetGuiResources(process, GR_USEROBJECTS))};
    return {countGdiHandles(process), countUserHandles(process)};
}

} // namespace korvane::test
