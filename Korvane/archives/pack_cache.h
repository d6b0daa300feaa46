#pragma once

// The cache of the archives' indexes: one file, whose name ends in ".cache", with everything that indexing found
// (docs/formats/pack_cache.md). It stands for the archives as long as each has the path, the size and the modification
// time that it had; anything else, damage included, means that they are indexed again. For the user-interface thread.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/failure.h"
#include "Korvane/archives/path_tree.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvane
{

// What is known of one archive that was found, whether it could be read or not.
struct archive_listing
{
    std::string path;
    std::string damage;                // why it is not in the tree; empty: it is
    std::vector<std::string> left_out; // internal paths of its files that are not in the tree
    std::uint64_t size = 0;
    std::int64_t modification_time = 0;
    bool is_certain = true; // false: it could not be read for a reason that may pass, so a cache must not say so
};

// What loading the archives gives, from themselves or from the cache.
struct indexed_archives
{
    std::shared_ptr<path_tree> tree;
    std::vector<archive_listing> archives; // in the order in which they were indexed
};

class pack_cache
{
public:
    explicit pack_cache(std::string path) : m_path(std::move(path)) {}

    static constexpr std::string_view file_name = "packs.cache";
    static constexpr std::string_view identification = "Korvane pack cache 1";

    // The cache that the configuration records (a name that ends in ".cache"), else "packs.cache" beside it. An empty
    // path is the default one.
    [[nodiscard]] static pack_cache of(const config_file& config, const std::string& config_path);
    // Records the file in the configuration; true when that changed it, so that it wants to be saved.
    [[nodiscard]] static bool recordIn(config_file& config);

    const std::string& path() const { return m_path; }

    // What the cache holds for exactly these archives (paths on disk) in this order. False, and why, when it cannot
    // stand for them; indexed then stays as it is.
    [[nodiscard]] bool load(const std::vector<std::string>& archive_paths, indexed_archives& indexed,
                            failure& why) const;
    // Replaces the file, unless what stands there is no cache.
    [[nodiscard]] bool write(const indexed_archives& indexed, failure& why) const;

    // Deletes the file, if it is a cache.
    void discard() const;

private:
    bool mayReplace() const;

    std::string m_path;
};

} // namespace korvane
