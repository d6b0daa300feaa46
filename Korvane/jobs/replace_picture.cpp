#include "Korvane/jobs/replace_picture.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/loose_file.h"
#include "Korvane/jobs/dds_job.h"
#include "Korvane/textures/picture_file.h"

#include <array>
#include <new>
#include <system_error>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t head_bytes = 148; // of a DDS file

bool readHead(const game_file& file, dds_image& head)
{
    std::array<std::byte, head_bytes> start{};
    std::size_t count = 0;
    failure ignored; // then it is none, or damaged
    return file && file.readStart(start, count, ignored) && readDdsHead(std::span(start).first(count), head, ignored);
}

// In place of formats that are read and not written.
dds_format writtenFor(dds_format format)
{
    return format == dds_format::bc2 || format == dds_format::bc2_srgb ? dds_format::bc3 : dds_format::bc7;
}

class replacement
{
public:
    replacement(const replace_picture_request& request, const work_port& work, replaced_picture& result)
        : m_request(request)
        , m_work(work)
        , m_result(result)
    {
    }

    bool run(failure& why)
    {
        if (m_request.mod_folder.empty())
            return fail(why, failure_kind::refused, std::string(no_mod_folder_text));
        const std::string& wanted = m_request.target_path.empty() ? m_request.internal_path : m_request.target_path;
        m_result.internal_path = wanted;
        m_texture = m_request.game->findInGame(m_request.internal_path);
        if (!m_texture)
            m_texture = m_request.game->findAround(m_request.internal_path, m_request.model_path);
        m_has_head = readHead(m_texture, m_head);
        if (m_has_head && m_head.array_size != 1)
            return fail(why, failure_kind::unsupported,
                        "this texture is a cube map or an array, for which a single picture is not enough",
                        m_request.internal_path);
        return findPlace(wanted, why) && isFreeToWrite({m_request.picture}, m_result.path, why) &&
               (isReady() ? copy(why) : convert(why));
    }

private:
    // One that is there already is written over, however it is spelled.
    bool findPlace(const std::string& internal_path, failure& why)
    {
        const std::string path = normalInternalPath(internal_path);
        m_result.path = findFileBelow(m_request.mod_folder, path);
        return !m_result.path.empty() || extraction_folder(m_request.mod_folder).place(path, m_result.path, why);
    }

    // A DDS file that is what would be made of it: encoding it again would only lose.
    bool isReady() const
    {
        dds_image head;
        return endsWithIgnoringCase(m_request.picture, ".dds") && readHead(game_file(m_request.picture), head) &&
               head.array_size == 1 && (!m_has_head || head.format == m_head.format);
    }

    bool copy(failure& why)
    {
        memory_file bytes;
        dds_image image;
        output_outcome outcome = output_outcome::written;
        if (!bytes.read(m_request.picture, why))
            return false;
        if (!readDds(bytes.bytes(), image, why)) // whole
        {
            why.path = m_request.picture;
            return false;
        }
        if (!writeOutput(m_result.path, bytes.bytes(), true, outcome, why))
            return false;
        tellDone(image.format, outcome);
        return true;
    }

    bool convert(failure& why)
    {
        dds_job_options options;
        options.batch = {{{m_request.picture, m_request.internal_path}}, true, m_result.path, true};
        if (m_has_head)
        {
            options.like = m_request.internal_path;
            options.like_file = m_texture;
            if (nameOfDdsFormat(m_head.format).empty())
                options.format = writtenFor(m_head.format);
        }
        else if (m_request.is_normal_map && !takeNormals(options, why))
            return false;
        loaded_game source(m_request.game);
        dds_job_result made;
        if (!makeDdsFiles(source, options, m_work, made, why))
            return false;
        if (made.files.empty())
            return fail(why, failure_kind::refused, "stopped; nothing was written", m_request.picture);
        tellDone(made.files[0].format, made.files[0].outcome);
        return true;
    }

    // Without a texture that says how it is to be: the games' form.
    bool takeNormals(dds_job_options& options, failure& why) const
    {
        picture image;
        if (!readPictureFile(m_request.picture, image, why))
            return false;
        options.is_srgb = false;
        if (surelyNormalForm(image.pixels()) == normal_form::blue)
            options.normals = normal_form::orange;
        return true;
    }

    void tellDone(dds_format format, output_outcome outcome)
    {
        const char* const name = formatName(format);
        m_result.was_there = outcome == output_outcome::unchanged;
        m_result.text = displayText(fileName(m_result.path)) +
                        (m_result.was_there ? " was as it is already" : " was written into the mod folder") +
                        (name ? std::string(" (") + name + ")" : std::string()) + ".";
    }

    const replace_picture_request& m_request;
    const work_port& m_work;
    replaced_picture& m_result;
    game_file m_texture;
    dds_image m_head;
    bool m_has_head = false;
};

} // namespace

bool replacePicture(const replace_picture_request& request, const work_port& work, replaced_picture& result,
                    failure& why)
{
    result = {};
    try
    {
        return replacement(request, work, result).run(why);
    }
    catch (const std::bad_alloc&)
    {
        return fail(why, failure_kind::unreadable, "not enough memory for this picture", request.picture);
    }
}

std::string newTexturePath(std::string_view internal_path, const std::string& picture)
{
    const std::string_view folder = internal_path.substr(0, internal_path.size() - fileName(internal_path).size());
    return std::string(folder) + withEnding(std::string(fileName(picture)), ".dds");
}

} // namespace korvane
