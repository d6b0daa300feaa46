#include "Korvane/jobs/texture_extraction.h"

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/textures/dds_decoder.h"
#include "Korvane/textures/normal_map.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

namespace korvane
{

namespace
{

// One texture on its way; worked on by one thread.
struct extraction_job
{
    game_file source;
    extracted_texture texture;
    std::optional<picture_kind> form;
    bool makes_blue = false;
    bool turns_green = false;
    bool overwrites = false;
    bool is_done = false;
    failure why;
};

bool encode(const extraction_job& job, std::span<const std::byte> bytes, picture_bytes& file, failure& why)
{
    dds_image image;
    picture target;
    if (!readDds(bytes, image, why) || !decodeDds(image, target, why))
    {
        if (why.path.empty())
            why.path = job.source.entry() ? job.texture.internal_path : job.texture.source;
        return false;
    }
    if (job.makes_blue)
        toBlue(target.pixels());
    if (job.makes_blue && job.turns_green)
        turnGreen(target.pixels());
    if (encodePicture(target, *job.form, file, why))
        return true;
    if (why.path.empty())
        why.path = job.texture.path;
    return false;
}

bool extract(extraction_job& job, failure& why)
{
    extracted_texture& to = job.texture;
    if (!job.form)
        return writeOutput(
            to.path, [&job] { return job.source.pieces(); }, job.overwrites, to.outcome, why);
    memory_file bytes;
    picture_bytes file;
    return job.source.read(bytes, why) && encode(job, bytes.bytes(), file, why) &&
           writeOutput(to.path, file.bytes(), job.overwrites, to.outcome, why);
}

void work(extraction_job& job)
{
    try
    {
        job.is_done = extract(job, job.why);
    }
    catch (const std::bad_alloc&)
    {
        fail(job.why, failure_kind::refused, "not enough memory for this texture", job.texture.internal_path);
    }
}

class extraction_run
{
public:
    extraction_run(const game_data& game, const texture_extraction_options& options, const work_port& port)
        : m_game(game)
        , m_options(options)
        , m_folder(options.folder, options.is_flat ? extraction_layout::flat : extraction_layout::by_path)
        , m_port(port)
    {
    }

    texture_extraction_result run(const std::vector<wanted_texture>& wanted);

private:
    game_file find(const wanted_texture& wanted) const;
    void plan(const wanted_texture& wanted);
    void tellProgress() const;
    void workOff(bool tells_progress);
    void workOffAll();

    const game_data& m_game;
    const texture_extraction_options& m_options;
    extraction_folder m_folder;
    const work_port& m_port;
    std::vector<extraction_job> m_jobs;
    std::atomic<std::size_t> m_next{0};
    std::atomic<std::size_t> m_done{0};
    texture_extraction_result m_result;
};

// Around the first of its models that has it.
game_file extraction_run::find(const wanted_texture& wanted) const
{
    game_file found = m_game.find(wanted.path);
    for (std::size_t i = 0; i < wanted.models.size() && !found; ++i)
        found = m_game.findAround(wanted.path, wanted.models[i]);
    return found;
}

// Names are given out before the work begins: they do not depend on which thread is faster.
void extraction_run::plan(const wanted_texture& wanted)
{
    extraction_job job;
    job.source = find(wanted);
    if (!job.source)
        return m_result.missing.push_back(wanted.path);
    if (const pack_file_node* const entry = job.source.entry())
    {
        if (entry->size() == 0)
            return m_result.empty.push_back(wanted.path);
        job.texture.internal_path = entry->internalPath();
        job.texture.archive = entry->packPath();
    }
    else
    {
        job.texture.internal_path = wanted.path;
        job.texture.source = job.source.diskPath();
    }
    job.texture.is_normal_map = wanted.is_normal_map;
    job.overwrites = m_options.overwrites;
    job.makes_blue = m_options.makes_normals_blue && wanted.is_normal_map;
    job.turns_green = m_options.turns_green;
    job.form = job.makes_blue && !m_options.form ? picture_kind::targa : m_options.form;
    std::string name = wanted.path;
    if (job.form)
    {
        if (endsWithIgnoringCase(name, ".dds"))
            name.resize(name.size() - 4);
        name += extensionOf(*job.form);
    }
    failure why;
    if (m_folder.place(name, job.texture.path, why) && isFreeToWrite(m_options.spared, job.texture.path, why))
        return m_jobs.push_back(std::move(job));
    if (why.path == name) // not that of the picture to be
        why.path = job.texture.internal_path;
    m_result.failures.push_back(std::move(why));
}

void extraction_run::tellProgress() const
{
    m_port.report(m_done, m_jobs.size(), "texture " + std::to_string(m_done) + " of " + std::to_string(m_jobs.size()));
}

void extraction_run::workOff(bool tells_progress)
{
    while (!m_port.isStopped())
    {
        const std::size_t index = m_next++;
        if (index >= m_jobs.size())
            return;
        work(m_jobs[index]);
        ++m_done;
        if (tells_progress)
            tellProgress();
    }
}

void extraction_run::workOffAll()
{
    constexpr std::size_t most_pictures = 4; // at a time, each held whole
    runOnThreads(threadsFor(m_jobs.size(), most_pictures), [this](std::size_t thread) { workOff(thread == 0); });
}

texture_extraction_result extraction_run::run(const std::vector<wanted_texture>& wanted)
{
    for (const wanted_texture& texture : wanted)
        plan(texture);
    workOffAll();
    for (extraction_job& job : m_jobs)
        if (job.is_done && job.texture.outcome == output_outcome::kept)
            m_result.kept.push_back(std::move(job.texture));
        else if (job.is_done)
            m_result.files.push_back(std::move(job.texture));
        else if (job.why)
            m_result.failures.push_back(std::move(job.why));
        else
            m_result.is_stopped = true;
    tellProgress();
    return std::move(m_result);
}

} // namespace

texture_extraction_result extractTextures(const game_data& game, const std::vector<wanted_texture>& wanted,
                                          const texture_extraction_options& options, const work_port& port)
{
    return extraction_run(game, options, port).run(wanted);
}

std::string extractedText(std::size_t count, std::optional<picture_kind> form)
{
    const char* const kind = !form ? "DDS" : *form == picture_kind::png ? "PNG" : "Targa";
    return std::to_string(count) + ' ' + kind + " files extracted.";
}

} // namespace korvane
