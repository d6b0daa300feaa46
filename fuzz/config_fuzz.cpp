// Reads any bytes as a configuration, writes it and reads it again: nothing that was read may change on the way.

#include "EASY_GUI/services/config_file.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string path =
        (std::filesystem::temp_directory_path() / ("korvane_config_fuzz_" + std::to_string(getpid()))).string();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));

    korvane::config_file first;
    if (!first.load(path) || first.errorText().empty() || !first.save(path))
        std::abort();
    korvane::config_file second;
    if (!second.load(path) || second.errorText() != "DONE" || second.entries() != first.entries())
        std::abort();
    std::filesystem::remove(path);
    return 0;
}
