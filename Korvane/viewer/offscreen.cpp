#include "Korvane/viewer/offscreen.h"

#include "D3D11_RENDER_LIB/d3d_check.h"
#include "Korvane/viewer/model_scene.h"
#include "Korvane/viewer/sample_average.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

namespace korvane
{

namespace
{

bool checkOptions(const render_options& options, failure& why)
{
    const auto bad = [](std::uint32_t size) { return size == 0 || size > largest_picture; };
    if (bad(options.width) || bad(options.height))
        return fail(why, failure_kind::refused,
                    "the picture must be 1 to " + std::to_string(largest_picture) + " pixels wide and high");
    if (std::find(sample_choices.begin(), sample_choices.end(), options.samples) == sample_choices.end())
        return fail(why, failure_kind::refused, "there can be 1, 4, 9 or 16 samples a pixel");
    return true;
}

bool isWrittenOver(const view_state& view)
{
    return view.shows_bone_names || view.shows_attachments || view.shows_counts || view.shows_help;
}

// Samples stand in a square grid: so many in each direction.
std::uint32_t sampleRows(std::uint32_t samples)
{
    return static_cast<std::uint32_t>(std::lround(std::sqrt(static_cast<double>(samples))));
}

constexpr unsigned picture_dpi = 96;

} // namespace

struct picture_session::device_half
{
    explicit device_half(const render_options& options) : library(options.faults), drawn(options.log) {}

    lib3d library;
    model_scene drawn;
    scene_targets targets;
    picture_target target;
};

picture_session::picture_session(scene_pointer scene, render_options options)
    : m_scene(std::move(scene))
    , m_options(std::move(options))
    , m_po_average(std::make_unique<sample_average>())
{
    for (const auto& one : m_options.animations)
    {
        animation_fit fit = fitAnimation(*m_scene, one);
        m_problems.insert(m_problems.end(), fit.problems.begin(), fit.problems.end());
        if (!fit.rigs.empty())
            m_fits.push_back(std::move(fit));
    }
    if (!m_options.frames_scene)
        return;
    camera& eye = m_options.view.eye;
    eye.yaw = m_options.yaw;
    eye.pitch = m_options.pitch;
    eye.frame(m_scene->bounds,
              static_cast<float>(m_options.width) / static_cast<float>(std::max(m_options.height, 1u)));
}

picture_session::~picture_session() = default;

// True also for a device that was lost while it was given its objects: m_po_device is null then.
bool picture_session::makeDevice(failure& why)
{
    auto made = std::make_unique<device_half>(m_options);
    lib3d& library = made->library;
    if (!library.createDevice(device_kind::best, m_options.log, why))
        return false;
    library.setTextureBias(-std::log2(static_cast<float>(sampleRows(m_options.samples))));
    const std::uint32_t width = drawnSize(m_options.width);
    const std::uint32_t height = drawnSize(m_options.height);
    const bool is_whole = library.createAll() && made->drawn.create(library, m_scene) &&
                          made->drawn.finishTextures(library) &&
                          (!isWrittenOver(m_options.view) || made->drawn.createOverlay(library, picture_dpi)) &&
                          made->targets.create(library, width, height) && made->target.create(library, width, height);
    m_po_device = std::move(made);
    if (is_whole)
        for (const animation_fit& fit : m_fits)
            static_cast<void>(m_po_device->drawn.pose()->setAnimation(fit));
    return is_whole || m_po_device->library.loss() != S_OK;
}

void picture_session::takePose(const picture_moment& moment)
{
    posed_scene& pose = *m_po_device->drawn.pose();
    if (std::holds_alternative<std::monostate>(moment))
        return pose.clearAnimation();
    if (!pose.hasAnimation()) // the bind pose was shown before
        for (const animation_fit& fit : m_fits)
            static_cast<void>(pose.setAnimation(fit));
    if (!pose.hasAnimation())
        return;
    if (const double* const seconds = std::get_if<double>(&moment))
        pose.showTime(*seconds);
    else
        pose.show(std::get<playback_position>(moment));
}

// A part that is not all of the picture has a border, as what is shown depends on what is around it.
std::uint32_t picture_session::drawnSize(std::uint32_t size) const
{
    const std::uint32_t count = (size + m_options.largest_part - 1) / m_options.largest_part;
    return count == 1 ? size : std::min(size, (size + count - 1) / count + 2 * scene_targets::reach);
}

std::vector<picture_session::strip> picture_session::strips(std::uint32_t size) const
{
    const std::uint32_t count = (size + m_options.largest_part - 1) / m_options.largest_part;
    const std::uint32_t kept = (size + count - 1) / count;
    std::vector<strip> made;
    for (std::uint32_t begin = 0; begin < size; begin += kept)
    {
        const std::uint32_t origin = begin - std::min<std::uint32_t>(begin, scene_targets::reach);
        made.push_back({std::min(origin, size - drawnSize(size)), begin, std::min(kept, size - begin)});
    }
    return made;
}

bool picture_session::drawPart(const view_state& view, std::uint32_t left, std::uint32_t top, std::uint32_t sample)
{
    device_half& device = *m_po_device;
    const std::uint32_t rows = sampleRows(m_options.samples);
    const auto shift = [rows](std::uint32_t place) {
        return (static_cast<float>(place) + 0.5f) / static_cast<float>(rows) - 0.5f;
    };
    device.targets.show({m_options.width, m_options.height, left, top, shift(sample % rows), shift(sample / rows),
                         m_options.samples > 1});
    device.drawn.draw(device.library, device.targets, device.target.view(), view);
    return device.target.read(device.library, m_drawn);
}

// False when the device was lost or the work was to stop.
bool picture_session::drawParts(const picture_wish& wish, const work_port& work, picture& made)
{
    takePose(wish.moment);
    view_state view = m_options.view;
    view.eye.yaw += wish.turned;
    const std::vector<strip> across = strips(m_options.width);
    const std::vector<strip> down = strips(m_options.height);
    const std::size_t row_bytes = std::size_t{drawnSize(m_options.width)} * 4;
    const std::size_t total = across.size() * down.size() * m_options.samples;
    const sample_content content =
        view.shownChannel() == view_channel::normals ? sample_content::data : sample_content::colour;
    std::size_t done = 0;
    for (const strip& rows : down)
        for (const strip& columns : across)
        {
            if (m_options.samples > 1)
                m_po_average->begin(row_bytes / 4 * drawnSize(m_options.height), content);
            for (std::uint32_t sample = 0; sample < m_options.samples; ++sample)
            {
                if (work.isStopped())
                    return false;
                work.report(done++, total, "Drawing");
                if (!drawPart(view, columns.origin, rows.origin, sample))
                    return false;
                if (m_options.samples > 1)
                    m_po_average->add(m_drawn);
            }
            if (m_options.samples > 1)
                m_po_average->finish(m_drawn);
            for (std::uint32_t y = rows.begin; y < rows.begin + rows.size; ++y)
                std::memcpy(made.row(y).data() + columns.begin,
                            m_drawn.data() + (y - rows.origin) * row_bytes + (columns.begin - columns.origin) * 4,
                            std::size_t{columns.size} * 4);
        }
    return true;
}

bool picture_session::draw(const picture_wish& wish, const work_port& work, picture& made, failure& why)
{
    if (!checkOptions(m_options, why))
        return false;
    picture fresh;
    try
    {
        fresh = picture(m_options.width, m_options.height);
    }
    catch (const std::bad_alloc&)
    {
        return fail(why, failure_kind::refused, "there is not enough memory for a picture of that size");
    }
    for (int attempt = 0;; ++attempt)
    {
        if (!m_po_device && !makeDevice(why))
            return false;
        if (m_po_device->library.loss() == S_OK && drawParts(wish, work, fresh))
            break;
        if (work.isStopped())
            return false;
        const std::string what = "the graphics device was lost (" + resultText(m_po_device->library.loss()) + ")";
        m_po_device.reset();
        if (attempt == 1)
            return fail(why, failure_kind::unsupported, what + " twice", m_scene->path);
        tell(m_options.log, what + "; the picture is drawn again");
    }
    made = std::move(fresh);
    return true;
}

} // namespace korvane
