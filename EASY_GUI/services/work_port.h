#pragma once

// How long work speaks with whoever started it: how far it has come, and whether it is to stop. A plain value, copied
// into the job; the console shows a line, a window a bar and a Stop button. A default one is silent and never stops.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/services/text.h"

#include <cstddef>
#include <functional>
#include <stop_token>
#include <string>

namespace korvane
{

struct work_progress
{
    std::size_t done = 0;  // steps
    std::size_t total = 0; // 0: not known yet
    std::string what;      // the step that is being done, for people; UTF-8, may hold any character of a file's name
};

struct work_port
{
    // Called by the thread that runs the job, never by its helpers; returns soon.
    std::function<void(const work_progress&)> progress;
    // Polled between steps: work that is stopped leaves no half-written file, and its result says what was done.
    std::stop_token stop;
    // Called by the thread that runs the job.
    log_port log;
    // Told which of several files failed and why, while the others go on. Empty: the log is told. By the same thread.
    std::function<void(const failure& why)> failed = {};

    void nameFailure(const failure& why) const
    {
        if (failed)
            failed(why);
        else
            tell(log, displayText(describe(why)));
    }
    bool isStopped() const { return stop.stop_requested(); }
    void report(std::size_t done, std::size_t total, const std::string& what = {}) const
    {
        if (progress)
            progress({done, total, what});
    }
};

} // namespace korvane
