#include "Korvane/jobs/picture_batch.h"

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/jobs/output_paths.h"
#include "Korvane/textures/picture_file.h"

#include <new>
#include <unordered_map>
#include <utility>

namespace korvane
{

namespace
{

class batch_run
{
public:
    batch_run(const picture_batch& batch, const picture_name& name, const picture_work& work, const log_port& log)
        : m_batch(batch)
        , m_log(log)
        , m_name(name)
        , m_work(work)
        , m_is_file(batch.is_one_file && !isFolder(batch.output))
        , m_folder(batch.output, extraction_layout::numbered)
        , m_is_result(findResults())
    {
        for (std::size_t i = 0; i < batch.inputs.size(); ++i)
            if (!isResult(i))
                m_inputs.push_back(batch.inputs[i].path);
    }

    // What an earlier run has made of another input is not read: this one makes it again.
    bool isResult(std::size_t input) const { return m_is_result[input]; }

    bool convert(const operand_file& input, output_outcome& outcome, std::string& path, failure& why)
    {
        try
        {
            if (!outputPath(input, path, why))
                return false;
            const auto write = [&](std::span<const std::byte> bytes, failure& reason) {
                const std::string folder = toUtf8(toPath(path).parent_path());
                return (folder.empty() || createFolder(folder, reason)) &&
                       writeOutput(path, bytes, m_is_file || m_batch.overwrites, outcome, reason);
            };
            return m_work(input.path, path, write, why);
        }
        catch (const std::bad_alloc&)
        {
            return fail(why, failure_kind::unreadable, "not enough memory for this picture", input.path);
        }
    }

private:
    static std::string normalPath(const std::filesystem::path& path)
    {
        std::error_code error;
        const std::filesystem::path whole = std::filesystem::absolute(path, error);
        return toUtf8((error ? path : whole).lexically_normal());
    }

    std::vector<bool> findResults() const
    {
        std::vector<bool> is_result(m_batch.inputs.size());
        if (m_is_file)
            return is_result;
        std::unordered_map<std::string, std::size_t> places;
        for (std::size_t i = 0; i < m_batch.inputs.size(); ++i)
            if (const game_path path(m_batch.inputs[i].path); !path.isInternal())
                places.emplace(normalPath(toPath(path.text())), i);
        for (std::size_t i = 0; i < m_batch.inputs.size(); ++i)
        {
            const std::string below = m_name(m_batch.inputs[i].below);
            const auto found = places.find(normalPath(toPath(m_batch.output) / toPath(below)));
            if (found != places.end() && found->second != i)
                is_result[found->second] = true;
        }
        return is_result;
    }

    bool outputPath(const operand_file& input, std::string& path, failure& why)
    {
        if (m_is_file)
            path = m_batch.output;
        else if (const std::string name = m_name(input.below); !m_folder.place(name, path, why))
            return false;
        else if (fileName(path) != fileName(name))
            tell(m_log, displayText(input.path) + ": another picture becomes " + displayText(fileName(name)) +
                            ", so this one becomes " + displayText(fileName(path)));
        failure is_input;
        return isFreeToWrite(m_inputs, path, is_input) ||
               fail(why, failure_kind::refused, "this would replace a file that is read", path);
    }

    const picture_batch& m_batch;
    const log_port& m_log;
    const picture_name& m_name;
    const picture_work& m_work;
    bool m_is_file;
    extraction_folder m_folder;
    std::vector<std::string> m_inputs;
    std::vector<bool> m_is_result; // of each input of the batch
};

// The picture has one surface only.
bool isSingle(std::span<const std::byte> start, failure& why)
{
    dds_image image;
    failure ignored; // what is no DDS file is something else, and what is damaged has been said
    return !readDdsHead(start, image, ignored) || image.array_size == 1 ||
           fail(why, failure_kind::unsupported, "cube maps and arrays of textures cannot be converted");
}

bool readDiskPicture(const std::string& path, picture& target, failure& why)
{
    constexpr std::size_t head_bytes = 148;
    memory_file start;
    std::uint64_t size = 0;
    return start.readStart(path, head_bytes, size, why) && isSingle(start.bytes(), why) &&
           readPictureFile(path, target, why);
}

} // namespace

std::string withEnding(const std::string& path, std::string_view ending)
{
    const std::size_t name = path.size() - fileName(path).size(), dot = path.rfind('.');
    std::string result = dot == std::string::npos || dot <= name ? path : path.substr(0, dot);
    return result.append(ending);
}

bool convertPictures(const picture_batch& batch, const picture_name& name, const picture_work& work,
                     const std::function<void(output_outcome)>& made, const work_port& port,
                     picture_batch_result& result, failure& why)
{
    result = {};
    batch_run run(batch, name, work, port.log);
    const std::size_t total = batch.inputs.size();
    for (std::size_t i = 0; i < total && !port.isStopped(); ++i)
    {
        const operand_file& input = batch.inputs[i];
        if (run.isResult(i))
        {
            tell(port.log, displayText(input.path) + ": another of the pictures becomes this file, so it is not read");
            continue;
        }
        port.report(i, total, "converting " + std::to_string(i + 1) + " of " + std::to_string(total));
        output_outcome outcome = output_outcome::written;
        std::string path;
        failure reason;
        if (!run.convert(input, outcome, path, reason))
        {
            if (!batch.is_one_file)
                port.nameFailure(reason);
            result.failed.push_back({input.path, reason});
            if (batch.is_one_file)
            {
                why = std::move(reason);
                return false;
            }
        }
        else if (outcome == output_outcome::kept)
            result.kept.push_back(path);
        else
            made(outcome);
    }
    return true;
}

bool readInputPicture(game_source& source, const std::string& input, picture& target, failure& why)
{
    memory_file bytes;
    const bool is_read =
        game_path(input).isInternal()
            ? source.read(input, bytes, why) && isSingle(bytes.bytes(), why) && readPicture(bytes.bytes(), target, why)
            : readDiskPicture(input, target, why);
    if (!is_read && why.path.empty())
        why.path = input;
    return is_read;
}

} // namespace korvane
