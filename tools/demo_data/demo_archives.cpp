#include "tools/demo_data/demo_archives.h"

#include "tools/demo_data/definitions.h"

#include <optional>
#include <utility>

namespace korvane::demo
{

namespace
{

constexpr const char* older_readme = R"(This text comes from data_1.pack, the archive that is read first.
Whatever another archive holds, too, is taken from there: this text is never seen.
)";
constexpr const char* main_readme = R"(This text comes from data.pack.
It overrides data_1.pack and is overridden by a_demo_mod.pack.
)";
constexpr const char* mod_readme = R"(This text comes from a_demo_mod.pack, the archive that is read last and wins.

The mod overrides
- the diffuse textures of the guard's tunic, shield and crest: green and white instead of blue and red,
- the definition of the guard's weapons: a spear instead of the sword.
Take a_demo_mod.pack out of the folder, read the archives again, and the guard looks as data.pack has it.
)";

// Which archive a file of the folder goes into.
std::optional<archive_kind> archiveOf(std::string_view path)
{
    if (path.starts_with("animations/"))
        return path.ends_with("_v5.anim") ? archive_kind::older : archive_kind::main;
    if (path.ends_with("_spear.rigid_model_v2"))
        return archive_kind::mod;
    if (path.starts_with("rigidmodels/") || path.find("/tex/demo_") != path.npos)
        return archive_kind::older;
    for (const char* loose_only : {"_v5.", "_v6.", "_v8.", "_faulty."})
        if (path.find(loose_only) != path.npos)
            return std::nullopt;
    return archive_kind::main;
}

// Something of each kind, so that every way of unpacking is used whenever the guard is shown.
pack_compression compressionOf(std::string_view path)
{
    if (path.ends_with("_specular.dds"))
        return pack_compression::none;
    if (path.ends_with("_normal.dds"))
        return pack_compression::lz4;
    if (path.ends_with("_gloss.dds") || path.ends_with("_mask.dds") || path.ends_with("definition") ||
        path.ends_with(".txt"))
        return pack_compression::lzma;
    return pack_compression::zstd;
}

std::span<const std::byte> bytesOf(std::string_view text)
{
    return std::as_bytes(std::span(text));
}

} // namespace

std::span<const recolouring> recolourings()
{
    static const recolouring rows[] = {
        {"guard_shield", archive_kind::older, {1.9, 1.5, 1.0}}, // bare wood
        {"guard_shield", archive_kind::mod, {0.45, 1.9, 0.8}},
        {"guard_tunic", archive_kind::mod, {0.45, 1.45, 0.65}},
        {"guard_plume", archive_kind::mod, {4.2, 4.2, 3.9}},
    };
    return rows;
}

demo_archives::demo_archives()
    : m_older(pack_format::pfh4, false)
    , m_main(pack_format::pfh5, false, {"data_1.pack"})
    , m_mod(pack_format::pfh5, true, {"data_1.pack", "data.pack"})
{
    addTexts();
}

void demo_archives::addTexts()
{
    // Case does not count in internal paths.
    m_older.add("Demo/ReadMe.txt", bytesOf(older_readme));
    m_older.add("VariantMeshes/VariantMeshDefinitions/Demo_Guard.variantmeshdefinition",
                bytesOf(olderGuardDefinition()));
    m_main.add("demo/readme.txt", bytesOf(main_readme), pack_compression::lzma);
    m_mod.add("demo/readme.txt", bytesOf(mod_readme));
    m_mod.add(weapons_definition_path, bytesOf(moddedWeaponsDefinition()), pack_compression::lzma);
}

void demo_archives::add(const std::string& path, std::span<const std::byte> bytes)
{
    if (const auto archive = archiveOf(path))
        addInstead(*archive, path, bytes);
}

void demo_archives::addInstead(archive_kind archive, const std::string& path, std::span<const std::byte> bytes)
{
    switch (archive)
    {
    case archive_kind::older:
        return m_older.add(path, bytes);
    case archive_kind::main:
        return m_main.add(path, bytes, compressionOf(path));
    case archive_kind::mod:
        return m_mod.add(path, bytes, compressionOf(path));
    }
}

std::vector<file> demo_archives::take()
{
    const auto archive = [](const char* name, const char* about, pack_writer& writer) {
        const std::string files = std::to_string(writer.entryCount()) + " files";
        return file{name, std::string(about) + ": " + files, writer.take()};
    };
    std::vector<file> result;
    result.push_back(archive("data_1.pack", "archive PFH4, read first: the props, older copies", m_older));
    result.push_back(archive("data.pack", "archive PFH5, compressed: the guard", m_main));
    result.push_back(
        archive("a_demo_mod.pack", "archive PFH5, read last, overrides: a green guard with a spear", m_mod));
    return result;
}

} // namespace korvane::demo
