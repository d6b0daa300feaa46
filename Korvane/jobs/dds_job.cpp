#include "Korvane/jobs/dds_job.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvane
{

namespace
{

struct named_format
{
    std::string_view name;
    dds_format plain;
    dds_format srgb; // unknown: there is none
};

constexpr named_format named_formats[] = {
    {"bc1", dds_format::bc1, dds_format::bc1_srgb},       {"bc3", dds_format::bc3, dds_format::bc3_srgb},
    {"bc4", dds_format::bc4, dds_format::unknown},        {"bc5", dds_format::bc5, dds_format::unknown},
    {"bc7", dds_format::bc7, dds_format::bc7_srgb},       {"rgba8", dds_format::rgba8, dds_format::rgba8_srgb},
    {"bgra8", dds_format::bgra8, dds_format::bgra8_srgb},
};

const named_format* rowOf(dds_format format)
{
    const auto* const row =
        std::find_if(std::begin(named_formats), std::end(named_formats), [format](const named_format& each) {
            return format != dds_format::unknown && (each.plain == format || each.srgb == format);
        });
    return row == std::end(named_formats) ? nullptr : row;
}

// What all pictures of a run become.
struct dds_target
{
    dds_format format = dds_format::bc7_srgb;
    std::uint32_t mip_count = 0;
};

bool readLike(game_source& source, const game_path& path, dds_image& image, failure& why)
{
    constexpr std::size_t head_bytes = 148;
    memory_file file;
    std::uint64_t size = 0;
    const bool is_read =
        path.isInternal() ? source.read(path, file, why) : file.readStart(path.text(), head_bytes, size, why);
    if (is_read && readDdsHead(file.bytes(), image, why))
        return true;
    if (why.path.empty())
        why.path = path.text();
    return false;
}

bool chooseTarget(game_source& source, const dds_job_options& options, dds_target& target, failure& why)
{
    const named_format* row = rowOf(options.format.value_or(dds_format::bc7));
    bool is_srgb = !options.normals;
    if (!options.like.empty())
    {
        dds_image like;
        if (!readLike(source, options.like, like, why))
            return false;
        if (like.array_size != 1)
            return fail(why, failure_kind::unsupported, "cube maps and arrays of textures are not written",
                        options.like);
        if (!options.format)
            row = rowOf(like.format);
        if (!row)
        {
            const char* const name = formatName(like.format);
            return fail(why, failure_kind::unsupported,
                        std::string(name ? name : "its pixel format") + " is not written; say with --format what to "
                                                                        "write instead",
                        options.like);
        }
        is_srgb = isSrgb(like.format);
        target.mip_count = like.mip_count == mostMipMaps(like.width, like.height) ? 0 : like.mip_count;
    }
    if (options.is_srgb.value_or(false) && row->srgb == dds_format::unknown)
        return fail(why, failure_kind::refused, std::string(row->name) + " has no sRGB form; leave --srgb out");
    is_srgb = options.is_srgb.value_or(is_srgb) && row->srgb != dds_format::unknown;
    target.format = is_srgb ? row->srgb : row->plain;
    target.mip_count = options.mip_count.value_or(target.mip_count);
    return true;
}

mip_content contentOf(std::optional<normal_form> form, bool is_srgb)
{
    if (form)
        return *form == normal_form::blue ? mip_content::blue_normals : mip_content::orange_normals;
    return is_srgb ? mip_content::light : mip_content::numbers;
}

class dds_run
{
public:
    dds_run(game_source& source, const dds_job_options& options, const work_port& work, const dds_target& target)
        : m_source(source)
        , m_options(options)
        , m_work(work)
        , m_target(target)
    {
    }

    bool make(const std::string& input, const std::string& path, const write_picture& write, failure& why)
    {
        picture image;
        if (!readInputPicture(m_source, input, image, why) || !convert(input, image, why))
        {
            if (why.path.empty())
                why.path = input;
            return false;
        }
        dds_encoding encoding{m_target.format, m_target.mip_count, mip_content::numbers, m_options.keeps_coverage,
                              m_options.effort};
        std::optional<normal_form> form = m_options.normals;
        if (!form && !isSrgb(m_target.format))
            form = surelyNormalForm(image.pixels());
        encoding.content = contentOf(form, isSrgb(m_target.format));
        const std::uint32_t most = mostMipMaps(image.width(), image.height());
        m_made = {input,
                  path,
                  image.width(),
                  image.height(),
                  m_target.mip_count == 0 ? most : std::min(most, m_target.mip_count),
                  m_target.format,
                  form};
        memory_file file;
        if (encodeDds(image, encoding, file, why))
            return write(file.bytes(), why);
        if (why.path.empty())
            why.path = input;
        return false;
    }

    made_dds takeMade() { return std::move(m_made); }

private:
    bool convert(const std::string& input, picture& image, failure& why)
    {
        if (!m_options.normals)
            return true;
        bool is_there = false;
        failure reason;
        if (m_options.is_forced || isConvertible(image.pixels(), *m_options.normals, is_there, reason))
            convertNormals(image.pixels(), *m_options.normals);
        else if (is_there)
            tell(m_work.log, displayText(input) + ": " + reason.what + "; it stays as it is");
        else
            return fail(why, reason.kind, reason.what + "; --force converts it all the same");
        return true;
    }

    game_source& m_source;
    const dds_job_options& m_options;
    const work_port& m_work;
    dds_target m_target;
    made_dds m_made;
};

std::string ddsName(const std::string& below)
{
    return withEnding(below, ".dds");
}

} // namespace

std::span<const std::string_view> ddsFormatNames()
{
    static const auto names = [] {
        std::array<std::string_view, std::size(named_formats)> made;
        std::transform(std::begin(named_formats), std::end(named_formats), made.begin(),
                       [](const named_format& row) { return row.name; });
        return made;
    }();
    return names;
}

dds_format ddsFormatNamed(std::string_view name)
{
    for (const named_format& row : named_formats)
        if (row.name == name)
            return row.plain;
    return dds_format::unknown;
}

std::string_view nameOfDdsFormat(dds_format format)
{
    const named_format* const row = rowOf(format);
    return row ? row->name : std::string_view();
}

bool makeDdsFiles(game_source& source, const dds_job_options& options, const work_port& work, dds_job_result& result,
                  failure& why)
{
    result = {};
    dds_target target;
    if (!chooseTarget(source, options, target, why))
        return false;
    dds_run run(source, options, work, target);
    const auto make = [&run](const std::string& input, const std::string& path, const write_picture& write,
                             failure& reason) { return run.make(input, path, write, reason); };
    return convertPictures(
        options.batch, ddsName, make, [&] { result.files.push_back(run.takeMade()); }, work, result.left, why);
}

} // namespace korvane
