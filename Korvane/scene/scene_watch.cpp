#include "Korvane/scene/scene_watch.h"

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <set>
#include <utility>

namespace korvane
{

namespace
{

bool showsSameModels(const loaded_scene& one, const loaded_scene& other)
{
    return one.path == other.path &&
           std::equal(one.parts.begin(), one.parts.end(), other.parts.begin(), other.parts.end(),
                      [](const scene_part& a, const scene_part& b) { return a.model == b.model; });
}

} // namespace

std::string scene_changes::summary() const
{
    if (!models.empty())
        return std::string(fileName(models.back())) + " was changed by another program: open it again to see that";
    if (!unreadable.empty())
        return std::string(fileName(unreadable.back())) + " cannot be read, the former picture stays (see log.txt)";
    std::set<std::string> files; // which models may name by several paths
    for (const std::shared_ptr<const scene_texture>& texture : textures)
        files.insert(texture->place().disk_path);
    if (files.size() == 1)
        return std::string(fileName(textures[0]->path())) + " was read again";
    return files.empty() ? "" : std::to_string(files.size()) + " textures were read again";
}

void scene_watch::follow(scene_pointer scene, game_data game)
{
    const bool is_derived = m_scene && scene && showsSameModels(*m_scene, *scene);
    const std::vector<watched_file> known = std::exchange(m_files, {});
    m_scene = std::move(scene);
    m_game = std::move(game);
    m_next_stamp = m_next_search = 0;
    if (!m_scene)
        return;
    std::set<std::pair<bool, std::string>> added;
    const auto addOnce = [&](bool is_texture, const std::string& path,
                             const std::shared_ptr<const scene_texture>& texture) {
        if (!path.empty() && added.emplace(is_texture, path).second)
            add({path, is_texture, texture}, known, is_derived);
    };
    addOnce(false, m_scene->path, nullptr);
    for (const scene_part& part : m_scene->parts)
        addOnce(false, part.model->path, nullptr);
    for (const scene_rig& rig : m_scene->rigs)
        if (rig.place.stamp.is_there)
        {
            watched_file file;
            file.path = rig.place.disk_path;
            file.is_skeleton = true;
            file.shown = rig.place;
            add(std::move(file), known, is_derived);
        }
    for (const scene_part& part : m_scene->parts)
        for (std::size_t group = 0; group < part.groups().size(); ++group)
            for (std::size_t slot = 0; slot < texture_slot_count; ++slot)
                addOnce(true, part.groups()[group].texture_paths[slot], part.textures[group][slot]);
}

void scene_watch::add(watched_file file, const std::vector<watched_file>& known, bool is_derived)
{
    const auto former = std::find_if(known.begin(), known.end(), [&](const watched_file& one) {
        return one.is_texture == file.is_texture && one.path == file.path && one.texture == file.texture;
    });
    const std::vector<std::string>& missing = m_scene->missing_textures;
    if (is_derived && former != known.end())
        file = *former;
    else if (file.texture)
        file.shown = file.texture->place();
    else if (!file.is_texture && !file.is_skeleton)
        file.shown = file_place::of(find(file));
    else if (file.is_texture) // damaged, or not asked for because another one is missing
        file.is_known = std::find(missing.begin(), missing.end(), file.path) != missing.end();
    file.seen = file.shown;
    m_files.push_back(std::move(file));
}

game_file scene_watch::find(const watched_file& file) const
{
    const game_path path = file.path;
    if (file.is_skeleton)
        return game_file(file.path);
    if (file.is_texture)
        return m_game.findAround(file.path, m_scene->path);
    if (path.isInternal())
        return m_game.find(path.internalPath());
    return file.path == m_scene->path ? game_file(file.path) : m_game.find(file.path);
}

scene_changes scene_watch::look(std::chrono::milliseconds patience)
{
    using clock = std::chrono::steady_clock;
    scene_changes changes;
    ++m_look;
    const auto goOn = [&](std::size_t& next, const auto& visit) {
        const auto end = clock::now() + patience;
        for (std::size_t visited = 0; visited < m_files.size() && (visited == 0 || clock::now() < end); ++visited)
        {
            visit(m_files[next]);
            next = (next + 1) % m_files.size();
        }
    };
    const auto lookOnce = [&](watched_file& file) {
        if (std::exchange(file.last_look, m_look) != m_look)
            lookAt(file, changes);
    };
    goOn(m_next_stamp, [&](watched_file& file) {
        if (mayHaveChanged(file))
            lookOnce(file);
    });
    goOn(m_next_search, lookOnce); // takes its time: a folder after the other
    return changes;
}

bool scene_watch::mayHaveChanged(const watched_file& file) const
{
    return file.seen != file.shown || !file.seen.isUnchanged();
}

void scene_watch::lookAt(watched_file& file, scene_changes& changes) const
{
    const file_place now = file_place::of(find(file));
    const file_place before = std::exchange(file.seen, now);
    if (!std::exchange(file.is_known, true))
        file.shown = now;
    if (now.isNowhere() || now == file.shown || now != before)
        return; // gone, unchanged, or still being written
    if (file.is_texture)
        return readAgain(file, now, changes);
    file.shown = now;
    changes.models.push_back(file.path);
    changes.lines.push_back(find(file).path() + ": was changed by another program");
}

void scene_watch::readAgain(watched_file& file, const file_place& now, scene_changes& changes) const
{
    const bool is_told = now == file.refused;
    if (is_told && file.is_damaged)
        return;
    const game_file found = find(file);
    memory_file bytes;
    dds_image image; // only looked at: whoever draws reads the bytes once more
    failure why;
    const bool is_read = found.read(bytes, why);
    if (!is_read || !readDds(bytes.bytes(), image, why))
    {
        file.refused = now;
        file.is_damaged = is_read;
        why.path = found.path();
        if (!is_told)
        {
            changes.unreadable.push_back(file.path);
            changes.lines.push_back(describe(why) + "; the former picture stays");
        }
        return;
    }
    file.shown = now;
    file.refused = {};
    file.texture = std::make_shared<const scene_texture>(file.path, m_scene->read_texture, std::move(bytes), now);
    changes.textures.push_back(file.texture);
    changes.lines.push_back(file.path + ": was read again from " + found.path());
}

} // namespace korvane
