#pragma once

// What goes out of the page of the archives, and into it: files are taken out, copied, or dragged into other programs.
// Window thread.

#include "EASY_GUI/win32/data_object.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/archive_browser.h"
#include "Korvane/presenters/file_offer.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

class archive_exchange
{
public:
    using file_list = std::vector<const pack_file_node*>;

    // The browser outlives this.
    archive_exchange(page_host& host, const archive_browser& browser) : m_host(host), m_browser(browser) {}
    archive_exchange(const archive_exchange&) = delete;
    archive_exchange& operator=(const archive_exchange&) = delete;
    ~archive_exchange() { leaveClipboard(m_copied, m_copied_text); }

    // Asks where to and how, writes the files, and says what was left out and why.
    void takeOut(const file_list& files);

    // Rows of the browser, folders with all that is below them: their paths as text, and the files themselves for
    // programs that take files.
    void copy(const std::vector<std::size_t>& rows);
    void drag(const std::vector<std::size_t>& rows); // until the person lets go of them
    void drag(const path_node& folder);

private:
    std::shared_ptr<file_offer> newOffer();
    void addTo(file_offer& offer, std::size_t row) const;
    void drag(std::shared_ptr<file_offer> offer, const std::string& text);
    std::string pathsOf(const std::vector<std::size_t>& rows) const;

    page_host& m_host;
    const archive_browser& m_browser;
    std::optional<ole_session> m_ole; // from the first use on
    com_ptr<IDataObject> m_copied;    // last
    std::string m_copied_text;
};

} // namespace korvane
