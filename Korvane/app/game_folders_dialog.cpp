#include "Korvane/app/game_folders_dialog.h"

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/win32/modal_work.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/installed_stores.h"
#include "Korvane/jobs/output_paths.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

constexpr const char* dialog_title = "Setup Game Folders";
constexpr int result_ok = 1;

// Of the games that were found, those that are to be added; all of them are at first.
class found_games_dialog : public dialog_box
{
public:
    explicit found_games_dialog(std::vector<found_game> games)
        : dialog_box({"Games that were found", {620, 260}, true})
        , m_games(std::move(games))
    {
    }
    ~found_games_dialog() override { destroy(); }

    std::vector<found_game> ask(HWND owner, failure& why)
    {
        m_chosen.clear();
        return run(owner, why) == result_ok ? m_chosen : std::vector<found_game>();
    }

protected:
    std::optional<layout> onFill(failure&) override
    {
        if (!m_text.create(handle(), 0,
                           "Choose the games whose data folders are to be added (Ctrl chooses several).") ||
            !m_list.create(handle(), control_found_games, m_games, {true, false}) ||
            !m_add.create(handle(), control_found_add, "&Add Selected") ||
            !m_cancel.create(handle(), control_found_cancel, "Cancel"))
            return std::nullopt;
        m_add.onClick = [this] { endWithChosen(); };
        m_cancel.onClick = [this] { onCancel(); };
        m_list.onSelect = [this](int) { m_add.setEnabled(!m_list.selectedRows().empty()); };
        m_list.selectAll();
        setDefault(m_add);
        setFirstFocus(m_list);
        layout buttons(layout::direction::across);
        buttons.add(share()).add(m_add, aligned(1)).add(m_cancel, aligned(1));
        layout rows(layout::direction::down);
        rows.setMargins(10);
        rows.add(m_text).add(m_list, share(1, 120)).add(std::move(buttons));
        return rows;
    }

private:
    void endWithChosen()
    {
        for (const std::size_t row : m_list.selectedRows())
            m_chosen.push_back(m_games.game(row));
        end(result_ok);
    }

    found_games m_games;
    std::vector<found_game> m_chosen;
    label m_text;
    list_view m_list;
    button m_add, m_cancel;
};

} // namespace

LRESULT game_folders_dialog::folder_box::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_GETDLGCODE && isAboutEnter(lparam) && !text().empty())
        return edit_box::handleMessage(message, wparam, lparam) | DLGC_WANTMESSAGE;
    if (message == WM_CHAR && wparam == VK_RETURN)
        return 0; // it would beep
    if (message == WM_KEYDOWN && wparam == VK_RETURN)
        return tell(onEnter), 0;
    return edit_box::handleMessage(message, wparam, lparam);
}

game_folders_dialog::game_folders_dialog(page_host& host)
    : dialog_box({dialog_title, {700, 320}, true, helpContext(help_topic::first_start)})
    , m_host(host)
    , m_folders(host.config())
    , m_looking(host.thread(), {})
{
}

bool game_folders_dialog::ask(HWND owner, failure& why)
{
    const int result = run(owner, why);
    m_looking.stop();
    if (result != result_ok)
        return false;
    const bool is_changed = m_folders.isChanged();
    m_folders.save();
    return is_changed;
}

std::optional<layout> game_folders_dialog::onFill(failure&)
{
    if (!m_list.create(handle(), control_folder_list, m_folders, {false, true}) ||
        !m_add_data.create(handle(), control_folder_add_data, "Add as &Data Folder") ||
        !m_add_mod.create(handle(), control_folder_add_mod, "Add as &Mod Folder") ||
        !m_remove.create(handle(), control_folder_remove, "&Remove") ||
        !m_up.create(handle(), control_folder_up, "Move &Up") ||
        !m_down.create(handle(), control_folder_down, "Move Do&wn") ||
        !m_find.create(handle(), control_folder_find, "Find &Games...") || !m_box_name.create(handle(), "&Folder:") ||
        !m_box.create(handle(), control_folder_box, edit_box::access::editable) ||
        !m_browse.create(handle(), control_folder_browse, "&Browse...") ||
        !m_summary.create(handle(), control_folder_summary) || !m_ok.create(handle(), control_folder_ok, "OK") ||
        !m_cancel.create(handle(), control_folder_cancel, "Cancel"))
        return std::nullopt;
    m_box.setText(m_folders.boxText());
    m_add_data.setTip("The folder of a game, or the folder \"data\" in it: its archives are read");
    m_add_mod.setTip("A folder of your own: what lies in it counts before the archives, and pictures go there");
    nameHandlers();
    setDefault(m_ok);
    setFirstFocus(m_list);
    show();
    lookAtFolders();
    return rows();
}

void game_folders_dialog::nameHandlers()
{
    using kind = game_folders::folder_kind;
    const auto move = [this](void (game_folders::*step)(std::size_t), int rows) {
        return [this, step, rows] {
            change([this, step](std::size_t row) { (m_folders.*step)(row); }, m_list.selected() + rows);
        };
    };
    const auto remove = [this] {
        change([this](std::size_t row) { m_folders.remove(row); }, m_list.selected());
        m_list.focus(); // a second Enter takes no second folder away
    };
    m_browse.onClick = [this] { browse(); };
    m_add_data.onClick = m_box.onEnter = [this] { add(kind::data); };
    m_add_mod.onClick = [this] { add(kind::mod); };
    m_remove.onClick = remove;
    m_up.onClick = move(&game_folders::moveUp, -1);
    m_down.onClick = move(&game_folders::moveDown, 1);
    m_find.onClick = [this] { findGamesOfStores(); };
    m_list.onSelect = [this](int) { show(); };
    m_list.onKey = [remove](unsigned key) { return key == VK_DELETE ? remove(), true : false; };
    m_box.onChange = [this] { m_folders.setBoxText(m_box.text()); };
    m_ok.onClick = [this] { end(result_ok); };
    m_cancel.onClick = [this] { onCancel(); };
}

layout game_folders_dialog::rows()
{
    layout buttons(layout::direction::down);
    buttons.add(m_add_data).add(m_add_mod).add(m_remove).add(m_up).add(m_down).add(m_find).add(share());
    layout list(layout::direction::across);
    list.add(m_list, share(1, 300)).add(std::move(buttons));
    layout box(layout::direction::across);
    box.add(m_box_name).add(m_box, share()).add(m_browse, aligned(1));
    layout last(layout::direction::across);
    last.add(m_summary, share(1, 150)).add(m_ok, aligned(1)).add(m_cancel, aligned(1));
    layout all(layout::direction::down, 8);
    all.setMargins(10);
    all.add(std::move(list), share()).add(std::move(box)).add(std::move(last));
    return all;
}

void game_folders_dialog::browse()
{
    const auto folder = m_host.prompt().pickFolder("Choose a game's folder, or a folder of your own files");
    if (!folder)
        return;
    m_box.setText(*folder);
    m_folders.setBoxText(*folder);
    m_add_data.focus();
}

void game_folders_dialog::add(game_folders::folder_kind kind)
{
    if (m_box.text().empty())
    {
        browse();
        if (m_box.text().empty())
            return;
    }
    folder_look look;
    const auto lookAt = [&] {
        modal_work work{handle(), "Looking at the folder"};
        return work.run([&look, kind, chosen = m_box.text()](const work_port& port) {
            look = game_folders::lookAtChosen(kind, chosen, port.stop);
        });
    };
    if (!lookAt())
        return;
    if (const auto offer = game_folders::offerToMake(kind, look);
        offer && m_host.prompt().confirm(dialog_title, *offer, prompt_answer::yes))
    {
        if (failure why; !createFolder(look.folder, why))
            return m_host.prompt().show(dialog_title, describe(why), prompt_icon::error);
        if (!lookAt())
            return;
    }
    if (const auto problem = m_folders.add(kind, look))
    {
        m_host.prompt().show(dialog_title, *problem, prompt_icon::information);
        m_box.focus();
        return;
    }
    m_box.setText("");
    showAdded();
}

void game_folders_dialog::showAdded()
{
    m_list.refresh();
    m_list.select(static_cast<int>(m_folders.lastAdded()));
    show();
    m_list.focus();
}

void game_folders_dialog::findGamesOfStores()
{
    std::vector<found_game> found;
    bool is_added = false;
    modal_work work{handle(), "Looking for games"};
    const bool went_on = work.run([&found](const work_port& port) { found = findGames(installedStores(), port); });
    const bool has_any = !found.empty();
    found = m_folders.newOf(found);
    if (found.empty())
        return m_host.prompt().show(
            "Find Games",
            !went_on  ? "The search was stopped; no game was found until then."
            : has_any ? "All games that were found are in the list already."
                      : "No game with archives was found where game stores put them. Add the game's folder by hand: "
                        "type it, or choose it with Browse.",
            prompt_icon::information);
    failure why;
    found_games_dialog dialog(std::move(found));
    for (const found_game& game : dialog.ask(handle(), why))
    {
        m_folders.add(game);
        is_added = true;
    }
    if (why)
        m_host.prompt().show("Find Games", describe(why), prompt_icon::error);
    std::vector<folder_look> looks;
    const modal_work counting{handle(), "Counting archives"};
    static_cast<void>(counting.run([&looks, folders = m_folders.unseenFolders()](const work_port& port) {
        looks = game_folders::look(folders, port);
    }));
    m_folders.take(looks);
    if (is_added)
        return showAdded();
    show();
    m_list.focus();
}

void game_folders_dialog::change(const std::function<void(std::size_t row)>& change, int selected_after)
{
    const int row = m_list.selected();
    if (row < 0)
        return;
    change(static_cast<std::size_t>(row));
    m_list.refresh();
    m_list.select(std::min(selected_after, static_cast<int>(m_folders.rowCount()) - 1));
    show();
}

void game_folders_dialog::show()
{
    m_list.refresh();
    const int selected = m_list.selected();
    const auto row = static_cast<std::size_t>(std::max(0, selected));
    m_remove.setEnabled(selected >= 0);
    m_up.setEnabled(selected >= 0 && m_folders.canMoveUp(row));
    m_down.setEnabled(selected >= 0 && m_folders.canMoveDown(row));
    m_summary.setText(m_folders.summary());
}

void game_folders_dialog::lookAtFolders()
{
    if (const std::vector<std::string> folders = m_folders.unseenFolders(); !folders.empty())
        m_looking.start([this, folders](const work_port& port) {
            return background_task::answer([this, looks = game_folders::look(folders, port)] {
                m_folders.take(looks);
                if (isOpen())
                    show();
            });
        });
}

} // namespace korvane
