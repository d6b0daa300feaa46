#include "Korvane/jobs/normal_map_job.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/jobs/output_paths.h"
#include "Korvane/textures/picture_file.h"

#include <utility>

namespace korvane
{

namespace
{

// In a folder a picture keeps its name, and its kind when that can be written.
std::string nameInFolder(const std::string& input)
{
    const game_path path(input);
    std::string name(fileName(path.internalPath()));
    if (!pictureKind(name))
        name = name.substr(0, name.rfind('.')) + std::string(extensionOf(picture_kind::targa));
    return name;
}

class normal_map_run
{
public:
    normal_map_run(game_source& source, const normal_map_job_options& options)
        : m_source(source)
        , m_options(options)
        , m_folder(options.output, extraction_layout::flat)
    {
    }

    bool convert(const std::string& input, converted_picture& done, failure& why);

private:
    bool read(const std::string& input, picture& image, failure& why);
    bool outputPath(const std::string& input, std::string& path, failure& why);

    game_source& m_source;
    const normal_map_job_options& m_options;
    extraction_folder m_folder;
};

bool normal_map_run::outputPath(const std::string& input, std::string& path, failure& why)
{
    if (!isFolder(m_options.output))
        path = m_options.output;
    else if (!m_folder.place(nameInFolder(input), path, why))
        return false;
    failure is_input;
    return isFreeToWrite(m_options.inputs, path, is_input) ||
           fail(why, failure_kind::refused, "this would replace a file that is read", path);
}

bool normal_map_run::read(const std::string& input, picture& image, failure& why)
{
    if (!game_path(input).isInternal())
        return readPictureFile(input, image, why);
    memory_file bytes;
    if (m_source.read(input, bytes, why) && readPicture(bytes.bytes(), image, why))
        return true;
    if (why.path.empty())
        why.path = input;
    return false;
}

bool normal_map_run::convert(const std::string& input, converted_picture& done, failure& why)
{
    std::string path;
    picture image;
    if (!outputPath(input, path, why) || !read(input, image, why))
        return false;
    convertNormals(image.pixels(), m_options.form);
    if (!writePictureFile(path, pictureKind(path).value_or(picture_kind::targa), image, why))
        return false;
    done = {input, path, image.width(), image.height()};
    return true;
}

} // namespace

bool convertNormalMaps(game_source& source, const normal_map_job_options& options, const work_port& work,
                       normal_map_job_result& result, failure& why)
{
    result = {};
    normal_map_run run(source, options);
    const std::size_t total = options.inputs.size();
    for (std::size_t i = 0; i < total && !work.isStopped(); ++i)
    {
        work.report(i, total, "converting " + std::to_string(i + 1) + " of " + std::to_string(total));
        converted_picture done;
        failure reason;
        if (run.convert(options.inputs[i], done, reason))
        {
            result.files.push_back(std::move(done));
            continue;
        }
        if (total == 1)
        {
            why = std::move(reason);
            return false;
        }
        tell(work.log, displayText(describe(reason)));
        result.failed.push_back({options.inputs[i], std::move(reason)});
    }
    return true;
}

} // namespace korvane
