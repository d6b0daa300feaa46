#include "Korvane/jobs/extract_job.h"

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/mod_folder.h"
#include "Korvane/archives/path_pattern.h"
#include "Korvane/textures/dds_decoder.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace korvane
{

namespace
{

std::string archiveOf(const game_file& file)
{
    return file.entry() ? file.entry()->packPath() : std::string();
}

// A texture on its way to become a picture.
struct wanted_picture
{
    bool is_made = false;
    picture_bytes bytes;
    std::size_t surfaces = 0;
    failure why = {};
};

class extraction_run
{
public:
    extraction_run(const std::shared_ptr<const path_tree>& tree, const extract_job_options& options,
                   const work_port& work, extract_job_result& result)
        : m_tree(tree)
        , m_options(options)
        , m_folder(options.folder, options.is_flat ? extraction_layout::flat
                                   : options.form  ? extraction_layout::numbered
                                                   : extraction_layout::by_path)
        , m_work(work)
        , m_result(result)
    {
    }

    void run(std::span<const pack_file_node* const> files);

private:
    // At a time, each held whole.
    static constexpr std::size_t most_pictures = 4;

    bool isPicture(const pack_file_node& entry) const { return m_options.form && entry.extension() == "dds"; }
    game_file fileOf(const pack_file_node& entry) const
    {
        return game_file(std::shared_ptr<const pack_file_node>(m_tree, &entry));
    }
    void makePictures(std::span<const pack_file_node* const> files);
    bool encode(const pack_file_node& entry, wanted_picture& made) const;
    bool write(const pack_file_node& entry, wanted_picture& picture, extracted_file& file, failure& why);
    void take(const pack_file_node& entry, wanted_picture& picture);

    const std::shared_ptr<const path_tree>& m_tree;
    const extract_job_options& m_options;
    extraction_folder m_folder;
    const work_port& m_work;
    extract_job_result& m_result;
    std::array<wanted_picture, most_pictures> m_pictures;
};

bool extraction_run::encode(const pack_file_node& entry, wanted_picture& made) const
{
    memory_file bytes;
    dds_image image;
    picture decoded;
    if (!fileOf(entry).read(bytes, made.why) || !readDds(bytes.bytes(), image, made.why) ||
        !decodeDds(image, decoded, made.why) || !encodePicture(decoded, *m_options.form, made.bytes, made.why))
        return false;
    made.surfaces = image.array_size;
    return true;
}

void extraction_run::makePictures(std::span<const pack_file_node* const> files)
{
    for (wanted_picture& each : m_pictures)
        each = {};
    const auto count = static_cast<std::size_t>(
        std::count_if(files.begin(), files.end(), [this](const pack_file_node* file) { return isPicture(*file); }));
    if (count == 0)
        return;
    parallelFor(files.size(), threadsFor(count, most_pictures), [&](std::size_t i) {
        if (!isPicture(*files[i]) || m_work.isStopped())
            return;
        try
        {
            m_pictures[i].is_made = encode(*files[i], m_pictures[i]);
        }
        catch (const std::bad_alloc&)
        {
            fail(m_pictures[i].why, failure_kind::refused, "not enough memory for this texture");
        }
    });
}

bool extraction_run::write(const pack_file_node& entry, wanted_picture& picture, extracted_file& file, failure& why)
{
    std::string name(entry.internalPath());
    if (!entry.archive().is_folder)
        file.archive = entry.packPath();
    else if (diskPathOf(entry).empty())
        return fail(why, failure_kind::not_found, "the file is gone", file.internal_path);
    if (picture.is_made)
        name.replace(name.size() - 4, 4, extensionOf(*m_options.form)); // of ".dds"
    if (!m_folder.place(name, file.path, why))
        return false;
    if (fileName(file.path).size() != displayText(fileName(name)).size())
        file.named_like = fileName(name);
    if (picture.is_made)
        return writeOutput(file.path, picture.bytes.bytes(), m_options.overwrites, file.outcome, why);
    return writeOutput(
        file.path, [found = fileOf(entry)] { return found.pieces(); }, m_options.overwrites, file.outcome, why);
}

void extraction_run::take(const pack_file_node& entry, wanted_picture& picture)
{
    extracted_file file{std::string(entry.internalPath())};
    if (!write(entry, picture, file, file.why))
    {
        m_work.nameFailure(file.why);
        ++m_result.failed;
    }
    else
    {
        ++(file.outcome == output_outcome::kept ? m_result.kept : m_result.written);
        file.surfaces = picture.surfaces;
        file.no_picture = std::move(picture.why);
    }
    m_result.files.push_back(std::move(file));
}

void extraction_run::run(std::span<const pack_file_node* const> files)
{
    for (std::size_t begin = 0; begin < files.size() && !m_work.isStopped(); begin += most_pictures)
    {
        const auto some = files.subspan(begin, std::min(most_pictures, files.size() - begin));
        makePictures(some);
        for (std::size_t i = 0; i < some.size() && !m_work.isStopped(); ++i)
        {
            take(*some[i], m_pictures[i]);
            m_work.report(begin + i + 1, files.size(), filesExtracted(m_result.written));
        }
    }
}

} // namespace

bool extractFile(game_source& source, const game_path& path, const std::string& output, extracted_file& file,
                 failure& why)
{
    const std::shared_ptr<const game_data> game = source.gameFor(path, why);
    if (!game)
        return false;
    const game_file found = game->find(path.internalPath());
    file.internal_path = found.entry() ? found.path() : normalInternalPath(path.internalPath());
    file.path = output;
    file.archive = archiveOf(found);
    memory_file nothing;
    return found ? writeWholeFile(output, found.pieces(), why) : game->read(path, nothing, why); // which says why not
}

bool extractMatching(game_source& source, const extract_job_options& options, const work_port& work,
                     extract_job_result& result, failure& why)
{
    result = {};
    const std::shared_ptr<const game_data> game = source.archives(why);
    if (!game)
        return false;
    std::vector<const pack_file_node*> files = game->archives()->files();
    const internal_pattern pattern(options.pattern);
    std::erase_if(files, [&pattern](const pack_file_node* file) { return !pattern.matches(file->internalPath()); });
    extractEntries(game->archives(), files, options, work, result);
    return true;
}

void extractEntries(const std::shared_ptr<const path_tree>& tree, std::span<const pack_file_node* const> files,
                    const extract_job_options& options, const work_port& work, extract_job_result& result)
{
    result = {};
    result.matches = files.size();
    extraction_run(tree, options, work, result).run(files);
}

std::string filesExtracted(std::size_t count)
{
    return counted(count, "file") + " extracted";
}

} // namespace korvane
