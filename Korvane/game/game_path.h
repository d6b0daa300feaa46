#pragma once

// A path as a person or a document gives it, as a value of its own: of a file on the disk, or with "pack:" in front an
// internal path that is looked up in the archives, as in pack:animations/skeletons/humanoid01.anim.

#include <string>
#include <string_view>
#include <utility>

namespace korvane
{

class game_path
{
public:
    game_path() = default; // of nothing
    // As it was given, UTF-8. Not explicit: wherever one is wanted, a person's text is one.
    game_path(std::string given) : m_text(std::move(given)) {}
    game_path(const char* given) : m_text(given) {}
    [[nodiscard]] static game_path ofInternal(std::string_view internal_path)
    {
        return std::string(prefix) += internal_path;
    }

    bool empty() const { return m_text.empty(); }
    const std::string& text() const { return m_text; } // as it was given: what messages show
    bool isInternal() const { return m_text.starts_with(prefix); }
    // What stands behind the prefix; the path itself without one.
    std::string_view internalPath() const { return std::string_view(m_text).substr(isInternal() ? prefix.size() : 0); }
    // On the disk; empty for an internal path.
    std::string diskPath() const { return isInternal() ? std::string() : m_text; }

    friend bool operator==(const game_path&, const game_path&) = default;

private:
    static constexpr std::string_view prefix = "pack:";

    std::string m_text;
};

} // namespace korvane
