#include "Korvane/textures/texture_extraction.h"

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/loose_file.h"
#include "Korvane/archives/pack_entry.h"
#include "Korvane/textures/dds_decoder.h"
#include "Korvane/textures/normal_map.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <unordered_map>
#include <utility>

namespace korvane
{

namespace
{

// Finds stored paths without regard to their separators and to blanks at their ends.
class entry_finder
{
public:
    explicit entry_finder(const path_tree& tree) : m_tree(tree) {}

    const pack_file_node* find(const std::string& path)
    {
        const path_node* const node = m_tree.find(path);
        if (node && node->file())
            return node->file();
        if (!m_has_odd)
            indexOdd();
        const auto found = m_odd.find(path);
        return found == m_odd.end() ? nullptr : found->second;
    }

private:
    // Some archives have a '/' in a path or a blank at its end, which are ordinary characters to the tree.
    void indexOdd()
    {
        m_has_odd = true;
        for (const auto& files : m_tree.entries())
            for (const pack_file_node& file : files)
                if (isOdd(file.internalPath()))
                    m_odd[normalInternalPath(file.internalPath())] = &file; // the last one wins
    }

    static bool isOdd(std::string_view path)
    {
        constexpr std::string_view blanks = " \t\r\n";
        return path.find('/') != std::string_view::npos || path.find_first_of(blanks) == 0 ||
               path.find_last_of(blanks) == path.size() - 1;
    }

    const path_tree& m_tree;
    bool m_has_odd = false;
    std::unordered_map<std::string, const pack_file_node*> m_odd;
};

// One texture on its way; worked on by one thread.
struct extraction_job
{
    const pack_file_node* entry = nullptr; // null: texture.source is read
    extracted_texture texture;
    std::optional<picture_kind> form;
    bool makes_blue = false;
    bool is_done = false;
    failure why;
};

bool writePicture(const extraction_job& job, std::span<const std::byte> bytes, failure& why)
{
    dds_image image;
    picture target;
    if (!readDds(bytes, image, why) || !decodeDds(image, target, why))
    {
        if (why.path.empty())
            why.path = job.entry ? job.texture.internal_path : job.texture.source;
        return false;
    }
    if (job.makes_blue)
        toBlue(target.pixels());
    return writePictureFile(job.texture.path, *job.form, target, why);
}

bool extract(const extraction_job& job, failure& why)
{
    memory_file bytes;
    if (!(job.entry ? readEntry(*job.entry, bytes, why) : bytes.read(job.texture.source, why)))
        return false;
    return job.form ? writePicture(job, bytes.bytes(), why) : writeWholeFile(job.texture.path, bytes.bytes(), why);
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
    extraction_run(const texture_extraction_options& options,
                   const std::function<void(std::size_t, std::size_t)>& progress, std::stop_token stop)
        : m_options(options)
        , m_folder(options.folder, options.is_flat ? extraction_layout::flat : extraction_layout::by_path)
        , m_progress(progress)
        , m_stop(std::move(stop))
    {
    }

    texture_extraction_result run(const path_tree& tree, const std::vector<wanted_texture>& wanted);

private:
    void plan(const wanted_texture& wanted, extraction_job job);
    void planLoose(const wanted_texture& wanted);
    void workOff(bool tells_progress);
    void workOffAll();

    const texture_extraction_options& m_options;
    extraction_folder m_folder;
    const std::function<void(std::size_t, std::size_t)>& m_progress;
    std::stop_token m_stop;
    std::vector<extraction_job> m_jobs;
    std::atomic<std::size_t> m_next{0};
    std::atomic<std::size_t> m_done{0};
    texture_extraction_result m_result;
};

// Names are given out before the work begins: they do not depend on which thread is faster.
void extraction_run::plan(const wanted_texture& wanted, extraction_job job)
{
    job.texture.is_normal_map = wanted.is_normal_map;
    job.makes_blue = m_options.makes_normals_blue && wanted.is_normal_map;
    job.form = job.makes_blue && !m_options.form ? picture_kind::targa : m_options.form;
    std::string name = wanted.path;
    if (job.form)
    {
        if (endsWithIgnoringCase(name, ".dds"))
            name.resize(name.size() - 4);
        name += extensionOf(*job.form);
    }
    failure why;
    if (m_folder.place(name, job.texture.path, why))
        m_jobs.push_back(std::move(job));
    else
    {
        if (why.path == name) // not that of the picture to be
            why.path = job.texture.internal_path;
        m_result.failures.push_back(std::move(why));
    }
}

void extraction_run::planLoose(const wanted_texture& wanted)
{
    for (const std::string& model : wanted.models)
        if (std::string found = findLooseFile(wanted.path, model); !found.empty())
        {
            extraction_job job;
            job.texture.internal_path = wanted.path;
            job.texture.source = std::move(found);
            return plan(wanted, std::move(job));
        }
    m_result.missing.push_back(wanted.path);
}

void extraction_run::workOff(bool tells_progress)
{
    while (!m_stop.stop_requested())
    {
        const std::size_t index = m_next++;
        if (index >= m_jobs.size())
            return;
        work(m_jobs[index]);
        ++m_done;
        if (tells_progress && m_progress)
            m_progress(m_done, m_jobs.size());
    }
}

void extraction_run::workOffAll()
{
    constexpr std::size_t most_pictures = 4; // at a time, each held whole
    runOnThreads(threadsFor(m_jobs.size(), most_pictures), [this](std::size_t thread) { workOff(thread == 0); });
}

texture_extraction_result extraction_run::run(const path_tree& tree, const std::vector<wanted_texture>& wanted)
{
    entry_finder finder(tree);
    for (const wanted_texture& texture : wanted)
    {
        const pack_file_node* const entry = finder.find(texture.path);
        if (!entry)
            planLoose(texture);
        else if (entry->size() == 0)
            m_result.empty.push_back(texture.path);
        else
        {
            extraction_job job;
            job.entry = entry;
            job.texture.internal_path = entry->internalPath();
            job.texture.archive = entry->packPath();
            plan(texture, std::move(job));
        }
    }
    workOffAll();
    for (extraction_job& job : m_jobs)
        if (job.is_done)
            m_result.files.push_back(std::move(job.texture));
        else if (job.why)
            m_result.failures.push_back(std::move(job.why));
        else
            m_result.is_stopped = true;
    if (m_progress)
        m_progress(m_done, m_jobs.size());
    return std::move(m_result);
}

} // namespace

texture_extraction_result extractTextures(const path_tree& tree, const std::vector<wanted_texture>& wanted,
                                          const texture_extraction_options& options,
                                          const std::function<void(std::size_t, std::size_t)>& progress,
                                          std::stop_token stop)
{
    return extraction_run(options, progress, std::move(stop)).run(tree, wanted);
}

std::string extractedText(std::size_t count)
{
    return std::to_string(count) + " DDS files extracted.";
}

} // namespace korvane
