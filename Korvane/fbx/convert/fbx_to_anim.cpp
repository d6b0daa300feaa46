#include "Korvane/fbx/convert/fbx_to_anim.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/fbx/container/fbx_document.h"
#include "Korvane/fbx/convert/anim_template.h"
#include "Korvane/fbx/convert/bone_matching.h"
#include "Korvane/fbx/convert/fbx_bone_sampler.h"
#include "Korvane/fbx/export/export_space.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <set>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t listed_names = 12;   // of bones in one line
constexpr std::size_t listed_errors = 100; // lines of one kind

// Movement that is worth a word: of a translation in metres, and of a rotation's cosine of the half angle.
constexpr double still_distance = 1e-4;
constexpr double still_cosine = 1 - 1e-6;

std::string numberText(double value)
{
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6);
    return std::string(text.data(), end.ptr);
}

std::string nameList(const std::vector<std::string>& names)
{
    std::string text;
    for (std::size_t i = 0; i < names.size() && i < listed_names; ++i)
        text += (i == 0 ? "" : ", ") + displayText(names[i]);
    return names.size() <= listed_names ? text : text + " and " + std::to_string(names.size() - listed_names) + " more";
}

std::string axisText(const fbx_axis& axis)
{
    return std::string(axis.sign < 0 ? "-" : "") + "XYZ"[axis.axis];
}

fbx_ticks later(fbx_ticks time, fbx_ticks by)
{
    constexpr fbx_ticks last = std::numeric_limits<fbx_ticks>::max();
    return by > 0 && time > last - by ? last : time + by;
}

class conversion
{
public:
    conversion(const anim_conversion& request, const work_port& work, anim_conversion_result& result)
        : m_request(request)
        , m_work(work)
        , m_result(result)
        , m_template(makeTemplate(*request.template_data, request.bone_selection))
    {
    }

    bool run(failure& why);

private:
    void log(const std::string& line) const { tell(m_work.log, line); }
    bool refuse(failure& why, failure_kind kind, std::string what) const
    {
        return fail(why, kind, std::move(what), m_request.fbx_path);
    }

    bool readFile(failure& why);
    void logUnit() const;
    bool chooseTake(failure& why);
    bool findTake(failure& why);
    void collectBones();
    bool match(failure& why);
    void logPrefix() const;
    void logNearest() const;
    void keepOwnValues(const anim_template::bone& bone, sampled_bone& target);
    void logDoubts() const;
    void warn();
    void makeHeader();
    bool chooseTimes(failure& why);
    bool checkSize(failure& why) const;
    bool sampleFrames(failure& why);
    bool storeFrame(std::span<const bone_place> places, failure& why);
    void watchMovement(std::size_t bone, const bone_place& place);
    void logLosses() const;

    const anim_conversion& m_request;
    const work_port& m_work;
    anim_conversion_result& m_result;
    anim_template m_template;
    fbx_scene m_scene;
    std::size_t m_take = fbx_none;
    std::vector<std::size_t> m_nodes; // the skeleton's, in the order of the tree
    bone_matching m_matching;
    std::vector<sampled_bone> m_bones;
    fbx_ticks m_first = 0; // the first frame's
    double m_rate = 0;
    std::uint32_t m_frame_count = 0;
    std::vector<bone_place> m_start;  // the first frame
    std::vector<glm::dquat> m_before; // the rotations of the frame before
    std::set<std::size_t> m_losses;   // bones that move without a track for it
};

bool conversion::readFile(failure& why)
{
    log("Reading .FBX file: " + m_request.fbx_path);
    log("Importimg Scene... ");
    fbx_document document;
    if (!readFbx(m_request.fbx, document, why) || !readScene(std::move(document), m_scene, why))
    {
        why.path = m_request.fbx_path;
        return false;
    }
    for (const std::string& note : m_scene.notes)
        log("note: " + note);
    return true;
}

void conversion::logUnit() const
{
    log("Performing unit/scale calculation...");
    log("One unit is " + numberText(m_scene.unit_metres) + " m; " + axisText(m_scene.up) + " points up, " +
        axisText(m_scene.front) + " to the front, " + axisText(m_scene.right) + " to the right");
}

// A take may be named "1", too: names come before numbers.
bool conversion::findTake(failure& why)
{
    const std::string& wanted = *m_request.take;
    std::vector<std::string> names;
    for (const fbx_stack& stack : m_scene.stacks)
        names.push_back(displayText(stack.name));
    m_take = static_cast<std::size_t>(std::find(names.begin(), names.end(), displayText(wanted)) - names.begin());
    if (m_take < names.size())
        return true;
    const auto [end, error] = std::from_chars(wanted.data(), wanted.data() + wanted.size(), m_take);
    if (error == std::errc() && end == wanted.data() + wanted.size() && m_take < names.size())
        return true;
    return refuse(why, failure_kind::not_found,
                  "there is no take \"" + displayText(wanted) + "\", " +
                      (names.empty() ? "nor any other" : "only: " + nameList(names)));
}

bool conversion::chooseTake(failure& why)
{
    log(std::to_string(m_scene.stacks.size()) + " number of animation stacks/takes...");
    m_take = 0;
    if (m_request.take && !findTake(why))
        return false;
    if (m_scene.stacks.empty())
    {
        m_take = fbx_none;
        log("There is no take: the bones are converted as they stand");
        return true;
    }
    m_result.take = m_scene.stacks[m_take].name;
    log("FBBX Animation Take " + std::to_string(m_take) + ": " + m_result.take);
    std::vector<std::string> others;
    for (std::size_t i = 0; i < m_scene.stacks.size(); ++i)
        if (i != m_take)
            others.push_back(m_scene.stacks[i].name);
    if (!others.empty())
        log(std::string(m_request.take ? "Only this take" : "Only the first take") +
            " is converted, not: " + nameList(others));
    return true;
}

void conversion::collectBones()
{
    log("Converting FBX bone hierachy (tree) to linear data");
    m_nodes = boneNodes(m_scene);
    std::size_t errors = 0;
    for (const std::size_t index : m_nodes)
    {
        const fbx_node& node = m_scene.nodes[index];
        const bool has_parent = node.parent != fbx_none && m_scene.nodes[node.parent].type == fbx_node_type::skeleton;
        if (!has_parent && index != m_nodes.front() && ++errors <= listed_errors) // the first bone is the root
            log("ERROR: bone : " + displayText(node.name) + " has no parent");
    }
    if (errors > listed_errors)
        log("The same holds for " + std::to_string(errors - listed_errors) + " more bones");
}

// A bone that the FBX file does not have stays as the template has it.
void conversion::keepOwnValues(const anim_template::bone& bone, sampled_bone& target)
{
    m_result.unmatched.push_back(bone.name);
    log("EROOR: .ANMIM. Bone '" + displayText(bone.name) +
        "' does not match any bones in FBX file: " + m_request.fbx_path);
    if (bone.translation)
        target.own_translation = *bone.translation / m_scene.unit_metres;
    if (bone.rotation)
        target.own_rotation = *bone.rotation;
}

bool conversion::match(failure& why)
{
    std::vector<std::string> names;
    for (const anim_template::bone& bone : m_template.bones)
        names.push_back(bone.name);
    m_matching = matchBones(names, m_scene, m_nodes, m_request.prefix);
    m_result.prefix = m_matching.prefix;
    logPrefix();
    for (std::size_t i = 0; i < m_template.bones.size(); ++i)
    {
        const anim_template::bone& bone = m_template.bones[i];
        sampled_bone& target = m_bones.emplace_back();
        target.parent = bone.parent;
        target.node = m_matching.nodes[i];
        if (target.node == fbx_none)
            keepOwnValues(bone, target);
        if (bone.has_translations || bone.has_rotations)
        {
            ++m_result.moving_count;
            m_result.moving_matched += target.node != fbx_none;
        }
    }
    logNearest();
    logDoubts();
    if (m_matching.matchedCount() > 0)
        return true;
    const std::string text = "ERROR: Skeletons do not match, have you selected right files";
    log(text);
    return refuse(why, failure_kind::refused, text);
}

void conversion::logPrefix() const
{
    if (m_matching.prefix.empty())
        return;
    const bool is_there = std::any_of(m_nodes.begin(), m_nodes.end(), [this](std::size_t node) {
        return displayText(m_scene.nodes[node].name).starts_with(m_matching.prefix);
    });
    log(is_there ? "The prefix \"" + m_matching.prefix + "\" is taken off the names of the FBX file's bones"
                 : "No bone of the FBX file begins with the prefix \"" + m_matching.prefix + "\"");
}

// With nothing near the person sees at least how names look on both sides.
void conversion::logNearest() const
{
    const std::vector<std::string> nearest = nearestBones(m_result.unmatched, m_matching.surplus);
    std::vector<std::string> pairs;
    for (std::size_t i = 0; i < nearest.size(); ++i)
        if (!nearest[i].empty())
            pairs.push_back("'" + displayText(m_result.unmatched[i]) + "' and '" + nearest[i] + "'");
    if (!pairs.empty())
        log("Nearest names, in the template and in the FBX file: " + nameList(pairs));
    else if (m_matching.matchedCount() == 0 && !m_result.unmatched.empty())
        log("No names are near each other; the template has for example: " + nameList(m_result.unmatched));
}

void conversion::logDoubts() const
{
    std::vector<std::string> homeless;
    for (std::size_t i = 0; i < m_bones.size(); ++i)
        if (m_bones[i].node == fbx_none && !m_template.bones[i].translation && !m_template.bones[i].rotation)
            homeless.push_back(m_template.bones[i].name);
    if (m_nodes.empty())
        log("There are no bones in the FBX file");
    if (!m_matching.surplus.empty())
        log("Bones of the FBX file that the template does not have: " + nameList(m_matching.surplus));
    if (!m_matching.told_apart.empty())
        log("Several bones of the FBX file have the same name, those among the template's other bones are taken: " +
            nameList(m_matching.told_apart));
    if (!m_matching.doubtful.empty())
        log("Several bones of the FBX file have the same name, the first one is taken: " +
            nameList(m_matching.doubtful));
    if (!homeless.empty() && homeless.size() < m_bones.size())
        log("The template does not say either where these stand, they are put where their parents are: " +
            nameList(homeless));
}

// A file in which hardly anything moves is no success to a person. What the take moves counts only as far as the
// template lacks it: rigs have many bones that only move others.
void conversion::warn()
{
    std::string& warning = m_result.warning;
    if (m_result.moving_matched * 2 < m_result.moving_count)
        warning = "Less than half of the bones that move match: " + std::to_string(m_result.moving_matched) + " of " +
                  std::to_string(m_result.moving_count) + "; the others stand still";
    else if (m_take != fbx_none && !m_result.unmatched.empty())
    {
        const std::vector<bool> moved = movedNodes(m_scene, m_scene.stacks[m_take]);
        std::size_t moving = 0, matched = 0;
        for (const std::size_t node : m_nodes)
            moving += moved[node];
        for (const std::size_t node : m_matching.nodes)
            matched += node != fbx_none && moved[node];
        if (matched * 2 < moving)
            warning = "Less than half of the bones that move in the FBX file match: " + std::to_string(matched) +
                      " of " + std::to_string(moving) + "; what the others do is lost";
    }
    if (!warning.empty())
        log(warning);
}

void conversion::makeHeader()
{
    const anim_data& source = *m_request.template_data;
    anim_output& anim = m_result.anim;
    anim.header_word = source.header_word;
    anim.skeleton_name = source.skeleton_name;
    for (const anim_template::bone& bone : m_template.bones)
        anim.bones.push_back({bone.name, bone.parent});
    anim.translation_map = m_template.translation_map;
    anim.rotation_map = m_template.rotation_map;
    anim.translation_scale = m_scene.unit_metres;
    anim.layout = m_request.layout;
    anim.static_translations = source.static_translations;
    anim.static_rotations = source.static_rotations;
    anim.frame_rate = static_cast<float>(m_rate);
}

bool conversion::checkSize(failure& why) const
{
    if (!(m_rate >= slowest_converted_rate && m_rate <= fastest_converted_rate))
        return refuse(why, failure_kind::refused,
                      numberText(m_rate) + " frames a second are no rate that can be converted");
    const std::size_t moved = m_template.translationCount(), turned = m_template.rotationCount();
    const std::uint64_t frame_bytes = 12 * moved + 8 * turned;
    const std::string asked = std::to_string(m_frame_count) + " frames";
    const std::uint32_t limit = frame_bytes == 0 ? anim_file::max_trackless_frames : max_converted_frames;
    if (m_frame_count > limit)
        return refuse(why, failure_kind::refused,
                      asked + " are more than the " + std::to_string(limit) +
                          " that can be converted: choose a lower rate or an earlier end");
    if (m_frame_count * frame_bytes > max_converted_bytes)
        return refuse(why, failure_kind::refused,
                      asked + " of " + std::to_string(frame_bytes) + " bytes (" + std::to_string(moved) +
                          " translations, " + std::to_string(turned) + " rotations) are more than the " +
                          std::to_string(max_converted_bytes >> 20) +
                          " MiB that can be converted: choose a lower rate or an earlier end");
    return true;
}

bool conversion::chooseTimes(failure& why)
{
    fbx_ticks first = 0, last = 0;
    const bool has_keys = m_take != fbx_none && m_scene.keySpan(m_scene.stacks[m_take], first, last);
    if (m_take != fbx_none && !has_keys)
    {
        log("The take has no keys: nothing moves");
        first = m_scene.stacks[m_take].begin;
        last = m_scene.stacks[m_take].end;
    }
    m_first = m_request.start_seconds ? m_scene.ticks(*m_request.start_seconds) : first;
    m_rate = m_request.frame_rate.value_or(m_scene.frames_per_second);
    double end_time = std::max(m_scene.seconds(last) - m_scene.seconds(m_first), 0.0);
    if (m_request.end_time)
        end_time = *m_request.end_time;
    if (m_request.frame_count)
        end_time = std::max(*m_request.frame_count - 1.0, 0.0) / m_rate;
    m_frame_count = m_request.frame_count.value_or(frameCount(m_rate, end_time));
    m_result.anim.end_time = static_cast<float>(end_time);
    if (m_take != fbx_none && m_first > last)
        log("The start lies behind the end of the take: nothing moves");
    if (has_keys)
        log("The take's keys lie between " + numberText(m_scene.seconds(first)) + " and " +
            numberText(m_scene.seconds(last)) + " seconds");
    log(counted(m_frame_count, "frame") + " at " + numberText(m_rate) + " a second, from " +
        numberText(m_scene.seconds(m_first)) + " seconds on");
    return checkSize(why);
}

bool conversion::sampleFrames(failure& why)
{
    fbx_bone_sampler sampler(m_scene, m_take, m_bones);
    if (!sampler.hasAxes())
        log("The axes of the FBX file contradict each other: Y is taken for up");
    m_before.assign(m_bones.size(), glm::dquat(1, 0, 0, 0));
    m_result.anim.frames.reserve(m_frame_count);
    for (std::uint32_t frame = 0; frame < m_frame_count; ++frame)
    {
        if (m_work.isStopped())
            return fail(why, failure_kind::refused, "stopped before frame " + std::to_string(frame));
        if (!storeFrame(sampler.sample(later(m_first, m_scene.ticks(frame / m_rate))), why))
            return false;
        if (frame % 256 == 255)
            m_work.report(frame + 1, m_frame_count);
    }
    return true;
}

bool conversion::storeFrame(std::span<const bone_place> places, failure& why)
{
    anim_output::frame& frame = m_result.anim.frames.emplace_back();
    if (m_start.empty())
        m_start.assign(places.begin(), places.end());
    for (std::uint32_t i = 0; i < places.size(); ++i)
    {
        const glm::vec3 translation(places[i].translation);
        glm::dquat rotation = places[i].rotation;
        if (glm::dot(rotation, m_before[i]) < 0) // the same rotation, next to that of the frame before
            rotation = -rotation;
        const glm::quat stored(rotation);
        if (!isFinite(translation) || !isFinite(stored) ||
            !isFinite(glm::vec3(places[i].translation * m_scene.unit_metres)))
            return refuse(why, failure_kind::malformed,
                          "where the take puts the bone " + m_template.bones[i].name + " in frame " +
                              std::to_string(m_result.anim.frames.size() - 1) + " is no number");
        if (m_template.bones[i].has_translations)
            frame.translations.emplace_hint(frame.translations.end(), i, translation);
        if (m_template.bones[i].has_rotations)
            frame.rotations.emplace_hint(frame.rotations.end(), i, stored);
        m_before[i] = rotation;
        watchMovement(i, places[i]);
    }
    return true;
}

void conversion::watchMovement(std::size_t bone, const bone_place& place)
{
    const bone_place& start = m_start[bone];
    const anim_template::bone& target = m_template.bones[bone];
    const double distance = glm::length(place.translation - start.translation) * m_scene.unit_metres;
    if ((!target.has_translations && distance > still_distance) ||
        (!target.has_rotations && std::abs(glm::dot(place.rotation, start.rotation)) < still_cosine))
        m_losses.insert(bone);
}

// What an animator would miss in the file.
void conversion::logLosses() const
{
    std::vector<std::string> moving, fixed;
    for (const std::size_t bone : m_losses)
        moving.push_back(m_template.bones[bone].name);
    for (const anim_template::bone& bone : m_template.bones)
        if (bone.has_static_value)
            fixed.push_back(bone.name);
    if (!moving.empty())
        log("These bones move or turn in the take, but the template has no track for it: " + nameList(moving));
    const bool keeps_fixed = m_request.version == 7 && m_request.layout == anim_layout::games;
    if (!fixed.empty() && !keeps_fixed)
        log((m_request.version == 7
                 ? "Static values of the template are not written, but the maps go on naming them, and the new file "
                   "has "
                   "others in their place; with the skeleton as template every bone has its own track: "
                 : "Static values of the template are not written, these bones stand as their skeleton has them: ") +
            nameList(fixed));
}

bool conversion::run(failure& why)
{
    if (!checkParents(*m_request.template_data, why))
    {
        log("ERROR: the template is damaged: " + describe(why));
        return false;
    }
    if (!readFile(why))
        return false;
    logUnit();
    if (!chooseTake(why))
        return false;
    collectBones();
    if (!m_template.unknown.empty())
        log("Not in the template, though in the bone table: " + nameList(m_template.unknown));
    if (!match(why) || !chooseTimes(why))
        return false;
    makeHeader();
    if (!sampleFrames(why))
        return false;
    logLosses();
    log("FBX conversion process completed");
    if (m_request.version == 7 && m_request.layout == anim_layout::tools)
        log("Files of version 7 are written as the games' tools take them: this program does not read them back; in "
            "the "
            "layout \"games\" it does");
    warn();
    return true;
}

} // namespace

bool convertToAnim(const anim_conversion& request, const work_port& work, anim_conversion_result& result, failure& why)
{
    result = {};
    return conversion(request, work, result).run(why);
}

bool convertToAnimFile(const anim_conversion& request, const std::string& output_path, const work_port& work,
                       anim_conversion_result& result, failure& why)
{
    tell(work.log, "Starting new Anim File....");
    const bool is_done = convertToAnim(request, work, result, why) &&
                         writeAnim(result.anim, request.version, output_path, result.said, why);
    tell(work.log, is_done ? "Sucess!" : "Failure");
    return is_done;
}

} // namespace korvane
