#pragma once

// What the dialog "Index Cache" shows: the two files that the program keeps of the archives, a row each, and what is
// said of the chosen one. Without a window; looking and making anew is jobs/cache_job.h, done beside it.

#include "EASY_GUI/services/list_model.h"
#include "Korvane/jobs/cache_job.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace korvane
{

class cache_rows : public list_model
{
public:
    enum row : std::size_t
    {
        packs,
        usage,
        row_count
    };

    explicit cache_rows(cache_places places, bool has_game) : m_places(std::move(places)), m_has_game(has_game) {}

    const cache_places& places() const { return m_places; }
    void setUse(cache_use use) { m_places.use = use; }
    void take(row of, const cache_look& look) { m_looks[of] = look; }

    std::span<const list_column> columns() const override;
    std::size_t rowCount() const override { return row_count; }
    std::string text(std::size_t row, std::size_t column) const override;
    row_mark mark(std::size_t row) const override;

    const std::string& pathOf(row of) const;
    // What it is for, what it stands for, and what can be done: some sentences.
    std::string details(row of) const;
    bool canRebuild(row of) const;
    bool canDelete(row of) const;
    // Whether the archives are kept in a cache with what is set, and why: one sentence.
    std::string useText() const;

    // The choices of the switch, in the order of cache_use.
    static constexpr std::array<std::string_view, 3> use_names = {"Where it pays", "Always", "Never"};

private:
    cache_places m_places;
    bool m_has_game;
    std::array<cache_look, row_count> m_looks;
};

// "3 hours", "1 day"; below a minute "a moment".
[[nodiscard]] std::string ageText(std::chrono::seconds age);

} // namespace korvane
