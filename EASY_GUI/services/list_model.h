#pragma once

// What stands in a list with columns, behind whatever shows it. Rows are asked for when they are seen, so a list may
// have millions. Texts are UTF-8 and ready to be shown. One thread; whoever changes the rows tells the list that shows
// them.

#include "EASY_GUI/services/row_mark.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace korvane
{

struct list_column
{
    std::string_view title;
    int width = 100;        // at 96 dots per inch, at first; 0: what the others leave
    bool is_number = false; // aligned to the right
};

class list_model
{
public:
    virtual ~list_model() = default;

    virtual std::span<const list_column> columns() const = 0; // the same for the model's whole life
    virtual std::size_t rowCount() const = 0;
    virtual std::string text(std::size_t row, std::size_t column) const = 0;
    virtual row_mark mark(std::size_t /*row*/) const { return row_mark::plain; }
    virtual std::string tip(std::size_t /*row*/) const { return {}; } // more about the row; empty: nothing to add
};

} // namespace korvane
