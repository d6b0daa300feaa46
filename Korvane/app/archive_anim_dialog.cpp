#include "Korvane/app/archive_anim_dialog.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/animation/anim_search.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/text_dialogs.h"

#include <algorithm>

namespace korvane
{

archive_anim_dialog::archive_anim_dialog(page_host& host)
    : dialog_box({"Choose From the Archives", {620, 420}, true, helpContext(help_topic::blender)})
    , m_po_game(host.document().game())
    , m_listing(host.thread(), {})
{
}

std::optional<layout> archive_anim_dialog::onFill(failure&)
{
    if (!m_filter_name.create(handle(), "&Find:") ||
        !m_filter.create(handle(), control_archive_anim_filter, edit_box::access::editable) ||
        !m_list.create(handle(), control_archive_anim_list, m_rows) || !m_count.create(handle(), 0, "Listing...") ||
        !m_ok.create(handle(), control_archive_anim_ok, "&Choose") ||
        !m_cancel.create(handle(), control_dialog_close, "Cancel"))
        return std::nullopt;
    m_filter.setTip("Parts of names and folders; with several words each has to be there");
    m_filter.onChange = [this] { filter(); };
    m_list.onSelect = [this](int row) { m_ok.setEnabled(row >= 0); };
    m_list.onActivate = [this](int row) { choose(row); };
    m_ok.onClick = [this] { choose(m_list.selected()); };
    m_cancel.onClick = [this] { onCancel(); };
    m_ok.setEnabled(false);
    setDefault(m_ok);
    m_listing.start([this, game = m_po_game](const work_port&) {
        auto found = std::make_shared<entry_list>(animationCandidates(*game->archives()));
        // Of several archives with the same file the one that counts.
        std::erase_if(*found, [&game](const pack_file_node* entry) {
            return game->archives()->findFile(entry->internalPath()) != entry;
        });
        return background_task::answer([this, found] {
            m_rows.add(*found);
            m_list.refresh();
            showCount();
        });
    });
    using way = layout::direction;
    layout rows(way::down);
    rows.setMargins(10);
    rows.add(layout(way::across).add(m_filter_name).add(m_filter, share()));
    rows.add(m_list, share(1, 160));
    rows.add(layout(way::across).add(m_count, share(1, 120)).add(m_ok, aligned(1)).add(m_cancel, aligned(1)));
    return rows;
}

void archive_anim_dialog::filter()
{
    m_rows.setFilter(m_filter.text());
    m_list.refresh();
    const bool is_one = m_rows.rowCount() == 1;
    m_list.select(is_one ? 0 : -1);
    m_ok.setEnabled(is_one);
    showCount();
}

void archive_anim_dialog::showCount()
{
    m_count.setText(m_rows.filter().empty()
                        ? counted(m_rows.animationCount(), "file")
                        : grouped(m_rows.shownAnimationCount()) + " of " + counted(m_rows.animationCount(), "file"));
}

void archive_anim_dialog::choose(int row)
{
    if (row < 0)
        return;
    m_path = game_path::ofInternal(m_rows.choice(static_cast<std::size_t>(row)).path()).text();
    end(chosen);
}

std::optional<std::string> pickArchiveAnimation(page_host& host)
{
    if (!host.document().game()->hasArchives())
    {
        host.prompt().show("Choose From the Archives",
                           "No archives are loaded. Tools, Setup Game Folders... says where the game is.",
                           prompt_icon::information);
        return std::nullopt;
    }
    archive_anim_dialog asked(host);
    return runDialog(host, asked) == archive_anim_dialog::chosen ? std::optional(asked.path()) : std::nullopt;
}

} // namespace korvane
