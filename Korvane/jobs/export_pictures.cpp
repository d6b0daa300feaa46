#include "Korvane/jobs/export_pictures.h"

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/jobs/export_textures.h"
#include "Korvane/jobs/output_paths.h"
#include "Korvane/textures/dds_decoder.h"
#include "Korvane/textures/metal_roughness.h"
#include "Korvane/textures/normal_map.h"
#include "Korvane/textures/png.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <new>
#include <set>
#include <tuple>
#include <utility>

namespace korvane
{

namespace
{

// Pictures that are made of the same textures, once for all materials that have them; worked on by one thread.
struct picture_job
{
    std::string diffuse, specular, gloss; // internal paths; empty: none
    std::string normal;                   // then it is a normal map's, and the others are empty
    bool is_cut_out = false;

    bool is_done = false;
    std::vector<std::byte> first;  // base colour or normals
    std::vector<std::byte> second; // metal and roughness; empty: none
    std::vector<failure> lost;     // of textures
    std::set<std::string> unread;  // internal paths
    int first_image = -1, second_image = -1;

    bool isSame(const picture_job& other) const
    {
        return std::tie(diffuse, specular, gloss, normal, is_cut_out) ==
               std::tie(other.diffuse, other.specular, other.gloss, other.normal, other.is_cut_out);
    }
};

class picture_maker
{
public:
    picture_maker(const game_data& game, const std::string& model, const work_port& work)
        : m_game(game)
        , m_model(model)
        , m_work(work)
    {
    }

    std::size_t add(picture_job wanted)
    {
        const auto known = std::find_if(m_jobs.begin(), m_jobs.end(),
                                        [&wanted](const picture_job& one) { return one.isSame(wanted); });
        if (known != m_jobs.end())
            return static_cast<std::size_t>(known - m_jobs.begin());
        m_jobs.push_back(std::move(wanted));
        return m_jobs.size() - 1;
    }
    void make();
    std::vector<picture_job>& jobs() { return m_jobs; }

private:
    bool read(const std::string& internal_path, picture& target, picture_job& job) const;
    void makeColours(picture_job& job) const;
    void makeNormals(picture_job& job) const;
    static void encode(const picture& source, std::vector<std::byte>& png, picture_job& job);
    void makeOne(picture_job& job) const;

    const game_data& m_game;
    const game_path m_model;
    const work_port& m_work;
    std::vector<picture_job> m_jobs;
    std::atomic<std::size_t> m_next{0}, m_done{0};
};

// False without a path, too.
bool picture_maker::read(const std::string& internal_path, picture& target, picture_job& job) const
{
    if (internal_path.empty())
        return false;
    failure why;
    memory_file bytes;
    dds_image image;
    const game_file found = m_game.findAround(internal_path, m_model);
    if (!found)
        fail(why, failure_kind::not_found, "the texture was found nowhere", internal_path);
    else if (found.read(bytes, why) && readDds(bytes.bytes(), image, why) && decodeDds(image, target, why))
        return true;
    if (why.path.empty())
        why.path = internal_path;
    job.lost.push_back(std::move(why));
    job.unread.insert(internal_path);
    return false;
}

void picture_maker::encode(const picture& source, std::vector<std::byte>& png, picture_job& job)
{
    failure why;
    png_bytes file;
    if (writePng(source, file, why))
        png.assign(file.bytes().begin(), file.bytes().end());
    else
        job.lost.push_back(std::move(why));
}

void picture_maker::makeColours(picture_job& job) const
{
    picture diffuse, specular, gloss;
    if (!read(job.diffuse, diffuse, job))
        return;
    gloss_material material;
    material.diffuse = &diffuse;
    material.specular = read(job.specular, specular, job) ? &specular : nullptr;
    material.gloss = read(job.gloss, gloss, job) ? &gloss : nullptr;
    material.keeps_alpha = job.is_cut_out;
    const metal_material made = metalMaterial(material);
    encode(made.base_colour, job.first, job);
    if (made.metal_roughness.pixelCount() > 0)
        encode(made.metal_roughness, job.second, job);
}

void picture_maker::makeNormals(picture_job& job) const
{
    picture map;
    if (!read(job.normal, map, job))
        return;
    toBlue(map.pixels());
    turnGreen(map.pixels());
    encode(map, job.first, job);
}

void picture_maker::makeOne(picture_job& job) const
{
    try
    {
        if (job.normal.empty())
            makeColours(job);
        else
            makeNormals(job);
        job.is_done = true;
    }
    catch (const std::bad_alloc&)
    {
        job.lost.push_back({failure_kind::refused, "not enough memory for this texture",
                            job.normal.empty() ? job.diffuse : job.normal, 0, ""});
    }
}

void picture_maker::make()
{
    constexpr std::size_t most_materials = 4; // at a time, each with several pictures in memory
    runOnThreads(threadsFor(m_jobs.size(), most_materials), [this](std::size_t thread) {
        for (std::size_t index = m_next++; index < m_jobs.size() && !m_work.isStopped(); index = m_next++)
        {
            makeOne(m_jobs[index]);
            const std::size_t done = ++m_done;
            if (thread == 0)
                m_work.report(done, m_jobs.size(),
                              "picture " + std::to_string(done) + " of " + std::to_string(m_jobs.size()));
        }
    });
}

// Gives the pictures their places in the list and, with a folder, on the disk.
class picture_list
{
public:
    picture_list(const export_job_options& options, const picture_place& place, gltf_pictures& pictures)
        : m_options(options)
        , m_place(place)
        , m_folder(place.folder, extraction_layout::numbered)
        , m_pictures(pictures)
    {
    }

    // made_of: the texture's internal path, ending: of the picture's name.
    bool add(const std::string& made_of, const std::string& ending, std::vector<std::byte>& png, int& number,
             failure& why)
    {
        if (png.empty())
            return true;
        std::string name = made_of;
        if (endsWithIgnoringCase(name, ".dds"))
            name.resize(name.size() - 4);
        gltf_image image;
        image.name = displayText(fileName(name)) + ending;
        if (m_place.folder.empty())
            image.png = std::move(png);
        else if (!write(name + ending + ".png", png, image.path, why))
            return false;
        number = static_cast<int>(m_pictures.images.size());
        m_pictures.images.push_back(std::move(image));
        return true;
    }

    // On the disk; empty: there is no such image, or it is within the file.
    std::string pathOf(int number) const
    {
        const auto found = m_paths.find(static_cast<std::size_t>(number));
        return found == m_paths.end() ? std::string() : found->second;
    }

private:
    bool write(const std::string& name, const std::vector<std::byte>& png, std::string& relative, failure& why)
    {
        std::vector<std::string> inputs = m_options.animations;
        inputs.insert(inputs.end(), {m_options.model, m_options.skeleton});
        inputs.insert(inputs.end(), m_options.spared.begin(), m_options.spared.end());
        std::string path;
        if (!m_folder.place(name, path, why) || !isFreeToWrite(inputs, path, why) || !writeWholeFile(path, png, why))
            return false;
        const std::map<std::string, std::string> placed = {{name, path}};
        relative = texturePathsFrom(toPath(m_place.file_folder), placed)(name);
        m_paths.emplace(m_pictures.images.size(), std::move(path));
        return true;
    }

    const export_job_options& m_options;
    const picture_place& m_place;
    extraction_folder m_folder;
    gltf_pictures& m_pictures;
    std::map<std::size_t, std::string> m_paths; // on the disk, by the image's number
};

} // namespace

bool makeExportPictures(game_source& source, const export_job_options& options, const export_scene& scene,
                        const picture_place& place, const work_port& work, gltf_pictures& pictures,
                        export_job_result& result, failure& why)
{
    pictures.roughness = 1 - default_smoothness;
    const std::shared_ptr<const game_data> game = source.archivesOrDisk(why);
    if (!game)
        return false;
    picture_maker maker(*game, options.model, work);
    std::vector<std::pair<std::size_t, std::size_t>> jobs; // of each material: colours and normals
    for (const export_material& material : scene.materials)
    {
        picture_job colours;
        colours.diffuse = normalInternalPath(material.diffuse_path);
        colours.specular = normalInternalPath(material.specular_path);
        colours.gloss = normalInternalPath(material.gloss_path);
        colours.is_cut_out = material.is_cut_out;
        picture_job normals;
        normals.normal = normalInternalPath(material.normal_path);
        const std::size_t number = maker.add(std::move(colours));
        jobs.emplace_back(number, normals.normal.empty() ? SIZE_MAX : maker.add(std::move(normals)));
    }
    maker.make();
    picture_list list(options, place, pictures);
    for (picture_job& job : maker.jobs())
    {
        for (const failure& lost : job.lost)
            work.nameFailure(lost);
        const bool is_normal_map = !job.normal.empty();
        if (!list.add(is_normal_map ? job.normal : job.diffuse, is_normal_map ? "" : "_base", job.first,
                      job.first_image, why) ||
            !list.add(job.diffuse, "_metal_roughness", job.second, job.second_image, why))
            return false;
        // What became of each texture; those within the file lie nowhere else.
        const std::string first = list.pathOf(job.first_image), second = list.pathOf(job.second_image);
        for (const std::string* path : {&job.diffuse, &job.specular, &job.gloss, &job.normal})
        {
            const bool is_of_second = path == &job.specular || path == &job.gloss;
            if (job.unread.contains(*path))
                result.textures.emplace(*path, "");
            else if (const std::string& copy = is_of_second && !second.empty() ? second : first;
                     !path->empty() && !copy.empty())
                result.textures.emplace(*path, copy);
        }
    }
    for (const auto& [colour_job, normals] : jobs)
    {
        const picture_job& job = maker.jobs()[colour_job];
        pictures.materials.push_back(
            {job.first_image, job.second_image, normals == SIZE_MAX ? -1 : maker.jobs()[normals].first_image});
    }
    return true;
}

} // namespace korvane
