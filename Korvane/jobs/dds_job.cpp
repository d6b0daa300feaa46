#include "Korvane/jobs/dds_job.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/textures/picture_file.h"

#include <algorithm>
#include <array>
#include <memory>
#include <unordered_map>
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

// What a picture becomes.
struct dds_target
{
    dds_format format = dds_format::bc7_srgb;
    std::uint32_t mip_count = 0;
};

constexpr std::string_view like_the_game = "pack:";

// The texture that a picture is made like.
struct like_texture
{
    std::string path;
    dds_image head;
    memory_file file; // whole
    picture pixels;   // none where its format is not decoded
    std::optional<normal_form> normals;
};

// Its head first: a large file that is no texture is not read.
bool readLike(const std::string& path, const game_file& found, like_texture& like, failure& why)
{
    constexpr std::size_t head_bytes = 148;
    std::array<std::byte, head_bytes> head{};
    std::size_t count = 0;
    like.path = path;
    if (!found.readStart(head, count, why) || !readDdsHead(std::span(head).first(count), like.head, why) ||
        !found.read(like.file, why))
    {
        if (why.path.empty())
            why.path = path;
        return false;
    }
    failure ignored; // then nothing is known of its pixels
    if (like.head.array_size == 1 && readPicture(like.file.bytes(), like.pixels, ignored))
        like.normals = surelyNormalForm(like.pixels.pixels());
    return true;
}

bool takeFormat(const like_texture& like, const dds_job_options& options, const named_format*& row, failure& why)
{
    if (like.head.array_size != 1)
        return fail(why, failure_kind::unsupported, "cube maps and arrays of textures are not written", like.path);
    if (options.format)
        return true;
    row = rowOf(like.head.format);
    const char* const name = formatName(like.head.format);
    return row || fail(why, failure_kind::unsupported,
                       std::string(name ? name : "its pixel format") +
                           " is not written; say with --format what to write instead",
                       like.path);
}

bool chooseTarget(const dds_job_options& options, const like_texture* like, dds_target& target, failure& why)
{
    const named_format* row = rowOf(options.format.value_or(dds_format::bc7));
    bool is_srgb = !options.normals;
    if (like)
    {
        if (!takeFormat(*like, options, row, why))
            return false;
        is_srgb = isSrgb(like->head.format);
        const bool has_all = like->head.mip_count == mostMipMaps(like->head.width, like->head.height);
        target.mip_count = has_all ? 0 : like->head.mip_count;
    }
    if (options.is_srgb.value_or(false) && row->srgb == dds_format::unknown)
        return fail(why, failure_kind::refused, std::string(row->name) + " has no sRGB form; leave --srgb out");
    is_srgb = options.is_srgb.value_or(is_srgb) && row->srgb != dds_format::unknown;
    target.format = is_srgb ? row->srgb : row->plain;
    target.mip_count = options.mip_count.value_or(target.mip_count);
    return true;
}

// The same pixels, be they the game's normals in another form.
bool isUnchanged(const picture& image, std::optional<normal_form> normals, const like_texture& like)
{
    if (image.width() != like.pixels.width() || image.height() != like.pixels.height())
        return false;
    const std::span<const rgba_pixel> pixels = image.pixels();
    if (std::ranges::equal(pixels, like.pixels.pixels()))
        return true;
    if (normals != normal_form::blue || like.normals != normal_form::orange)
        return false;
    const std::span<const rgba_pixel> orange = like.pixels.pixels();
    std::vector<rgba_pixel> blue(orange.begin(), orange.end());
    toBlue(blue);
    return std::ranges::equal(pixels, blue);
}

struct texture_in_game
{
    std::string path; // internal, with '/'
    game_file file;
};

// The game's texture of a picture, whatever the mod folders have: the longest end of its path that is one of the
// game's.
texture_in_game gameTextureOf(const game_data& game, const std::string& input)
{
    std::string path = withEnding(std::string(game_path(input).internalPath()), ".dds");
    std::replace(path.begin(), path.end(), '\\', '/');
    for (std::size_t begin = 0; begin < path.size();)
    {
        if (game_file found = game.findInGame(std::string_view(path).substr(begin)))
            return {path.substr(begin), std::move(found)};
        const std::size_t slash = path.find('/', begin);
        begin = slash == std::string::npos ? path.size() : slash + 1;
    }
    return {};
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
    dds_run(game_source& source, const dds_job_options& options, const work_port& work)
        : m_source(source)
        , m_options(options)
        , m_work(work)
        , m_batch(options.batch)
    {
    }

    // What all pictures have in common, or with "pack:" where each has its own.
    bool prepare(failure& why)
    {
        if (m_options.like == like_the_game)
            return findInGame(why);
        if (m_options.like.empty())
            return chooseTarget(m_options, nullptr, m_target, why);
        game_file found = m_options.like_file;
        if (!found && !findLike(found, why))
            return false;
        m_like.emplace();
        return readLike(m_options.like, found, *m_like, why) && chooseTarget(m_options, &*m_like, m_target, why);
    }
    const picture_batch& batch() const { return m_batch; }

    bool make(const std::string& input, const std::string& path, const write_picture& write, failure& why)
    {
        picture image;
        m_made = {};
        m_unchanged.clear();
        const bool is_made =
            takeOwnLike(input, why) && readInputPicture(m_source, input, image, why) &&
            (isAsTheGameHasIt(image) ? takeBack(input, path, write, why)
                                     : convert(input, image, why) && encode(input, path, image, write, why));
        if (!is_made && why.path.empty())
            why.path = input;
        return is_made;
    }

    void takeMade(output_outcome outcome, dds_job_result& result)
    {
        m_made.outcome = outcome;
        if (m_unchanged.empty())
            result.files.push_back(std::move(m_made));
        else
            result.unchanged.push_back(std::move(m_unchanged));
    }

private:
    bool findLike(game_file& found, failure& why)
    {
        const game_path path(m_options.like);
        const std::shared_ptr<const game_data> game = m_source.gameFor(path, why);
        if (!game)
            return false;
        found = path.isInternal() ? game->find(path.internalPath()) : game_file(path.text());
        return found || fail(why, failure_kind::not_found, "no archive holds this path", path.text());
    }

    bool findInGame(failure& why)
    {
        const std::shared_ptr<const game_data> game = m_source.archives(why);
        if (!game)
            return false;
        for (operand_file& input : m_batch.inputs)
            if (texture_in_game found = gameTextureOf(*game, input.path); found.file)
            {
                input.below = found.path;
                m_in_game[input.path] = std::move(found);
            }
        return true;
    }

    bool takeOwnLike(const std::string& input, failure& why)
    {
        if (m_options.like != like_the_game)
            return true;
        const auto found = m_in_game.find(input);
        if (found == m_in_game.end())
            return fail(why, failure_kind::not_found, "the game has no texture of this path, or of an end of it",
                        input);
        m_like.emplace();
        return readLike(found->second.path, found->second.file, *m_like, why) &&
               chooseTarget(m_options, &*m_like, m_target, why);
    }

    bool isAsTheGameHasIt(const picture& image) const
    {
        return m_options.like == like_the_game && isUnchanged(image, surelyNormalForm(image.pixels()), *m_like);
    }
    // Nothing is to be written, unless what was painted earlier stands there: then the game's own texture.
    bool takeBack(const std::string& input, const std::string& path, const write_picture& write, failure& why)
    {
        std::error_code error;
        if (std::filesystem::exists(toPath(path), error))
        {
            const dds_image& head = m_like->head;
            m_made = {input, path, head.width, head.height, head.mip_count, head.format, m_like->normals};
            return write(m_like->file.bytes(), why);
        }
        m_unchanged = input;
        return true;
    }

    bool convert(const std::string& input, picture& image, failure& why)
    {
        m_form = m_options.normals;
        if (!m_form && m_like && m_like->normals == normal_form::orange &&
            surelyNormalForm(image.pixels()) == normal_form::blue)
        {
            m_form = normal_form::orange;
            toOrange(image.pixels());
            return true;
        }
        if (!m_form)
            return true;
        bool is_there = false;
        failure reason;
        if (m_options.is_forced || isConvertible(image.pixels(), *m_form, is_there, reason))
            convertNormals(image.pixels(), *m_form);
        else if (is_there)
            tell(m_work.log, displayText(input) + ": " + reason.what + "; it stays as it is");
        else
            return fail(why, reason.kind, reason.what + "; --force converts it all the same");
        return true;
    }

    bool encode(const std::string& input, const std::string& path, const picture& image, const write_picture& write,
                failure& why)
    {
        const bool is_srgb = isSrgb(m_target.format);
        if (!m_form && !is_srgb)
            m_form = surelyNormalForm(image.pixels());
        const std::uint32_t most = mostMipMaps(image.width(), image.height());
        const std::uint32_t mip_count = m_target.mip_count == 0 ? most : std::min(most, m_target.mip_count);
        m_made = {input, path, image.width(), image.height(), mip_count, m_target.format, m_form};
        memory_file file;
        return encodeDds(image,
                         {m_target.format, m_target.mip_count, contentOf(m_form, is_srgb), m_options.keeps_coverage,
                          m_options.effort},
                         file, why) &&
               write(file.bytes(), why);
    }

    game_source& m_source;
    const dds_job_options& m_options;
    const work_port& m_work;
    picture_batch m_batch;
    std::unordered_map<std::string, texture_in_game> m_in_game; // by input, where there is one
    std::optional<like_texture> m_like;
    dds_target m_target;
    std::optional<normal_form> m_form; // of the picture that is made
    made_dds m_made;
    std::string m_unchanged; // the input, when it is
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
    dds_run run(source, options, work);
    if (!run.prepare(why))
        return false;
    const auto make = [&run](const std::string& input, const std::string& path, const write_picture& write,
                             failure& reason) { return run.make(input, path, write, reason); };
    return convertPictures(
        run.batch(), ddsName, make, [&](output_outcome outcome) { run.takeMade(outcome, result); }, work, result.left,
        why);
}

} // namespace korvane
