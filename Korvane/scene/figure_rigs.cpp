#include "Korvane/scene/figure_rigs.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/scene/scene_rigs.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace korvane
{

namespace
{

std::size_t hookCount(const figure_member& member)
{
    const std::vector<figure_place>& places = member.place->places;
    return static_cast<std::size_t>(std::count_if(
        places.begin(), places.end(), [](const figure_place& place) { return !place.attach_point.empty(); }));
}

} // namespace

// Models with skeletons come first, those that stand by themselves before those in slots: whatever hangs finds what it
// hangs on, in whichever order the definition names them.
std::vector<scene_part> figure_rigs::assemble(const std::vector<figure_member>& members)
{
    m_parts.resize(members.size());
    std::vector<std::size_t> order(members.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&members](std::size_t a, std::size_t b) {
        return hookCount(members[a]) < hookCount(members[b]);
    });
    for (const std::size_t number : order)
        if (members[number].model->has_skeleton)
            placeMember(members, number);
    for (std::size_t i = 0; i < members.size(); ++i)
    {
        m_parts[i].model = members[i].model;
        if (!members[i].place->places.empty())
            m_parts[i].slot = members[i].place->places.back().slot;
        if (!members[i].model->has_skeleton)
            hang(members, i);
    }
    return std::move(m_parts);
}

void figure_rigs::placeMember(const std::vector<figure_member>& members, std::size_t number)
{
    const std::vector<figure_place>& places = members[number].place->places;
    const std::string& id = members[number].model->skeleton_id;
    int own = companyOf(places, places.size());
    int found = findRig(own, id);
    // Another skeleton in a slot with an attachment point: the outermost such slot that opens no company yet.
    for (std::size_t i = 0; i < places.size() && found < 0; ++i)
        if (!places[i].attach_point.empty() && companyOf(places, i + 1) == own && companyOf(places, i) == own)
        {
            own = openCompany(members, own, places[i], id);
            break;
        }
    if (found < 0)
        found = addRig(own, id);
    m_parts[number].rig = found;
    m_companies[static_cast<std::size_t>(own)].members.push_back(number);
}

// That of the innermost of the first so many slots which has one.
int figure_rigs::companyOf(const std::vector<figure_place>& places, std::size_t count) const
{
    int current = 0;
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t k = 1; k < m_companies.size(); ++k)
            if (m_companies[k].slot == places[i].slot)
                current = static_cast<int>(k);
    return current;
}

int figure_rigs::openCompany(const std::vector<figure_member>& members, int outer, const figure_place& place,
                             const std::string& id)
{
    if (at(outer).rigs.empty()) // nothing to hang on: it stands by itself
        return outer;
    const std::optional<hook> found = findHook(members, outer, place.attach_point);
    if (!found)
        return outer;
    m_companies.push_back({outer, place.slot});
    const int own = static_cast<int>(m_companies.size()) - 1;
    scene_rig& fresh = m_rigs[static_cast<std::size_t>(addRig(own, id))];
    fresh.mount = found->rig;
    fresh.mount_bone = found->bone;
    fresh.mount_place = found->place;
    return own;
}

int figure_rigs::findRig(int company, const std::string& id) const
{
    for (; company >= 0; company = at(company).outer)
        for (const int number : at(company).rigs)
            if (equalsIgnoringCase(rig(number).id, id)) // the same file
                return number;
    return -1;
}

int figure_rigs::addRig(int company, const std::string& id)
{
    if (const int found = findRig(company, id); found >= 0)
        return found;
    const auto known = std::find_if(m_rigs.begin(), m_rigs.end(), [&id](const scene_rig& one) { return one.id == id; });
    scene_rig fresh;
    if (known == m_rigs.end())
        fresh = m_reader(id);
    else // the same skeleton once more, standing elsewhere
    {
        fresh = *known;
        fresh.mount = fresh.mount_bone = -1;
        fresh.mount_place = glm::mat4(1);
    }
    if (!fresh.problem.empty())
        say(fresh.problem);
    m_rigs.push_back(std::move(fresh));
    const int number = static_cast<int>(m_rigs.size()) - 1;
    m_companies[static_cast<std::size_t>(company)].rigs.push_back(number);
    return number;
}

// The attachment point of that name in the company's models, else the bone of that name. Without its skeleton a model
// stands in its bind pose, and the bone does not matter.
std::optional<figure_rigs::hook> figure_rigs::findHook(const std::vector<figure_member>& members, int company,
                                                       const std::string& name)
{
    for (const std::size_t number : at(company).members)
    {
        const scene_model& model = *members[number].model;
        const auto point = std::find_if(model.points.begin(), model.points.end(),
                                        [&name](const scene_point& one) { return equalsIgnoringCase(one.name, name); });
        if (point == model.points.end())
            continue;
        const int own = m_parts[number].rig;
        const int bone = rig(own).skeleton ? boneOf(*point, *rig(own).skeleton) : 0;
        if (bone < 0)
            continue;
        if (point->is_damaged)
            say(model.path + ": the attachment point \"" + displayText(name) +
                "\" is damaged: what hangs on it stands as its own file puts it");
        return hook{own, bone, point->place};
    }
    for (const int number : at(company).rigs)
        if (rig(number).skeleton)
            if (const int bone = findBone(*rig(number).skeleton, name); bone >= 0)
                return hook{number, bone, glm::mat4(1)};
    return std::nullopt;
}

void figure_rigs::hang(const std::vector<figure_member>& members, std::size_t number)
{
    const std::vector<figure_place>& places = members[number].place->places;
    for (std::size_t i = places.size(); i-- > 0;)
    {
        const std::string& wanted = places[i].attach_point;
        if (wanted.empty())
            continue;
        if (const std::optional<hook> found = findHook(members, companyOf(places, i), wanted))
        {
            m_parts[number].rig = found->rig;
            m_parts[number].bone = found->bone;
            m_parts[number].weapon = found->place;
            return;
        }
        say(members[number].model->path + ": the figure has no attachment point and no bone \"" + displayText(wanted) +
            "\" for it to hang on");
    }
}

void figure_rigs::say(std::string line)
{
    if (std::find(m_problems.begin(), m_problems.end(), line) == m_problems.end())
        m_problems.push_back(std::move(line));
}

} // namespace korvane
