#pragma once

// A list of lines, of which one may be selected.

#include "EASY_GUI/win32/control.h"

namespace korvane
{

class list_box : public control
{
public:
    // By the person; select() calls nothing. Positions count from 0.
    std::function<void(int position)> onSelect;
    std::function<void(int position)> onActivate; // Enter or a double click

    [[nodiscard]] bool create(HWND parent, int id);

    void clear();
    void add(std::string_view text);
    int count() const;
    std::string textAt(int position) const;
    void select(int position); // -1: none
    int selected() const;      // -1: none

    bool fillsHeight() const override { return true; }

protected:
    bool onNotified(int code) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;
    std::string tipAt(POINT at) const override;

private:
    int lineAt(POINT at) const; // -1: none

    int m_pointed_at = -1;
};

} // namespace korvane
