#pragma once

// The archives of the game folders, read by a worker while the window answers, and what comes out of them at the start.
// Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/app/page.h"

#include <memory>
#include <string>
#include <vector>

namespace korvane
{

class game_archives
{
public:
    explicit game_archives(page_host& host) : m_host(host) {}

    // Says what there is to say of the loading, and gives the document its game. Where nothing was loaded, what was
    // there before stays. Distrusting the cache is what a person asks for. False when it was stopped.
    bool load(bool trusts_cache);
    // Of the figures that have no other one, where the game has it.
    void loadDefaultSkeleton();

private:
    void writeCache();
    void sayNotices(const std::vector<notice>& notices);
    void sayLeftOut(const std::vector<std::string>& lines);

    page_host& m_host;
    std::shared_ptr<const anim_data> m_po_default_skeleton; // null: the game has none
    std::unique_ptr<background_task> m_po_writing;          // of the cache; null: never yet. Its work ends first
};

} // namespace korvane
