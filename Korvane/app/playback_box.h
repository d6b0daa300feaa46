#pragma once

// The box beside the 3D view in which an animation is picked and played: found skeletons, the animations that are made
// for them, and how they run. It stays open beside everything else; when it is closed the animation goes on. What it
// shows and decides is a playback_picker's; the playing itself is the view's. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "EASY_GUI/win32/progress_bar.h"
#include "EASY_GUI/win32/track_bar.h"
#include "Korvane/app/filter_field.h"
#include "Korvane/app/page.h"
#include "Korvane/app/scene_display.h"
#include "Korvane/presenters/playback_picker.h"

#include <memory>
#include <optional>
#include <string>

namespace korvane
{

class playback_box : public dialog_box
{
public:
    // Both outlive it.
    playback_box(page_host& host, scene_display& display);
    ~playback_box() override { destroy(); }

    void open();                            // beside the view, which is shown; to the front when it is open already
    void follow();                          // something else is open, or the view shows something else
    void playFile(const std::string& path); // a converted one, for the skeleton that is shown
    // A key of the view has changed how it plays.
    void showPlaying();
    bool isWorking() const { return m_picker.isSearching() || m_reading.isRunning(); }

protected:
    std::optional<layout> onFill(failure& why) override;
    bool onPlace() override;
    void onShown() override;
    void onDestroyed() override;
    void onControlFocused(HWND focused) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    bool createFound();
    bool createPlayer();
    void nameHandlers();
    layout rows();

    void search();
    void takeFound();
    void endSearch(const animation_listing& listing);
    void filter();
    bool walk(unsigned virtual_key); // in the list, from the filter
    void showSkeletons();
    void chooseSkeleton(int position);
    void showTexts();
    void showChosen();

    void play(const animation_choice& choice, bool is_asked_for);
    void play(int row, bool is_asked_for); // asked for: by Enter, not by walking through the list
    void take(read_animation read, bool is_asked_for);
    void restartControls();
    void showRange();
    void enablePlayer(bool is_loaded);
    void seek(const std::optional<playback_position>& position);
    void takeRange();
    void takeSpeed();
    void resume(); // after the bar was let go
    void changed();

    page_host& m_host;
    scene_display& m_display;
    playback_picker m_picker;

    field_name m_skeleton_name, m_filter_name;
    combo_box m_skeleton;
    filter_field m_filter;
    list_view m_list;
    label m_status;
    button m_folders, m_stop;
    text_block m_message;
    track_bar m_track;
    progress_bar m_progress;
    button m_play, m_back, m_next;
    field_name m_frame_name, m_time_name, m_first_name, m_last_name, m_speed_name;
    label m_frame_count, m_time_count;
    edit_box m_frame, m_time, m_first, m_last;
    button m_all;
    combo_box m_speed;

    std::optional<playback_position> m_shown; // in the fields; nothing: they are empty
    std::optional<play_state> m_shown_state;
    std::string m_shown_skeletons;             // a line each
    bool m_is_held = false;                    // by the bar: it plays on when the bar is let go
    int m_wanted_row = -1;                     // to be played when the person does not walk on
    std::shared_ptr<animation_finder> m_found; // by the newest search
    background_task m_search;
    background_task m_reading; // the last members: their work ends first
};

} // namespace korvane
