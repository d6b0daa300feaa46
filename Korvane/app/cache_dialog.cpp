#include "Korvane/app/cache_dialog.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/app/command_ids.h"

#include <algorithm>
#include <utility>

namespace korvane
{

cache_dialog::cache_dialog(page_host& host)
    : dialog_box({"Index Cache", {640, 340}, true, helpContext(help_topic::cache)})
    , m_host(host)
    , m_rows(cache_places::of(host.config().table(), host.config().path()), host.document().game()->hasArchives())
    , m_work(host.thread(), {[this](const work_progress& now) {
                                 m_progress.setRange(static_cast<int>(std::max<std::size_t>(1, now.total)));
                                 m_progress.setPosition(static_cast<int>(now.done));
                                 if (m_is_rebuilding && now.done == now.total && m_stop.isEnabled())
                                     m_status.setText("Writing...");
                             },
                             [&host](const std::string& line) { host.logLine(line); },
                             [this](const std::string& what) {
                                 failure why;
                                 fail(why, failure_kind::unreadable, "the work ended early: " + what);
                                 ended(chosen(), false, why);
                             }})
{
}

std::optional<layout> cache_dialog::onFill(failure&)
{
    if (!m_list.create(handle(), control_cache_list, m_rows, {false, true}) ||
        !m_details.create(handle(), control_cache_details) ||
        !m_rebuild.create(handle(), control_cache_rebuild, "&Rebuild") ||
        !m_delete.create(handle(), control_cache_delete, "&Delete") ||
        !m_use_name.create(handle(), "&Keep an index of the archives:") || !m_use.create(handle(), control_cache_use) ||
        !m_use_text.create(handle(), control_cache_use_text) || !m_status.create(handle(), control_cache_status) ||
        !m_progress.create(handle(), control_cache_progress) || !m_stop.create(handle(), control_cache_stop, "&Stop") ||
        !m_close.create(handle(), control_dialog_close, "Close"))
        return std::nullopt;
    for (const std::string_view name : cache_rows::use_names)
        m_use.add(name);
    m_use.select(static_cast<int>(m_rows.places().use));
    m_list.onSelect = [this](int) { show(); };
    m_list.onKey = [this](unsigned key) { return key == VK_DELETE && (deleteChosen(), true); };
    m_rebuild.onClick = [this] { rebuild(); };
    m_delete.onClick = [this] { deleteChosen(); };
    m_stop.onClick = [this] {
        m_status.setText("Stopping...");
        m_stop.setEnabled(false);
        m_close.focus();
        m_work.requestStop();
    };
    m_close.onClick = [this] { onCancel(); };
    m_use.onSelect = [this](int position) { setUse(static_cast<cache_use>(position)); };
    m_rebuild.setTip("Reads the archives again, and writes the file");
    m_delete.setTip("Deletes the file; nothing is lost but time");
    setDefault(m_close);
    setFirstFocus(m_list);
    m_list.select(0);
    setWorking(false);
    using way = layout::direction;
    layout rows(way::down);
    rows.setMargins(10);
    rows.add(m_list, share(1, 80)).add(m_details, lines(5));
    rows.add(layout(way::across).add(share()).add(m_rebuild, aligned(1)).add(m_delete, aligned(1)));
    rows.add(layout(way::across).add(m_use_name).add(m_use, fixed(150)).add(share()));
    rows.add(m_use_text, lines(2)).add(m_progress, fixed(8));
    rows.add(layout(way::across).add(m_status, share(1, 200)).add(m_stop, aligned(1)).add(m_close, aligned(1)));
    return rows;
}

cache_rows::row cache_dialog::chosen() const
{
    return m_list.selected() == cache_rows::usage ? cache_rows::usage : cache_rows::packs;
}

void cache_dialog::look(const std::string& status)
{
    m_status.setText(status);
    m_work.start([this, places = m_rows.places(), game = m_host.document().game(),
                  status](const work_port& work) -> background_task::answer {
        const cache_look packs = lookAtPackCache(places, work);
        const cache_look usage = lookAtUsageCache(places, game.get());
        return [this, packs, usage, status] {
            m_rows.take(cache_rows::packs, packs);
            m_rows.take(cache_rows::usage, usage);
            if (m_status.text() == status)
                m_status.setText(status.ends_with("...") ? std::string() : status);
            show();
        };
    });
    show();
}

void cache_dialog::show()
{
    m_list.refresh();
    m_details.setText(m_rows.details(chosen()));
    m_use_text.setText(m_rows.useText());
    setWorking(m_is_rebuilding);
}

void cache_dialog::setWorking(bool is_working)
{
    m_is_rebuilding = is_working;
    m_rebuild.setEnabled(!is_working && m_rows.canRebuild(chosen()));
    m_delete.setEnabled(!is_working && m_rows.canDelete(chosen()));
    m_use.setEnabled(!is_working);
    m_list.setEnabled(!is_working);
    m_stop.setEnabled(is_working);
    if (!is_working)
        m_progress.setPosition(0);
}

void cache_dialog::rebuild()
{
    const cache_rows::row of = chosen();
    setWorking(true);
    m_stop.focus();
    m_status.setText(of == cache_rows::packs ? "Reading the archives..." : "Looking into models and definitions...");
    m_work.start([this, of, places = m_rows.places(),
                  game = m_host.document().game()](const work_port& work) -> background_task::answer {
        failure why;
        const bool is_done =
            of == cache_rows::packs ? rebuildPackCache(places, work, why) : rebuildUsageCache(places, *game, work, why);
        return [this, of, is_done, why] { ended(of, is_done, why); };
    });
}

void cache_dialog::ended(cache_rows::row of, bool is_done, const failure& why)
{
    if (is_done && of == cache_rows::packs)
        static_cast<void>(m_host.config().change([](config_file& config) { return pack_cache::recordIn(config); }));
    setWorking(false);
    m_list.focus();
    look(is_done ? "Written." : "Not written: " + displayText(why.what) + ".");
}

void cache_dialog::deleteChosen()
{
    const cache_rows::row of = chosen();
    if (m_is_rebuilding || !m_rows.canDelete(of))
        return;
    failure why;
    const bool is_gone =
        of == cache_rows::packs ? m_rows.places().packs.remove(why) : m_rows.places().usage.remove(why);
    m_list.focus();
    look(is_gone ? "Deleted." : "Not deleted: " + displayText(why.what) + ".");
}

void cache_dialog::setUse(cache_use use)
{
    const std::string_view name = nameOf(use);
    m_rows.setUse(use);
    const bool is_kept =
        m_host.config().set(config_keys::cache_use,
                            name.empty() ? std::vector<std::string>() : std::vector<std::string>{std::string(name)});
    m_status.setText(is_kept ? "This counts from the next start on."
                             : "This could not be written to the configuration.");
    show();
}

void cache_dialog::onCancel()
{
    m_work.stop();
    dialog_box::onCancel();
}

} // namespace korvane
