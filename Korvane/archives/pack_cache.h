#pragma once

// The cache of the archives' indexes: one file, whose name ends in ".cache", with everything that indexing found
// (docs/formats/pack_cache.md). It stands for the archives as long as each has the path, the size and the modification
// time that it had; anything else, damage included, means that they are indexed again. Reading and writing it is for
// any thread, one at a time.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/failure.h"
#include "Korvane/archives/path_tree.h"

#include <cstdint>
#include <memory>
#include <stop_token>
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

// Whether caches are kept; the configuration says so ("cache_use": "always", "never"; anything else: where it pays).
enum class cache_use
{
    where_it_pays,
    always,
    never
};
[[nodiscard]] cache_use cacheUseOf(const config_file& config);
[[nodiscard]] std::string_view nameOf(cache_use use); // in the configuration; empty: where it pays

// What a cache stands for.
struct cache_extent
{
    std::size_t archives = 0;
    std::size_t files = 0;
};

class pack_cache
{
public:
    explicit pack_cache(std::string path) : m_path(std::move(path)) {}

    // Whether it is worth its place on the disk. What it saves is the reading of each archive's beginning, a
    // millisecond or less of a disk's time; what it costs is 360 bytes a file, of which a start reads half, twice as
    // much as the archives' own indexes. Measured with dropped pages (bench/pack_start_posix.cpp), saved of a start:
    // 29 of 38 ms for 50,000 files in 120 archives, 205 of 338 for 1,000,000 in 120, and 12 of 93 for 1,000,000 in 20,
    // 25 of 105 in 5, 4 of 13 for 50,000 in 5. So it wants many archives, and not too many files in each.
    [[nodiscard]] static bool pays(const cache_extent& of)
    {
        return of.archives >= 32 && of.files <= of.archives * 25000;
    }

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
    // Replaces the file, unless what stands there is no cache, or some archive could not be read for a reason that may
    // pass. A stop leaves what stood there.
    [[nodiscard]] bool write(const indexed_archives& indexed, failure& why, const std::stop_token& stop = {}) const;
    // What the file says it stands for, without reading all of it.
    [[nodiscard]] bool readExtent(cache_extent& extent, failure& why) const;

    // Deletes the file, if it is a cache; true as well when there is none.
    bool remove(failure& why) const;

private:
    bool mayReplace() const;

    std::string m_path;
};

} // namespace korvane
