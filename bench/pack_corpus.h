#pragma once

// Archives in a temporary folder, a million files in a hundred unless somebody wants another number: paths of about 90
// bytes, 50 files to a folder in runs, as packers write them.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace korvane::bench
{

class pack_corpus
{
public:
    explicit pack_corpus(std::uint32_t bytes_per_file = 0, std::size_t archive_count = 100,
                         std::size_t files_per_archive = 10000, bool is_one_folder = false)
        : m_folder(std::filesystem::temp_directory_path() / "korvane_bench_packs")
        , m_is_one_folder(is_one_folder)
    {
        std::filesystem::create_directories(m_folder);
        for (std::size_t i = 0; i < archive_count; ++i)
            writeArchive(i, files_per_archive, bytes_per_file);
    }
    ~pack_corpus() { std::filesystem::remove_all(m_folder); }

    const std::filesystem::path& folder() const { return m_folder; }
    const std::vector<std::string>& archives() const { return m_archives; } // on disk
    const std::vector<std::string>& indexes() const { return m_indexes; }   // their index bytes
    const std::vector<std::string>& paths() const { return m_paths; }       // of all files

private:
    std::string pathOf(std::size_t number) const
    {
        if (m_is_one_folder)
            return "all\\" + std::to_string(number * 7919 % 10000019) + ".dds";
        const std::size_t folder = number / 50;
        char text[160];
        std::snprintf(text, sizeof text,
                      "VariantMeshes\\_variantmodels\\man\\culture_%03zu\\unit_%05zu\\textures\\%s_%07zu_lod.%s",
                      folder % 200, folder, number % 3 ? "armour_diffuse" : "shield_normal", number,
                      number % 2 ? "dds" : "anim");
        return text;
    }
    static std::string u32(std::uint32_t value) { return std::string(reinterpret_cast<const char*>(&value), 4); }

    void writeArchive(std::size_t number, std::size_t files_per_archive, std::uint32_t bytes_per_file)
    {
        std::string index;
        for (std::size_t i = 0; i < files_per_archive; ++i)
        {
            m_paths.push_back(pathOf(number * files_per_archive + i));
            index += u32(bytes_per_file) + '\0' + m_paths.back() + '\0';
        }
        const std::string header = "PFH5" + u32(0) + u32(0) + u32(0) +
                                   u32(static_cast<std::uint32_t>(files_per_archive)) +
                                   u32(static_cast<std::uint32_t>(index.size())) + u32(0);
        m_archives.push_back((m_folder / ("data_" + std::to_string(number) + ".pack")).string());
        std::ofstream(m_archives.back(), std::ios::binary)
            << header << index << std::string(files_per_archive * bytes_per_file, 'x');
        m_indexes.push_back(std::move(index));
    }

    std::filesystem::path m_folder;
    bool m_is_one_folder;
    std::vector<std::string> m_archives;
    std::vector<std::string> m_indexes;
    std::vector<std::string> m_paths;
};

inline double secondsSince(const std::chrono::steady_clock::time_point& begin)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

} // namespace korvane::bench
