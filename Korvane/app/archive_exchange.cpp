#include "Korvane/app/archive_exchange.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/app/take_out_dialog.h"
#include "Korvane/app/text_dialogs.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace korvane
{

namespace
{

// "men\guard.dds, 12,345 bytes", "31 files, 123,456 bytes in the archives".
std::string filesText(const archive_exchange::file_list& files)
{
    std::uint64_t bytes = 0;
    for (const pack_file_node* const file : files)
        bytes += file->size();
    const std::string what =
        files.size() == 1 ? displayText(files.front()->internalPath()) : counted(files.size(), "file");
    return what + ", " + counted(bytes, "byte") + " in the archives";
}

// What cannot be a file of the disk, behind what was done.
std::string leftOutText(const file_offer& offer)
{
    return offer.leftOut() == 0
               ? std::string()
               : " " + counted(offer.leftOut(), "file") + " with a name that no folder can hold stayed away.";
}

const std::string too_many =
    "These are more than " + grouped(file_offer::most_files) + " files: Take Out... writes any number of them.";

} // namespace

void archive_exchange::takeOut(const file_list& files)
{
    if (files.empty())
        return;
    take_out_choices choices(m_host.config());
    const bool has_textures =
        std::any_of(files.begin(), files.end(), [](const pack_file_node* file) { return file->extension() == "dds"; });
    if (take_out_dialog asked(m_host, choices, filesText(files), has_textures);
        runDialog(m_host, asked) != take_out_dialog::accepted)
        return;
    choices.remember();
    extract_job_result result;
    const bool is_whole = m_host.work("Taking out " + counted(files.size(), "file"), [&](const work_port& work) {
        extractEntries(m_browser.game()->archives(), files, choices.options(), work, result);
    });
    const take_out_report report = reportOf(result, choices.folder(), is_whole);
    m_host.setStatus(report.line);
    if (report.text.empty())
        return;
    report_dialog shown(m_host, "Take Out", report.text);
    runDialog(m_host, shown);
}

std::shared_ptr<file_offer> archive_exchange::newOffer()
{
    if (!m_ole)
        m_ole.emplace();
    return std::make_shared<file_offer>(m_browser.game()->archives());
}

void archive_exchange::addTo(file_offer& offer, std::size_t row) const
{
    if (const pack_file_node* const file = m_browser.rows().fileAt(row))
        offer.add(*file);
    else if (const path_node* const folder = m_browser.rows().folderAt(row))
        offer.add(*folder);
}

std::string archive_exchange::pathsOf(const std::vector<std::size_t>& rows) const
{
    std::string text;
    for (const std::size_t row : rows)
        text += (text.empty() ? "" : "\r\n") + displayText(m_browser.rows().pathAt(row));
    return text;
}

void archive_exchange::copy(const std::vector<std::size_t>& rows)
{
    if (rows.empty())
        return m_host.setStatus("There is nothing selected to copy.");
    const std::shared_ptr<file_offer> offer = newOffer();
    for (const std::size_t row : rows)
        if (!offer->isFull())
            addTo(*offer, row);
    const bool has_files = !offer->isFull() && offer->count() > 0;
    const std::string text = pathsOf(rows);
    const com_ptr<IDataObject> made = makeDataObject(has_files ? offer : nullptr, text);
    failure why;
    if (!setClipboardData(made, why))
    {
        m_host.logLine("archive_exchange::copy(). " + describe(why));
        return m_host.setStatus("The clipboard could not be used: " + describe(why));
    }
    m_copied = made;
    m_copied_text = text;
    const std::string what =
        rows.size() == 1 ? displayText(m_browser.rows().pathAt(rows.front())) : counted(rows.size(), "path");
    if (has_files)
        m_host.setStatus("Copied: " + what + ". Pasted into a folder of the file manager: " +
                         counted(offer->count(), "file") + "." + leftOutText(*offer));
    else
        m_host.setStatus("Copied: " + what + ", as text. " + (offer->isFull() ? too_many : leftOutText(*offer)));
}

void archive_exchange::drag(const std::vector<std::size_t>& rows)
{
    if (rows.empty())
        return;
    const std::shared_ptr<file_offer> offer = newOffer();
    for (const std::size_t row : rows)
        if (!offer->isFull())
            addTo(*offer, row);
    drag(offer, pathsOf(rows));
}

void archive_exchange::drag(const path_node& folder)
{
    const std::shared_ptr<file_offer> offer = newOffer();
    offer->add(folder);
    drag(offer, displayText(folder.path()));
}

void archive_exchange::drag(std::shared_ptr<file_offer> offer, const std::string& text)
{
    if (offer->isFull())
        return m_host.setStatus(too_many);
    const std::string said = counted(offer->count(), "file");
    if (offer->count() > 0 && dragData(makeDataObject(offer, text)))
        m_host.setStatus("Handed over: " + said + "." + leftOutText(*offer));
    else if (offer->leftOut() > 0)
        m_host.setStatus(leftOutText(*offer).substr(1));
}

} // namespace korvane
