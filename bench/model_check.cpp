// Checking the demo data's models, the figures of three LODs among them, out of its archives and from the disk around
// them: at least 200 models a second. The last line is that number.

#include "EASY_GUI/services/file_system.h"
#include "Korvane/archives/pack_reader.h"
#include "Korvane/jobs/check_run.h"
#include "tools/demo_data/demo_data.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace
{

using namespace korvane;
using clock_type = std::chrono::steady_clock;

constexpr std::size_t wanted_models = 1000;

void require(bool is_right)
{
    if (!is_right)
        std::abort();
}

// The demo data, and so many copies of its models that there are as many as wanted.
class check_corpus
{
public:
    check_corpus() : m_folder(std::filesystem::temp_directory_path() / "korvane_bench_check")
    {
        failure why;
        const auto ignore = [](const demo::file&, std::size_t) {};
        require(demo::writeFolder(toUtf8(m_folder), {}, ignore, why));
        std::vector<std::filesystem::path> models;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_folder))
            if (entry.path().extension() == ".rigid_model_v2")
                models.push_back(entry.path());
        std::sort(models.begin(), models.end());
        for (std::size_t i = 0; m_copies.size() < wanted_models; ++i)
        {
            const std::filesystem::path& source = models[i % models.size()];
            std::filesystem::path copy = source;
            copy.replace_filename("copy_" + std::to_string(i) + "_" + source.filename().string());
            std::filesystem::copy_file(source, copy);
            m_copies.push_back(toUtf8(copy));
        }
        pack_reader reader;
        require(reader.loadAllArchives({toUtf8(m_folder) + "/"}));
        m_game = game_data(reader.tree());
    }
    ~check_corpus()
    {
        std::error_code error;
        std::filesystem::remove_all(m_folder, error);
    }

    const std::vector<std::string>& models() const { return m_copies; }
    const game_data& game() const { return m_game; }

private:
    std::filesystem::path m_folder;
    std::vector<std::string> m_copies;
    game_data m_game;
};

} // namespace

int main()
{
    const check_corpus corpus;
    double best = 1e9;
    std::size_t findings = 0;
    for (int round = 0; round < 3; ++round)
    {
        const auto begin = clock_type::now();
        check_run run(corpus.game());
        for (const std::string& model : corpus.models())
            run.add(model);
        std::vector<finding> found;
        while (run.step(found))
            ;
        best = std::min(best, std::chrono::duration<double>(clock_type::now() - begin).count());
        findings = found.size();
    }
    std::printf("%zu models, %zu findings, %.2f s\n", corpus.models().size(), findings, best);
    std::printf("models a second (at least 200): %.0f\n", static_cast<double>(corpus.models().size()) / best);
}
