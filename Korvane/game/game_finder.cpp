#include "Korvane/game/game_finder.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/loose_file.h"
#include "Korvane/game/folder_look.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint64_t most_list_bytes = 1 << 20; // of a text that a store writes; a few thousand are usual
constexpr std::size_t most_entries = 10'000;       // of a folder of games: more are something else

// The text form of Steam's settings: quoted or bare words, braces, comments to the end of a line.
class vdf_words
{
public:
    enum class kind
    {
        word,
        open,
        close,
        end
    };

    explicit vdf_words(std::string_view text) : m_text(text) {}

    kind next(std::string& word)
    {
        skipBlanks();
        if (m_at == m_text.size())
            return kind::end;
        const char first = m_text[m_at];
        if (first == '{' || first == '}')
        {
            ++m_at;
            return first == '{' ? kind::open : kind::close;
        }
        word.clear();
        first == '"' ? readQuoted(word) : readBare(word);
        return kind::word;
    }

private:
    static bool isBlank(char character) { return static_cast<unsigned char>(character) <= ' '; }

    void skipBlanks()
    {
        while (m_at < m_text.size())
            if (m_text.substr(m_at).starts_with("//"))
                m_at = std::min(m_text.find('\n', m_at), m_text.size());
            else if (isBlank(m_text[m_at]))
                ++m_at;
            else
                return;
    }
    void readQuoted(std::string& word)
    {
        for (++m_at; m_at < m_text.size() && m_text[m_at] != '"'; ++m_at)
        {
            // Only what a path needs: other programs write single backslashes, which stay.
            const bool is_escape = m_text[m_at] == '\\' && m_at + 1 < m_text.size() &&
                                   (m_text[m_at + 1] == '\\' || m_text[m_at + 1] == '"');
            m_at += is_escape;
            word += m_text[m_at];
        }
        m_at = std::min(m_at + 1, m_text.size());
    }
    void readBare(std::string& word)
    {
        for (; m_at < m_text.size() && !isBlank(m_text[m_at]) &&
               std::string_view("{}\"").find(m_text[m_at]) == std::string_view::npos;
             ++m_at)
            word += m_text[m_at];
    }

    std::string_view m_text;
    std::size_t m_at = 0;
};

bool isNumber(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

class game_search
{
public:
    explicit game_search(const work_port& work) : m_work(work) {}

    void searchSteam(const std::string& steam)
    {
        std::vector<std::string> libraries = {steam};
        for (const char* const place : {"steamapps/libraryfolders.vdf", "config/libraryfolders.vdf"})
            if (const std::optional<std::string> text = listText(toUtf8(toPath(steam) / place)))
                for (std::string& library : steamLibraries(*text))
                    libraries.push_back(std::move(library));
        for (const std::string& library : libraries)
            searchGames(toUtf8(toPath(library) / "steamapps/common"));
    }

    void searchManifests(const std::string& folder)
    {
        for (const std::filesystem::path& path : entriesOf(folder))
        {
            if (m_work.isStopped())
                return;
            if (endsWithIgnoringCase(toUtf8(path.filename()), ".item"))
                readManifest(toUtf8(path));
        }
    }

    void searchGames(const std::string& folder)
    {
        for (const std::filesystem::path& path : entriesOf(folder))
            lookAtGame(toUtf8(path), {});
    }

    // Without a name that of its folder.
    void lookAtGame(const std::string& folder, const std::string& name)
    {
        if (folder.empty() || m_work.isStopped())
            return;
        m_work.report(m_looked++, 0, displayText(folder));
        const folder_look look = lookAtFolder(toUtf8(toPath(folder) / "data"), m_work.stop);
        if (look.archives == 0 || isKnown(look.folder))
            return;
        const std::filesystem::path root = toPath(look.folder).parent_path().parent_path();
        m_found.push_back({name.empty() ? toUtf8(root.filename()) : name, look.folder, look.archives});
    }

    std::vector<found_game> take()
    {
        std::sort(m_found.begin(), m_found.end(), [](const found_game& left, const found_game& right) {
            return std::pair(toLower(left.name), left.data_folder) < std::pair(toLower(right.name), right.data_folder);
        });
        return std::move(m_found);
    }

private:
    std::vector<std::filesystem::path> entriesOf(const std::string& folder) const
    {
        std::vector<std::filesystem::path> entries;
        std::error_code error;
        for (auto entry = std::filesystem::directory_iterator(toPath(existingPathAnyCase(folder)), error);
             !error && entry != std::filesystem::directory_iterator() && entries.size() < most_entries &&
             !m_work.isStopped();
             entry.increment(error))
            entries.push_back(entry->path());
        return entries;
    }

    static std::optional<std::string> listText(const std::string& path)
    {
        memory_file bytes;
        failure why;
        std::error_code error;
        const std::string there = existingPathAnyCase(path);
        if (!std::filesystem::is_regular_file(toPath(there), error) ||
            !readLooseFile(there, bytes, why, most_list_bytes))
            return std::nullopt;
        return std::string(bytes.text());
    }

    void readManifest(const std::string& path)
    {
        const std::optional<std::string> text = listText(path);
        const nlohmann::json manifest = nlohmann::json::parse(text.value_or(""), nullptr, false);
        if (manifest.is_discarded() || !manifest.is_object())
            return;
        const auto textOf = [&manifest](const char* key) {
            const auto found = manifest.find(key);
            return found != manifest.end() && found->is_string() ? found->get<std::string>() : std::string();
        };
        lookAtGame(textOf("InstallLocation"), textOf("DisplayName"));
    }

    // Links and other spellings lead to the same folder.
    bool isKnown(const std::string& folder) const
    {
        return std::any_of(m_found.begin(), m_found.end(), [&folder](const found_game& game) {
            std::error_code error;
            return game.data_folder == folder ||
                   std::filesystem::equivalent(toPath(game.data_folder), toPath(folder), error);
        });
    }

    const work_port& m_work;
    std::vector<found_game> m_found;
    std::size_t m_looked = 0;
};

} // namespace

std::vector<std::string> steamLibraries(std::string_view vdf)
{
    constexpr std::size_t most_libraries = 1000;
    std::vector<std::string> libraries;
    vdf_words words(vdf);
    std::string word, key;
    bool has_key = false;
    std::size_t depth = 0;
    for (auto kind = words.next(word); kind != vdf_words::kind::end && libraries.size() < most_libraries;
         kind = words.next(word))
    {
        if (kind != vdf_words::kind::word)
        {
            if (kind == vdf_words::kind::close && depth == 0)
                break;
            depth += kind == vdf_words::kind::open ? 1 : std::size_t(-1);
            has_key = false;
        }
        else if (!std::exchange(has_key, !has_key))
            key = word;
        // At first a library was a number with its folder, later a number with a block of its own.
        else if (!word.empty() && ((depth == 1 && isNumber(key)) || (depth == 2 && equalsIgnoringCase(key, "path"))))
            libraries.push_back(word);
    }
    return libraries;
}

std::vector<found_game> findGames(const game_stores& stores, const work_port& work)
{
    game_search search(work);
    for (const std::string& folder : stores.steam)
        search.searchSteam(folder);
    for (const std::string& folder : stores.epic_manifests)
        search.searchManifests(folder);
    for (const std::string& folder : stores.games_folders)
        search.searchGames(folder);
    for (const std::string& folder : stores.games)
        search.lookAtGame(folder, {});
    return search.take();
}

} // namespace korvane
