#pragma once

// The line on the terminal that says how far long work has come. It is written over in place, shown only when the work
// lasts over a second, and taken away before anything else is printed. Called by one thread; a helper of its own shows
// the line while that thread is busy with a long step.

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace korvane
{

class progress_line
{
public:
    progress_line() = default;
    progress_line(const progress_line&) = delete;
    progress_line& operator=(const progress_line&) = delete;
    ~progress_line();

    // Standard error is a terminal. What is longer than its line is cut.
    void show(const std::string& text);
    // Takes the line away; it comes back with the next show().
    void clear();

    void showAtOnce() { m_due = {}; } // for tests

private:
    void draw();
    void showWhenDue();

    std::chrono::steady_clock::time_point m_due = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    std::mutex m_guard;
    std::condition_variable m_ending;
    std::thread m_helper; // from the first show() to the time when the line is due
    std::string m_text;   // empty: there is nothing to show
    bool m_is_drawn = false;
    bool m_is_over = false;
};

} // namespace korvane
