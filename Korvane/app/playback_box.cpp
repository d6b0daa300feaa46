#include "Korvane/app/playback_box.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/window_places.h"
#include "Korvane/presenters/skeleton_exchange.h"

#include <algorithm>
#include <commctrl.h>
#include <utility>

namespace korvane
{

namespace
{

constexpr UINT_PTR refresh_timer = 1;
constexpr UINT refresh_pause = 100; // milliseconds
constexpr UINT_PTR play_timer = 2;
constexpr UINT walk_pause = 150; // within which the next row of a walk comes
constexpr int box_margin = 8;    // at 96 dots per inch

bool isDisabled(HWND control)
{
    return IsWindowEnabled(control) == FALSE;
}

} // namespace

playback_box::playback_box(page_host& host, scene_display& display)
    : dialog_box({"Play Animation", {500, 520}, true, helpContext(help_topic::playing)})
    , m_host(host)
    , m_display(display)
    , m_picker([&host](const std::string& line) { host.logLine(line); })
    , m_search(host.thread(), {[this](const work_progress& now) {
                                   m_picker.progress(now.done, now.total);
                                   takeFound();
                               },
                               [&host](const std::string& line) { host.logLine(line); },
                               [this](const std::string& what) {
                                   m_host.logLine("playback_box: the search ended early: " + what);
                                   endSearch({0, true, {}});
                               }})
    , m_reading(host.thread(), {{}, {}, [&host](const std::string& what) { host.logLine("playback_box: " + what); }})
{
}

void playback_box::open()
{
    if (isOpen())
    {
        SetForegroundWindow(handle());
        return m_filter.focus();
    }
    m_host.runCommand(document_command::show_view); // which says why when there is none, and brings it to the front
    failure why;
    const model_view* const view = m_display.view();
    if (showBeside(view != nullptr ? view->handle() : m_host.frame(), why))
        return;
    m_host.logLine("playback_box::open(). " + describe(why));
    m_host.prompt().show("Error!", "The animations could not be shown.\r\n\r\n" + describe(why), prompt_icon::error);
}

std::optional<layout> playback_box::onFill(failure&)
{
    if (!createFound() || !createPlayer())
        return std::nullopt;
    nameHandlers();
    setFirstFocus(m_filter);
    return rows();
}

bool playback_box::createFound()
{
    return m_skeleton_name.create(handle(), "S&keleton:") && m_skeleton.create(handle(), control_playback_skeleton) &&
           m_filter_name.create(handle(), "&Find:") &&
           m_filter.create(handle(), control_playback_filter, edit_box::access::editable) &&
           m_list.create(handle(), control_playback_list, m_picker.rows()) &&
           m_status.create(handle(), control_playback_status) &&
           m_folders.create(handle(), control_playback_folders, "Setup &Game Folders...") &&
           m_stop.create(handle(), control_playback_stop, "Sto&p") &&
           m_message.create(handle(), control_playback_message);
}

bool playback_box::createPlayer()
{
    constexpr auto editable = edit_box::access::editable;
    return m_track.create(handle(), control_playback_track) && m_progress.create(handle(), control_playback_progress) &&
           m_play.create(handle(), control_playback_play, playButtonLabel(play_state::playing)) &&
           m_back.create(handle(), control_playback_back, "&Back") &&
           m_next.create(handle(), control_playback_next, "&Next") && m_frame_name.create(handle(), "F&rame:") &&
           m_frame.create(handle(), control_playback_frame, editable) && m_frame_count.create(handle(), 0) &&
           m_time_name.create(handle(), "&Time:") && m_time.create(handle(), control_playback_time, editable) &&
           m_time_count.create(handle(), 0) && m_first_name.create(handle(), "&Loop from frame:") &&
           m_first.create(handle(), control_playback_first, editable) && m_last_name.create(handle(), "t&o:") &&
           m_last.create(handle(), control_playback_last, editable) &&
           m_all.create(handle(), control_playback_all, "&All") && m_speed_name.create(handle(), "Spee&d:") &&
           m_speed.create(handle(), control_playback_speed, combo_box::entries::typed);
}

void playback_box::nameHandlers()
{
    const auto playing = [this](void (playback_control::*wish)()) {
        return [this, wish] {
            if (model_view* const view = m_display.view())
                (view->playback().*wish)();
            changed();
        };
    };
    const auto stepping = [this, playing](void (playback_control::*wish)()) {
        return [this, step = playing(wish)] {
            if (model_view* const view = m_display.view())
                view->playback().setState(play_state::paused); // to look at the frame
            step();
        };
    };
    m_skeleton.onSelect = [this](int position) { chooseSkeleton(position); };
    m_filter.onChange = [this] { filter(); };
    m_filter.onKey = [this](unsigned key) { return walk(key); };
    m_list.onSelect = [this](int row) {
        m_wanted_row = row;
        SetTimer(handle(), play_timer, walk_pause, nullptr); // which begins anew with each row
    };
    m_list.onActivate = [this](int row) { play(row, true); };
    m_folders.onClick = [this] { m_host.runCommand(document_command::game_folders); };
    m_stop.onClick = [this] { m_search.requestStop(); };
    m_track.onMove = [this](int position) {
        model_view* const view = m_display.view();
        if (view == nullptr)
            return;
        m_is_held = m_is_held || view->playback().state() == play_state::playing;
        view->playback().setState(play_state::paused);
        view->playback().seek({static_cast<std::uint32_t>(position), 0});
        changed();
    };
    m_play.onClick = playing(&playback_control::toggle);
    m_back.onClick = stepping(&playback_control::stepBack);
    m_next.onClick = stepping(&playback_control::stepForward);
    m_frame.onChange = [this] { seek(typedFrame(m_frame.text(), m_picker.length().value_or(playback_length()))); };
    m_time.onChange = [this] { seek(typedTime(m_time.text(), m_picker.length().value_or(playback_length()))); };
    m_first.onChange = m_last.onChange = [this] { takeRange(); };
    m_all.onClick = [this] {
        if (model_view* const view = m_display.view())
            view->playback().setRange({});
        showRange();
        changed();
    };
    m_speed.onType = [this] { takeSpeed(); };
    m_speed.onSelect = [this](int position) {
        m_speed.setText(floatText(offered_speeds[position])); // not there yet when the system tells
        takeSpeed();
    };
    m_play.setTip("Plays or pauses (K in the view)");
    m_back.setTip("One frame back (J in the view)");
    m_next.setTip("One frame on (L in the view)");
    m_filter.setTip("Parts of names and folders; with several words each has to be there");
    m_speed.setTip("From 0.1 to 4 times as fast as the animation is made");
    for (const float speed : offered_speeds)
        m_speed.add(floatText(speed));
}

layout playback_box::rows()
{
    constexpr auto across = layout::direction::across;
    layout play(across);
    play.add(m_play, fixed(44)).add(m_back, fixed(52)).add(m_next, fixed(52)).add(fixed(4));
    play.add(m_frame_name).add(m_frame, fixed(48)).add(m_frame_count, share(1, 54));
    play.add(m_time_name).add(m_time, fixed(52)).add(m_time_count, share(1, 66));
    layout loop(across);
    loop.add(m_first_name).add(m_first, fixed(48)).add(m_last_name).add(m_last, fixed(48)).add(m_all, fixed(48));
    loop.add(share()).add(m_speed_name).add(m_speed, fixed(66));
    layout all(layout::direction::down);
    all.setMargins(10);
    all.add(layout(across).add(m_skeleton_name, aligned(1)).add(m_skeleton, share()));
    all.add(layout(across).add(m_filter_name, aligned(1)).add(m_filter, share()));
    all.add(m_list, share(1, 100));
    all.add(layout(across).add(m_status, share(1, 180)).add(m_folders).add(m_stop));
    all.add(m_message, lines(3));
    all.add(layout(layout::direction::down, 0).add(m_track, fixed(26)).add(m_progress, fixed(6)));
    all.add(std::move(play)).add(std::move(loop));
    return all;
}

// Where it stood. Else beside the view, to its right or left; where there is no room, over its right edge.
bool playback_box::onPlace()
{
    bool is_maximised = false;
    if (restorePlace(handle(), m_host.config(), config_keys::playback_place, is_maximised))
        return true;
    const HWND owner = GetWindow(handle(), GW_OWNER);
    RECT own{}, view{};
    if (owner == nullptr || !GetWindowRect(handle(), &own) || !GetWindowRect(owner, &view))
        return false;
    const RECT area = workArea(owner);
    const LONG margin = scaled(box_margin);
    const LONG width = own.right - own.left;
    const LONG height = own.bottom - own.top;
    const LONG x = view.right + margin + width <= area.right ? view.right + margin
                   : view.left - margin - width >= area.left ? view.left - margin - width
                                                             : std::min(view.right, area.right) - margin - width;
    const LONG y = std::clamp(view.top + scaled(40), area.top, std::max(area.top, area.bottom - height));
    SetWindowPos(handle(), nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    return true;
}

void playback_box::onShown()
{
    m_shown.reset();
    m_shown_state.reset();
    m_shown_skeletons.clear();
    m_picker.rows().setFilter({});
    restartControls();
    SetTimer(handle(), refresh_timer, refresh_pause, nullptr); // goes with the window
    follow();
}

void playback_box::onDestroyed()
{
    resume();
    m_search.stop();
    m_found.reset();
    m_picker.forget();
    if (const std::optional<window_place> place = placeOf(handle()))
        m_host.config().change(
            [&](config_file& config) { return keepPlace(config, config_keys::playback_place, *place); });
    dialog_box::onDestroyed();
}

LRESULT playback_box::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_TIMER && wparam == refresh_timer)
    {
        const model_view* const view = m_display.view();
        if (view != nullptr && !view->isVisible()) // it was closed
            return end(cancelled), 0;
        if (GetCapture() != m_track.handle())
            resume();
        showPlaying();
        return 0;
    }
    if (message == WM_TIMER && wparam == play_timer)
        return play(m_wanted_row, false), 0;
    return dialog_box::handleMessage(message, wparam, lparam);
}

void playback_box::follow()
{
    m_picker.follow(m_display.scene());
    if (!isOpen())
        return;
    std::vector<std::string> converted = m_host.config().get(config_keys::converted_files);
    for (const std::string& older : m_host.config().get(config_keys::older_converted_files))
        if (std::find(converted.begin(), converted.end(), older) == converted.end())
            converted.push_back(older);
    const open_files& document = m_host.document();
    if (m_picker.show({m_display.view() != nullptr, document.shown() != open_files::kind::nothing, m_display.scene(),
                       document.game(), std::move(converted)}))
        search();
    else
        m_list.refresh();
    showSkeletons();
    showTexts();
    showPlaying();
}

// A field that is left shows what came of what was typed.
void playback_box::onControlFocused(HWND focused)
{
    dialog_box::onControlFocused(focused);
    m_shown.reset();
    if (focused != m_first.handle() && focused != m_last.handle() && focused != m_speed.handle())
        showRange();
}

void playback_box::search()
{
    KillTimer(handle(), play_timer);
    const std::shared_ptr<animation_finder> finder = m_picker.beginSearch();
    m_found = finder;
    m_list.refresh();
    m_search.start([this, finder](const work_port& work) {
        return background_task::answer([this, listing = finder->run(work)] {
            takeFound();
            endSearch(listing);
        });
    });
    showChosen();
    showTexts();
}

void playback_box::takeFound()
{
    if (!isOpen() || m_found == nullptr)
        return;
    if (m_picker.take(*m_found))
    {
        m_list.refresh();
        if (m_list.selected() < 0)
            showChosen();
    }
    showTexts();
}

void playback_box::endSearch(const animation_listing& listing)
{
    m_picker.end(listing);
    if (!isOpen())
        return;
    showTexts();
    if (listing.said)
        m_host.prompt().show(listing.said->title, listing.said->text, prompt_icon::error);
}

void playback_box::filter()
{
    KillTimer(handle(), play_timer);
    m_picker.rows().setFilter(m_filter.text());
    m_list.refresh();
    showChosen();
    showTexts();
}

bool playback_box::walk(unsigned virtual_key)
{
    const int last = static_cast<int>(m_picker.rows().rowCount()) - 1;
    const int page = std::max(1, static_cast<int>(SendMessageW(m_list.handle(), LVM_GETCOUNTPERPAGE, 0, 0)));
    const int row = m_list.selected();
    // The bind pose stands first, and is hardly what was looked for.
    const int first_found = m_picker.rows().filter().empty() ? 0 : 1;
    switch (virtual_key)
    {
    case VK_RETURN:
        play(row >= 0 ? row : first_found, true);
        return true;
    case VK_DOWN:
        m_wanted_row = row >= 0 ? row + 1 : first_found;
        break;
    case VK_UP:
        m_wanted_row = row - 1;
        break;
    case VK_NEXT:
        m_wanted_row = row + page;
        break;
    case VK_PRIOR:
        m_wanted_row = row - page;
        break;
    default:
        return false;
    }
    m_wanted_row = std::clamp(m_wanted_row, 0, last);
    m_list.select(m_wanted_row);
    SetTimer(handle(), play_timer, walk_pause, nullptr);
    return true;
}

void playback_box::chooseSkeleton(int position)
{
    if (m_picker.chooseSkeleton(position))
        search();
    if (const pack_file_node* const wanted = m_picker.wantedSkeleton())
        m_reading.start([this, wanted, id = m_picker.shownId(), game = m_host.document().game()](const work_port&) {
            scene_rig rig;
            failure why;
            const bool is_read = readSkeleton(*wanted, id, rig, why);
            return background_task::answer([this, wanted, is_read, rig, why, game] {
                if (is_read && m_display.scene())
                {
                    std::vector<std::string> lost;
                    scene_pointer changed = exchangeSkeleton(*m_display.scene(), rig, lost);
                    m_picker.exchanged(*wanted, rig, lost);
                    return m_display.exchange(std::move(changed));
                }
                m_host.logLine("playback_box::chooseSkeleton(). " + describe(why));
                m_picker.keepSkeleton(why);
                follow();
            });
        });
    showSkeletons();
    showTexts();
}

void playback_box::showSkeletons()
{
    std::string all;
    for (const skeleton_choice& each : m_picker.skeletons())
        all += each.label + "\n";
    if (all != m_shown_skeletons) // else a list that is open would close
    {
        m_skeleton.clear();
        for (const skeleton_choice& each : m_picker.skeletons())
            m_skeleton.add(each.label);
        m_shown_skeletons = all;
    }
    const int shown = m_picker.shownSkeleton();
    m_skeleton.select(shown);
    m_skeleton.setEnabled(m_picker.skeletons().size() > 1);
    m_skeleton.setTip(shown < 0 ? std::string() : m_picker.skeletons()[static_cast<std::size_t>(shown)].tip);
}

void playback_box::showTexts()
{
    const auto show = [](control& shown, const std::string& text) {
        if (shown.text() != text)
            shown.setText(text);
    };
    show(m_status, m_picker.status());
    show(m_message, m_picker.message());
    m_stop.setEnabled(m_picker.isSearching());
    enablePlayer(m_picker.length().has_value()); // a skeleton may have gone with its archive
    m_folders.setVisible(m_picker.needsFolders());
}

void playback_box::showChosen()
{
    const std::optional<std::size_t> row = m_picker.chosenRow();
    const bool is_hidden = !row || (*row == 0 && !m_picker.rows().filter().empty()); // what is found comes first then
    m_list.select(is_hidden ? -1 : static_cast<int>(*row));
}

void playback_box::play(int row, bool is_asked_for)
{
    KillTimer(handle(), play_timer);
    if (row < 0 || static_cast<std::size_t>(row) >= m_picker.rows().rowCount())
        return;
    m_list.select(row);
    play(m_picker.rows().choice(static_cast<std::size_t>(row)), is_asked_for);
}

void playback_box::playFile(const std::string& path)
{
    KillTimer(handle(), play_timer);
    const game_path given(path);
    animation_choice choice{nullptr, path};
    if (const auto& archives = m_host.document().game()->archives(); given.isInternal() && archives != nullptr)
        choice = {archives->findFile(given.internalPath()), {}};
    if (choice.entry == nullptr && !given.archive().empty()) // one archive's own copy
        choice = {m_host.document().game()->find(given.internalPath()).entry(), {}};
    if (given.isInternal() && choice.entry == nullptr)
        return; // gone from the archives since it was chosen
    if (const std::optional<std::size_t> row = m_picker.rows().rowOf(choice.place()))
        m_list.select(static_cast<int>(*row));
    play(choice, true);
}

void playback_box::play(const animation_choice& choice, bool is_asked_for)
{
    const std::string id = m_picker.shownId();
    if (choice.isBindPose())
    {
        m_reading.stop();
        return take({choice, id, nullptr, {}, {}}, is_asked_for);
    }
    m_reading.start([this, choice, id, is_asked_for, game = m_host.document().game()](const work_port&) {
        auto read = std::make_shared<read_animation>(readAnimation(choice, id));
        return background_task::answer([this, read, is_asked_for] { take(std::move(*read), is_asked_for); });
    });
}

void playback_box::take(read_animation read, bool is_asked_for)
{
    model_view* const view = m_display.view();
    const std::optional<notice> said = read.said;
    if (m_picker.choose(std::move(read)) && view != nullptr)
    {
        m_is_held = false;
        view->playback().setRange({});
        view->playback().setState(play_state::playing);
        m_picker.setProblems(view->setAnimations(m_picker.animations()));
        view->playbackChanged();
    }
    else if (said && is_asked_for)
        m_host.prompt().show(said->title, said->text, prompt_icon::error);
    if (!isOpen())
        return;
    restartControls();
    showTexts();
    showPlaying();
}

void playback_box::restartControls()
{
    const std::optional<playback_length> length = m_picker.length();
    const std::uint32_t last = length ? lastFrame(*length) : 0;
    m_shown.reset();
    m_track.setRange(0, static_cast<int>(last));
    m_progress.setRange(static_cast<int>(std::max(last, 1u)));
    m_frame_count.setText(length ? "of " + grouped(last) : std::string());
    m_time_count.setText(length ? "of " + timeText({last, 0}, *length) + " s" : std::string());
    enablePlayer(length.has_value());
    showRange();
}

void playback_box::enablePlayer(bool is_loaded)
{
    for (control* const each :
         {static_cast<control*>(&m_track), static_cast<control*>(&m_play), static_cast<control*>(&m_back),
          static_cast<control*>(&m_next), static_cast<control*>(&m_frame), static_cast<control*>(&m_time),
          static_cast<control*>(&m_first), static_cast<control*>(&m_last), static_cast<control*>(&m_all)})
        if (each->isEnabled() != is_loaded)
            each->setEnabled(is_loaded);
}

void playback_box::showRange()
{
    const std::optional<playback_length> length = m_picker.length();
    const model_view* const view = m_display.view();
    const frame_range range = view != nullptr ? m_display.view()->playback().range() : frame_range{};
    m_first.setText(length ? std::to_string(range.first) : std::string());
    m_last.setText(length ? std::to_string(range.isWhole() ? lastFrame(*length) : range.last) : std::string());
    m_speed.setText(floatText(view != nullptr ? m_display.view()->playback().speed() : 1));
}

// About ten times a second: only what has changed is written, and never into a field that is being typed into.
void playback_box::showPlaying()
{
    model_view* const view = m_display.view();
    if (!isOpen() || view == nullptr)
        return;
    const play_state state = m_is_held ? play_state::playing : view->playback().state();
    if (std::exchange(m_shown_state, state) != state)
        m_play.setText(playButtonLabel(state));
    const std::optional<playback_length> length = m_picker.length();
    if (length.has_value() == isDisabled(m_play.handle()))
        restartControls();
    std::optional<playback_position> now;
    if (length)
        now = view->playback().shown();
    if (now && now->frame > lastFrame(*length))
        now = playback_position{lastFrame(*length), 0};
    if (std::exchange(m_shown, now) == now && (now || m_frame.text().empty()))
        return;
    const int position = now ? static_cast<int>(now->frame) : 0;
    if (GetCapture() != m_track.handle())
        m_track.setPosition(position);
    m_progress.setPosition(position);
    const HWND typed = GetFocus();
    const auto show = [typed](edit_box& field, const std::string& text) {
        if (field.handle() != typed && field.text() != text)
            field.setText(text);
    };
    show(m_frame, now ? frameText(*now) : std::string());
    show(m_time, now ? timeText(*now, *length) : std::string());
}

void playback_box::changed()
{
    if (model_view* const view = m_display.view())
        view->playbackChanged();
    showPlaying();
}

void playback_box::seek(const std::optional<playback_position>& position)
{
    model_view* const view = m_display.view();
    if (view == nullptr || !position)
        return;
    view->playback().setState(play_state::paused); // to look at it
    view->playback().seek(*position);
    changed();
}

void playback_box::takeRange()
{
    const std::optional<playback_length> length = m_picker.length();
    if (model_view* const view = m_display.view(); view != nullptr && length)
        view->playback().setRange(typedRange(m_first.text(), m_last.text(), *length));
    changed();
}

void playback_box::takeSpeed()
{
    const std::optional<float> speed = typedSpeed(m_speed.text());
    if (model_view* const view = m_display.view(); view != nullptr && speed)
        view->playback().setSpeed(*speed);
    changed();
}

void playback_box::resume()
{
    if (!std::exchange(m_is_held, false))
        return;
    if (model_view* const view = m_display.view())
        view->playback().setState(play_state::playing);
    changed();
}

} // namespace korvane
