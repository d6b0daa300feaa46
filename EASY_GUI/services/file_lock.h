#pragma once

// One at a time among all processes of a machine: whoever reads a file, changes what it says and writes it again holds
// the file's lock meanwhile. It binds only those who ask for it, and leaves nothing behind on the disk. The system
// gives the lock back when its holder dies.

#include "EASY_GUI/services/failure.h"

#include <chrono>
#include <memory>
#include <string>

namespace korvane
{

class file_lock
{
public:
    file_lock();
    ~file_lock();
    file_lock(const file_lock&) = delete;
    file_lock& operator=(const file_lock&) = delete;

    // Waits for its turn; the file need not exist, but its folder. False when that takes longer than the patience, or
    // the system has no lock to give. The thread that took the lock gives it back.
    [[nodiscard]] bool take(const std::string& path, std::chrono::milliseconds patience, failure& why);

private:
    struct holder; // of the platform
    std::unique_ptr<holder> m_po_holder;
};

} // namespace korvane
