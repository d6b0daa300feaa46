#pragma once

// What other programs get by the clipboard or by drag and drop: files that are made when they are asked for
// (virtual_files.h), and a text for those who want one. Of the thread with the window, which has to have an ole_session
// as long as it deals with any of this; the system brings calls of other programs there.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/virtual_files.h"
#include "EASY_GUI/win32/com_ptr.h"

#include <memory>
#include <objidl.h>
#include <string>

namespace korvane
{

class ole_session
{
public:
    ole_session();
    ole_session(const ole_session&) = delete;
    ole_session& operator=(const ole_session&) = delete;
    ~ole_session();

private:
    bool m_is_open;
};

// Null files, or an empty text: without them. A file that cannot be read fails its stream, and no other.
[[nodiscard]] com_ptr<IDataObject> makeDataObject(std::shared_ptr<const virtual_files> files, const std::string& text);

// On the clipboard, where it is asked for what it holds until something else is put there.
[[nodiscard]] bool setClipboardData(const com_ptr<IDataObject>& data, failure& why);
// Before the object's owner goes: when it is on the clipboard still, its text stays there alone.
void leaveClipboard(const com_ptr<IDataObject>& data, const std::string& text);

// While the person holds the mouse button; returns when it was released or Escape pressed. True: somebody took it.
bool dragData(const com_ptr<IDataObject>& data);

} // namespace korvane
