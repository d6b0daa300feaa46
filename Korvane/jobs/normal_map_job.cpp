#include "Korvane/jobs/normal_map_job.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/textures/picture_file.h"

#include <utility>

namespace korvane
{

namespace
{

std::string nameInFolder(const std::string& below)
{
    return pictureKind(below) ? below : withEnding(below, extensionOf(picture_kind::targa));
}

class normal_map_run
{
public:
    normal_map_run(game_source& source, const normal_map_job_options& options, std::vector<std::string>& doubtful)
        : m_source(source)
        , m_options(options)
        , m_doubtful(doubtful)
    {
    }

    bool convert(const std::string& input, const std::string& path, const write_picture& write, failure& why)
    {
        picture image;
        bool is_there = false;
        picture_bytes file;
        if (readInputPicture(m_source, input, image, why) &&
            (m_options.is_forced || isConvertible(image.pixels(), m_options.form, is_there, why)))
        {
            convertNormals(image.pixels(), m_options.form);
            m_done = {input, path, image.width(), image.height()};
            if (encodePicture(image, pictureKind(path).value_or(picture_kind::targa), file, why))
                return write(file.bytes(), why);
        }
        else if (why.kind == failure_kind::refused && why.path.empty())
        {
            why.what += m_options.force_hint;
            m_doubtful.push_back(input);
        }
        if (why.path.empty())
            why.path = input;
        return false;
    }

    converted_picture takeDone(output_outcome outcome)
    {
        m_done.outcome = outcome;
        return std::move(m_done);
    }

private:
    game_source& m_source;
    const normal_map_job_options& m_options;
    std::vector<std::string>& m_doubtful;
    converted_picture m_done;
};

} // namespace

bool convertNormalMaps(game_source& source, const normal_map_job_options& options, const work_port& work,
                       normal_map_job_result& result, failure& why)
{
    result = {};
    normal_map_run run(source, options, result.doubtful);
    const auto convert = [&run](const std::string& input, const std::string& path, const write_picture& write,
                                failure& reason) { return run.convert(input, path, write, reason); };
    return convertPictures(
        options.batch, nameInFolder, convert,
        [&](output_outcome outcome) { result.files.push_back(run.takeDone(outcome)); }, work, result.left, why);
}

} // namespace korvane
