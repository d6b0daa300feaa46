#pragma once

// A path as a person or a document gives it, as a value of its own: of a file on the disk, or with "pack:" in front an
// internal path that is looked up in the archives, as in pack:animations/skeletons/humanoid01.anim. An archive's name
// and '|' before the path mean the copy in that archive, whether it counts or not: pack:data.pack|animations/...

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

    [[nodiscard]] static game_path ofCopy(std::string_view archive, std::string_view internal_path)
    {
        return ofInternal((std::string(archive) += copy_mark) += internal_path);
    }

    bool empty() const { return m_text.empty(); }
    const std::string& text() const { return m_text; } // as it was given: what messages show
    bool isInternal() const { return m_text.starts_with(prefix); }
    // What stands behind the prefix; the path itself without one.
    std::string_view internalPath() const { return std::string_view(m_text).substr(isInternal() ? prefix.size() : 0); }
    // The same without the name of an archive.
    std::string_view pathInArchive() const
    {
        const std::string_view path = internalPath();
        return path.substr(path.find(copy_mark) + 1); // none: the whole
    }
    // Whose copy is meant; empty: the one that counts.
    std::string_view archive() const
    {
        const std::string_view path = internalPath();
        const std::size_t mark = path.find(copy_mark);
        return mark == std::string_view::npos ? std::string_view() : path.substr(0, mark);
    }
    // On the disk; empty for an internal path.
    std::string diskPath() const { return isInternal() ? std::string() : m_text; }

    friend bool operator==(const game_path&, const game_path&) = default;

private:
    static constexpr std::string_view prefix = "pack:";

    static constexpr char copy_mark = '|'; // which no file name has

    std::string m_text;
};

} // namespace korvane
