#include "Korvane/jobs/textures_job.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/variant_mesh_def.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/jobs/operands.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace korvane
{

namespace
{

class textures_run
{
public:
    textures_run(game_source& source, const work_port& work, textures_job_result& result)
        : m_source(source)
        , m_work(work)
        , m_result(result)
    {
    }

    // A model, or a definition with all its models.
    void add(const game_path& path, const game_data& game)
    {
        if (!isDefinitionPath(path.text()))
            return addModel(path);
        variant_mesh_def definition;
        failure why;
        const bool is_open = path.isInternal() ? definition.openFromInternalPath(std::string(path.internalPath()), why,
                                                                                 game.definitionReader())
                                               : definition.open(path.text(), why, game.definitionReader());
        if (!is_open)
            return m_result.failures.push_back(std::move(why));
        for (const std::string& problem : definition.problems())
            tell(m_work.log, displayText(problem));
        for (const std::string& model : definition.models())
            addModel(game_path::ofInternal(model));
    }

    const std::vector<wanted_texture>& wanted() const { return m_wanted; }

private:
    void addModel(const game_path& path)
    {
        rmv2_file model;
        failure why;
        if (openModel(m_source, path, model, m_work.log, why))
            return addWantedTextures(model.data(), m_wanted, path.diskPath());
        if (why.path.empty())
            why.path = path.text();
        m_result.failures.push_back(std::move(why));
    }

    game_source& m_source;
    const work_port& m_work;
    textures_job_result& m_result;
    std::vector<wanted_texture> m_wanted;
};

} // namespace

bool extractModelTextures(game_source& source, const textures_job_options& options, const work_port& work,
                          textures_job_result& result, failure& why)
{
    result = {};
    const bool needs_archives = std::any_of(options.models.begin(), options.models.end(), [](const std::string& model) {
        return game_path(model).isInternal() || isDefinitionPath(model);
    });
    const std::shared_ptr<const game_data> game = needs_archives ? source.archives(why) : source.archivesOrDisk(why);
    if (!game)
        return false;
    textures_run run(source, work, result);
    for (std::size_t i = 0; i < options.models.size() && !work.isStopped(); ++i)
    {
        work.report(i, options.models.size(),
                    "reading model " + std::to_string(i + 1) + " of " + std::to_string(options.models.size()));
        run.add(options.models[i], *game);
    }
    result.textures = extractTextures(*game, run.wanted(), options.extraction, work);
    result.failures.insert(result.failures.end(), result.textures.failures.begin(), result.textures.failures.end());
    return true;
}

} // namespace korvane
