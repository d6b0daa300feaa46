#pragma once

// Notices that something in some folders has changed: the system keeps a note, so that asking costs nothing. What has
// changed is somebody else's question. Folders that cannot be watched are passed over. One thread.

#include "EASY_GUI/win32/handle_policies.h"
#include "EASY_GUI/win32/wide_text.h"

#include <windows.h>

#include <string>
#include <vector>

namespace korvane
{

class folder_watch
{
public:
    // These instead of those before.
    void watch(const std::vector<std::string>& folders)
    {
        m_notes.clear();
        for (const std::string& folder : folders)
        {
            const HANDLE note = FindFirstChangeNotificationW(toWide(folder).c_str(), FALSE,
                                                             FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_SIZE |
                                                                 FILE_NOTIFY_CHANGE_LAST_WRITE);
            if (note != INVALID_HANDLE_VALUE)
                m_notes.emplace_back(note);
        }
    }

    // Since it was asked last.
    bool takeChange()
    {
        bool is_changed = false;
        for (const unique_note& each : m_notes)
            if (WaitForSingleObject(each.get(), 0) == WAIT_OBJECT_0)
            {
                is_changed = true;
                FindNextChangeNotification(each.get());
            }
        return is_changed;
    }

private:
    using unique_note = unique_handle<simple_handle_policy<HANDLE, &FindCloseChangeNotification>>;

    std::vector<unique_note> m_notes;
};

} // namespace korvane
