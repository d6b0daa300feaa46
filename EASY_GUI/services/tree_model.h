#pragma once

// What stands in a tree, behind whatever shows it. Nodes are numbers of the model's own, which stay the same while its
// content does; children are asked for when a node is opened. Texts are UTF-8 and ready to be shown. One thread.

#include "EASY_GUI/services/row_mark.h"

#include <cstddef>
#include <optional>
#include <string>

namespace korvane
{

class tree_model
{
public:
    using node = std::size_t;
    static constexpr node root = 0; // not shown itself: its children are the top rows

    virtual ~tree_model() = default;

    virtual std::size_t childCount(node parent) const = 0;
    virtual node child(node parent, std::size_t position) const = 0;
    // What a node stands below, where the model can tell without looking for it: else it is looked for from the top.
    virtual std::optional<node> parent(node /*of*/) const { return std::nullopt; }
    virtual std::string text(node of) const = 0;
    virtual row_mark mark(node /*of*/) const { return row_mark::plain; }
    virtual std::string tip(node /*of*/) const { return {}; } // more about it; empty: nothing to add
    virtual bool isOpenAtFirst(node /*of*/) const { return true; }
};

} // namespace korvane
