#pragma once

// What goes out of the page of the archives, and into it: files are taken out. Window thread.

#include "Korvane/app/page.h"
#include "Korvane/archives/path_tree.h"

#include <memory>
#include <vector>

namespace korvane
{

class archive_exchange
{
public:
    using file_list = std::vector<const pack_file_node*>;

    explicit archive_exchange(page_host& host) : m_host(host) {}

    // Asks where to and how, writes the files, and says what was left out and why.
    void takeOut(const std::shared_ptr<const path_tree>& tree, const file_list& files);

private:
    page_host& m_host;
};

} // namespace korvane
