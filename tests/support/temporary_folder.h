#pragma once

// A fresh, empty folder for one test, gone with it. Its name holds a blank and letters beyond ASCII.

#include "EASY_GUI/services/file_system.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace korvane::test
{

class temporary_folder
{
public:
    temporary_folder()
    {
        static std::atomic<unsigned> counter{0};
        const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
        m_path = std::filesystem::temp_directory_path() /
                 toPath("korvane \xc3\xbc\xe6\x9d\x8e " + std::to_string(ticks) + "-" + std::to_string(counter++));
        std::filesystem::create_directories(m_path);
    }
    ~temporary_folder()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    temporary_folder(const temporary_folder&) = delete;
    temporary_folder& operator=(const temporary_folder&) = delete;

    std::string file(const std::string& name) const { return toUtf8(m_path / toPath(name)); }
    std::size_t fileCount() const
    {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(m_path), {}));
    }

private:
    std::filesystem::path m_path;
};

inline void writeBytes(const std::string& path, const std::string& bytes)
{
    std::ofstream(toPath(path), std::ios::binary) << bytes;
}

inline std::string readBytes(const std::string& path)
{
    std::ifstream in(toPath(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace korvane::test
