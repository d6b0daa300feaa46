#include "Korvane/viewer/posed_scene.h"

#include "Korvane/scene/scene_rigs.h"

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

constexpr gpu_float4 bone_colour{0.9f, 0.9f, 1.0f, 1.0f};
constexpr gpu_float4 axis_colours[3] = {{1, 0.25f, 0.2f, 1}, {0.3f, 0.9f, 0.3f, 1}, {0.35f, 0.5f, 1, 1}};
constexpr std::size_t cube_vertices = 24;

double framesOf(const playback_position& position)
{
    return position.frame + static_cast<double>(position.fraction);
}

// Fills a buffer line by line; what does not fit is left out.
class line_writer
{
public:
    explicit line_writer(std::span<gpu_line_vertex> target) : m_target(target) {}

    void add(const glm::vec3& from, const glm::vec3& to, const gpu_float4& colour)
    {
        if (m_target.size() - m_count < 2)
            return;
        m_target[m_count++] = {{from.x, from.y, from.z}, colour};
        m_target[m_count++] = {{to.x, to.y, to.z}, colour};
    }
    void addCube(const glm::vec3& centre, float size, const gpu_float4& colour)
    {
        const auto corner = [&](unsigned bits) {
            return centre +
                   glm::vec3(bits & 1u ? 0.5f : -0.5f, bits & 2u ? 0.5f : -0.5f, bits & 4u ? 0.5f : -0.5f) * size;
        };
        for (const unsigned axis : {1u, 2u, 4u})
            for (unsigned from = 0; from < 8; ++from)
                if ((from & axis) == 0)
                    add(corner(from), corner(from | axis), colour);
    }
    // An arrow of nine lines: a shaft that is seen as more than a line from near by, and its head.
    void addBar(const glm::vec3& from, const glm::vec3& way, float length, const gpu_float4& colour)
    {
        const glm::vec3 beside = glm::normalize(std::abs(way.x) < 0.7f ? glm::cross(way, glm::vec3(1, 0, 0))
                                                                       : glm::cross(way, glm::vec3(0, 1, 0)));
        const glm::vec3 tip = from + way * length;
        add(from, tip, colour);
        for (const glm::vec3& side : {beside, glm::cross(way, beside)})
            for (const float sign : {-1.0f, 1.0f})
            {
                const glm::vec3 out = side * (sign * length);
                add(from + out * 0.02f, tip - way * (0.2f * length) + out * 0.02f, colour);
                add(tip, tip - way * (0.2f * length) + out * 0.06f, colour);
            }
    }
    std::size_t count() const { return m_count; }

private:
    std::span<gpu_line_vertex> m_target;
    std::size_t m_count = 0;
};

} // namespace

struct posed_scene::rig_state
{
    rig_state(const scene_rig& source, const seconds_clock& clock);
    void update(const rig_state* mounted_on);

    skeleton_pose pose; // its own player stands still
    std::shared_ptr<const anim_data> skeleton;
    int mount = -1;
    std::uint32_t mount_bone = 0;
    glm::mat4 mount_place{1};
    std::size_t bones = 0;             // that the skeleton has and that count
    std::vector<glm::mat4> bind;       // of those, in the rig's own space
    std::vector<glm::mat4> unbind;     // the inverse
    std::vector<glm::mat4> world;      // shown, in the scene
    std::vector<glm::mat4> palette;    // from the bind pose into the scene; of all 256
    std::vector<gpu_matrix> inverse;   // of all 256
    std::vector<gpu_matrix> transform; // of all 256
};

posed_scene::rig_state::rig_state(const scene_rig& source, const seconds_clock& clock)
    : pose(clock)
    , skeleton(source.skeleton)
    , mount(source.mount)
    , mount_bone(static_cast<std::uint32_t>(std::max(source.mount_bone, 0)))
    , mount_place(source.mount_place)
    , palette(max_bones, glm::mat4(1))
    , inverse(max_bones, gpu_identity)
    , transform(max_bones, gpu_identity)
{
    if (!skeleton)
        return;
    static_cast<void>(pose.setSkeleton(*skeleton)); // the scene says what is wrong with it
    bones = std::min(pose.bindJoints().size(), max_bones);
    bind.resize(bones);
    unbind.resize(bones);
    world.resize(bones);
    for (std::size_t i = 0; i < bones; ++i)
    {
        const glm::mat4& own = pose.bindJoints()[i].world;
        const glm::mat4 undone = glm::inverse(own);
        const bool is_usable = isUsable(own) && isUsable(undone);
        bind[i] = is_usable ? own : glm::mat4(1);
        unbind[i] = is_usable ? undone : glm::mat4(1);
        inverse[i] = gpuMatrix(unbind[i]);
    }
}

void posed_scene::rig_state::update(const rig_state* mounted_on)
{
    const glm::mat4 root = mounted_on ? mounted_on->palette[mount_bone] * mount_place : glm::mat4(1);
    for (std::size_t i = 0; i < bones; ++i)
    {
        world[i] = root * pose.joints()[i].world;
        palette[i] = world[i] * unbind[i];
        if (!isUsable(world[i]) || !isUsable(palette[i]))
        {
            world[i] = root * bind[i];
            palette[i] = root;
        }
        transform[i] = gpuMatrix(world[i]);
    }
    if (!mounted_on)
        return; // the rest stays the identity
    std::fill(palette.begin() + static_cast<std::ptrdiff_t>(bones), palette.end(), root);
    std::fill(transform.begin() + static_cast<std::ptrdiff_t>(bones), transform.end(), gpuMatrix(root));
}

posed_scene::posed_scene(scene_pointer scene, seconds_clock clock)
    : m_scene(scene ? std::move(scene) : std::make_shared<const loaded_scene>())
    , m_player(clock)
{
    for (const scene_rig& rig : m_scene->rigs)
        m_rigs.push_back(std::make_unique<rig_state>(rig, clock));
    m_rigs.push_back(std::make_unique<rig_state>(scene_rig(), clock));
    addJoints();
    addPoints();
    updatePalettes();
}

posed_scene::~posed_scene() = default;

void posed_scene::addJoints()
{
    for (std::size_t i = 0; i < m_rigs.size(); ++i)
    {
        const rig_state& rig = *m_rigs[i];
        for (std::size_t bone = 0; bone < rig.bones; ++bone)
        {
            const skeleton_node* const parent = rig.pose.tree().nodes()[bone].parent();
            const bool has_parent = parent && static_cast<std::size_t>(parent->index()) < rig.bones;
            m_joints.push_back({static_cast<int>(i), static_cast<int>(bone), has_parent ? parent->index() : -1});
            m_skeleton_vertices += cube_vertices + (has_parent ? 2u : 0u);
        }
    }
}

// Several models of a figure may have the same points: each once.
void posed_scene::addPoints()
{
    for (const scene_part& part : m_scene->parts)
        for (const scene_point& point : part.model->points)
        {
            const bool is_own = part.bone < 0 && part.rig >= 0;
            const std::shared_ptr<const anim_data> skeleton = is_own ? at(part.rig).skeleton : nullptr;
            const int bone = skeleton ? boneOf(point, *skeleton) : part.bone;
            if (std::none_of(m_points.begin(), m_points.end(), [&](const point_number& known) {
                    return known.rig == part.rig && known.bone == bone && known.point->name == point.name;
                }))
                m_points.push_back({&point, part.rig, bone, part.bone >= 0 ? part.weapon * point.place : point.place});
        }
}

bool posed_scene::setAnimation(const animation_fit& fit)
{
    bool is_shown = false;
    for (const std::size_t number : fit.rigs)
    {
        failure unused; // the fit has said it
        rig_state& rig = *m_rigs[number];
        if (!rig.pose.setAnimation(fit.animation, unused))
            continue;
        m_leader = number;
        is_shown = true;
    }
    if (!is_shown)
        return false;
    const animation& leading = shownAnimation();
    m_player.load({leading.frameRate(), leading.endTime(), leading.frameCount()});
    show({});
    return true;
}

void posed_scene::clearAnimation()
{
    m_player.unload();
    for (const auto& rig : m_rigs)
        rig->pose.clearAnimation();
    updatePalettes();
}

const animation& posed_scene::shownAnimation() const
{
    return m_rigs[m_leader]->pose.shownAnimation();
}

// Others go on while the leading animation goes back to its beginning: each goes round in its own time.
void posed_scene::advance(playback_control& control)
{
    const playback_position before = m_player.position();
    control.advance(m_player);
    if (!hasAnimation())
        return;
    const playback_position now = m_player.position();
    const animation& leading = shownAnimation();
    double frames = framesOf(now) - framesOf(before);
    if (frames < -2 && m_player.state() == play_state::playing) // not stepped back: round
        frames += leading.endTime() * leading.frameRate();
    m_seconds += frames / leading.frameRate();
    showLeading(now);
}

void posed_scene::show(const playback_position& position)
{
    if (!hasAnimation())
        return;
    m_seconds = framesOf(position) / shownAnimation().frameRate();
    showLeading(position);
}

void posed_scene::showTime(double seconds)
{
    const animation& leading = shownAnimation();
    show(positionAt(seconds, {leading.frameRate(), leading.endTime(), leading.frameCount()}));
}

void posed_scene::showLeading(const playback_position& position)
{
    const animation& leading = shownAnimation();
    for (const auto& rig : m_rigs)
    {
        const animation& own = rig->pose.shownAnimation();
        if (!rig->pose.hasAnimation())
            continue;
        const playback_position place = own.source() == leading.source()
                                            ? position
                                            : positionAt(m_seconds, {own.frameRate(), own.endTime(), own.frameCount()});
        rig->pose.show(place.frame, place.fraction);
    }
    updatePalettes();
}

void posed_scene::updatePalettes()
{
    for (std::size_t i = 0; i < m_rigs.size(); ++i) // a mount comes before what it carries
    {
        const int mount = m_rigs[i]->mount;
        m_rigs[i]->update(mount >= 0 && static_cast<std::size_t>(mount) < i ? &at(mount) : nullptr);
    }
}

const posed_scene::rig_state& posed_scene::at(int rig) const
{
    const std::size_t none = m_rigs.size() - 1;
    return *m_rigs[rig < 0 ? none : std::min(static_cast<std::size_t>(rig), none)];
}

std::span<const gpu_matrix, max_bones> posed_scene::inverse(int rig) const
{
    return std::span<const gpu_matrix, max_bones>(at(rig).inverse);
}

std::span<const gpu_matrix, max_bones> posed_scene::transforms(int rig) const
{
    return std::span<const gpu_matrix, max_bones>(at(rig).transform);
}

const glm::mat4& posed_scene::palette(int rig, std::uint32_t bone) const
{
    return at(rig).palette[std::min<std::size_t>(bone, max_bones - 1)];
}

std::size_t posed_scene::fillSkeleton(std::span<gpu_line_vertex> target) const
{
    line_writer lines(target.first(std::min(target.size(), max_line_vertices)));
    const auto placeAt = [this](int rig, int bone) {
        return glm::vec3(at(rig).world[static_cast<std::size_t>(bone)][3]);
    };
    for (const joint_number& joint : m_joints)
        if (joint.parent >= 0)
            lines.add(placeAt(joint.rig, joint.parent), placeAt(joint.rig, joint.bone), bone_colour);
    for (const joint_number& joint : m_joints)
        lines.addCube(placeAt(joint.rig, joint.bone), joint_size, bone_colour);
    return lines.count();
}

std::size_t posed_scene::fillPoints(std::span<gpu_line_vertex> target) const
{
    line_writer lines(target.first(std::min(target.size(), max_line_vertices)));
    for (const point_number& point : m_points)
    {
        const glm::mat4 place = placeOf(point);
        for (int axis = 0; axis < 3; ++axis)
        {
            const glm::vec3 direction(place[axis]);
            const float length = glm::length(direction);
            if (length > 0)
                lines.addBar(glm::vec3(place[3]), direction / length, axis_length, axis_colours[axis]);
        }
    }
    return lines.count();
}

posed_place posed_scene::joint(std::size_t number) const
{
    const joint_number& own = m_joints[number];
    const rig_state& rig = at(own.rig);
    const auto bone = static_cast<std::size_t>(own.bone);
    return {rig.pose.joints()[bone].name, glm::vec3(rig.world[bone][3]), own.rig, own.bone};
}

posed_place posed_scene::point(std::size_t number) const
{
    const point_number& own = m_points[number];
    return {own.point->name, glm::vec3(placeOf(own)[3]), own.rig, own.bone};
}

glm::mat4 posed_scene::placeOf(const point_number& point) const
{
    const glm::mat4 place =
        point.bone >= 0 ? palette(point.rig, static_cast<std::uint32_t>(point.bone)) * point.place : point.place;
    return isUsable(place) ? place : glm::mat4(1);
}

int posed_scene::jointAt(const glm::mat4& world_to_clip, const glm::vec2& picture, const glm::vec2& pixel,
                         float within) const
{
    int nearest = -1;
    float least = within;
    float depth = 0;
    for (std::size_t i = 0; i < m_joints.size(); ++i)
    {
        const glm::vec4 clip = world_to_clip * glm::vec4(joint(i).place, 1);
        if (!(clip.w > 0))
            continue; // behind the eye
        const glm::vec2 place = (glm::vec2(clip.x, -clip.y) / clip.w * 0.5f + 0.5f) * picture;
        const float distance = glm::length(place - pixel);
        if (distance < least || (nearest >= 0 && distance == least && clip.w < depth))
        {
            nearest = static_cast<int>(i);
            least = distance;
            depth = clip.w;
        }
    }
    return nearest;
}

} // namespace korvane
