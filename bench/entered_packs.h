#pragma once

// Archives of a bench's own in a temporary folder, entered into a tree. The folder goes with this.

#include "Korvane/archives/pack_file.h"
#include "tests/support/pack_builder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace korvane::bench
{

class entered_packs
{
public:
    explicit entered_packs(const std::string& name) : m_folder(std::filesystem::temp_directory_path() / name)
    {
        std::filesystem::create_directories(m_folder);
    }
    entered_packs(const entered_packs&) = delete;
    entered_packs& operator=(const entered_packs&) = delete;
    ~entered_packs() { std::filesystem::remove_all(m_folder); }

    void add(const std::string& name, const test::test_pack& pack)
    {
        const std::string path = (m_folder / name).string();
        std::ofstream(path, std::ios::binary) << pack.bytes();
        pack_file archive(*m_tree);
        failure why;
        if (!archive.open(path, why))
            std::abort();
        archive.enter();
    }
    const std::filesystem::path& folder() const { return m_folder; }
    const std::shared_ptr<path_tree>& tree() const { return m_tree; }

private:
    std::filesystem::path m_folder;
    std::shared_ptr<path_tree> m_tree = std::make_shared<path_tree>();
};

} // namespace korvane::bench
