#pragma once

// Notices that another program has changed or removed a file that is open. Asks for its stamp when it is told to look,
// and never opens it. One thread.

#include "EASY_GUI/services/file_stamp.h"

#include <string>

namespace korvane
{

class disk_follower
{
public:
    enum class change
    {
        none,
        changed,
        gone
    };

    // From now on this file, as it was when its stamp was taken. An empty path: nothing is followed.
    void follow(std::string path, const file_stamp& known)
    {
        m_path = std::move(path);
        m_known = m_seen = m_told = known;
    }
    // Tells each change once, and not before two looks have found the same of it: until then it is being written. A
    // file that comes back as it was has not changed.
    [[nodiscard]] change look();
    // Whether the file is there now, and another one than the one that is followed.
    bool isOther() const;

private:
    std::string m_path;
    file_stamp m_known; // of what is open
    file_stamp m_seen;  // at the last look
    file_stamp m_told;
};

} // namespace korvane
