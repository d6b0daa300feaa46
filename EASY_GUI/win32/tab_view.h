#pragma once

// A row of captions, of which one is chosen: its page is seen. The pages are windows of the owner's, created after the
// tabs and placed over displayRectangle(); the owner shows and hides them in onSelect. With the focus on the captions
// the arrow keys choose. Ctrl+Tab and Ctrl+Shift+Tab are the owner's to look up: it calls selectNext().

#include "EASY_GUI/win32/control.h"

namespace korvane
{

class tab_view : public control
{
public:
    std::function<void(int page)> onSelect; // by the person, and by selectNext(); select() calls nothing

    [[nodiscard]] bool create(HWND parent, int id);

    int add(std::string_view caption); // behind the others; its page
    void setCaption(int page, std::string_view caption);
    std::string caption(int page) const;
    int count() const;
    void select(int page);
    int selected() const; // -1: there are none
    void selectNext(bool is_backwards);
    RECT displayRectangle() const; // of the pages, in client pixels of the parent
    int captionWidth() const;      // pixels from the left edge to the end of the last caption

protected:
    bool onNotify(NMHDR& message, LRESULT& result) override;
};

} // namespace korvane
