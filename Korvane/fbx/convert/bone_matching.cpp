#include "Korvane/fbx/convert/bone_matching.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace korvane
{

namespace
{

constexpr std::size_t compared_names = 512; // of a file that has thousands, no more are looked at for near ones
constexpr std::size_t most_namespaces = 64;

bool isWordCharacter(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x80 || (byte >= '0' && byte <= '9') || ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z');
}

std::string_view behind(std::string_view name, std::string_view prefix)
{
    const bool has_more = name.size() > prefix.size() && name.starts_with(prefix);
    return has_more ? name.substr(prefix.size()) : name;
}

// What all names begin with, so far that something is left of each.
std::string commonBeginning(const std::vector<std::string>& names)
{
    std::string common = names.empty() ? std::string() : names.front();
    for (const std::string& name : names)
    {
        const auto differs = std::mismatch(common.begin(), common.end(), name.begin(), name.end()).first;
        common.erase(differs, common.end());
    }
    return common;
}

// "a:b:" and "a:" of "a:b:arm"; of what all begin with, what ends behind a word: "Bip01_".
std::vector<std::string> possiblePrefixes(const std::vector<std::string>& names)
{
    std::vector<std::string> prefixes;
    std::set<std::string> known;
    const auto add = [&](std::string prefix) {
        if (known.size() < most_namespaces && known.insert(prefix).second)
            prefixes.push_back(std::move(prefix));
    };
    const std::string common = commonBeginning(names);
    for (std::size_t end = common.size(); end > 0; --end)
        if (!isWordCharacter(common[end - 1]))
            add(common.substr(0, end));
    for (const std::string& name : names)
        for (std::size_t colon = name.find(':'); colon != std::string::npos; colon = name.find(':', colon + 1))
            add(name.substr(0, colon + 1));
    return prefixes;
}

std::size_t matchesWith(std::string_view prefix, const std::vector<std::string>& names,
                        const std::unordered_set<std::string_view>& wanted)
{
    std::unordered_set<std::string_view> found;
    for (const std::string& name : names)
        if (const auto match = wanted.find(behind(name, prefix)); match != wanted.end())
            found.insert(*match);
    return found.size();
}

std::string bestPrefix(const std::vector<std::string>& names, const std::unordered_set<std::string_view>& wanted)
{
    std::string best;
    std::size_t most = matchesWith({}, names, wanted);
    for (const std::string& prefix : possiblePrefixes(names))
        if (const std::size_t matches = matchesWith(prefix, names, wanted); matches > most)
        {
            most = matches;
            best = prefix;
        }
    return best;
}

std::string letters(std::string_view name) // without a namespace
{
    std::string text;
    for (const char character : toLower(name.substr(name.rfind(':') + 1)))
        if (isWordCharacter(character))
            text += character;
    return text;
}

bool changes(const fbx_scene& scene, const fbx_curve_node& curve_node)
{
    for (const std::size_t index : curve_node.curves)
    {
        if (index == fbx_none)
            continue;
        const std::vector<double>& values = scene.curves[index].values;
        if (std::any_of(values.begin(), values.end(), [&](double value) { return value != values[0]; }))
            return true;
    }
    return false;
}

// How many bones whose names stand once in the file, and in the template, are above and below a bone: a rider's head is
// among his bones, his horse's is not.
class bone_company
{
public:
    bone_company(const fbx_scene& scene, const std::vector<std::size_t>& nodes,
                 const std::unordered_map<std::string_view, std::vector<std::size_t>>& by_name)
        : m_scene(scene)
        , m_below(scene.nodes.size(), 0)
        , m_above(scene.nodes.size(), 0)
    {
        std::vector<bool> is_sure(scene.nodes.size(), false);
        for (const auto& [name, same] : by_name)
            is_sure[same.front()] = same.size() == 1;
        // Parents stand before their children, but there may be others between them that are no bones.
        for (std::size_t i = nodes.size(); i-- > 0;)
            if (is_sure[nodes[i]])
                for (std::size_t at = nodes[i], steps = 0; at != fbx_none && steps < nodes.size(); ++steps)
                {
                    ++m_below[at];
                    at = scene.nodes[at].parent;
                }
        for (const std::size_t node : nodes)
            for (std::size_t at = scene.nodes[node].parent; at != fbx_none; at = scene.nodes[at].parent)
                m_above[node] += is_sure[at];
    }

    std::size_t choose(const std::vector<std::size_t>& same) const
    {
        std::size_t best = same.front();
        for (const std::size_t node : same)
            best = isBetter(node, best) ? node : best;
        return best;
    }
    bool tellsApart(const std::vector<std::size_t>& same) const
    {
        const std::size_t best = choose(same);
        return std::all_of(same.begin(), same.end(),
                           [&](std::size_t node) { return node == best || isBetter(best, node); });
    }

private:
    // What stands above a whole rider has all his bones below it: there the lower one counts, if it has any of them.
    bool isBetter(std::size_t node, std::size_t other) const
    {
        if (isBelow(node, other))
            return m_below[node] > 0;
        if (isBelow(other, node))
            return m_below[other] == 0;
        return companyOf(node) > companyOf(other);
    }
    std::size_t companyOf(std::size_t node) const { return m_below[node] + m_above[node]; }
    bool isBelow(std::size_t node, std::size_t above) const
    {
        for (std::size_t at = m_scene.nodes[node].parent; at != fbx_none; at = m_scene.nodes[at].parent)
            if (at == above)
                return true;
        return false;
    }

    const fbx_scene& m_scene;
    std::vector<std::size_t> m_below, m_above;
};

} // namespace

std::size_t bone_matching::matchedCount() const
{
    return nodes.size() - static_cast<std::size_t>(std::count(nodes.begin(), nodes.end(), fbx_none));
}

std::vector<std::size_t> boneNodes(const fbx_scene& scene)
{
    std::vector<std::size_t> bones;
    std::vector<std::size_t> open(scene.roots.rbegin(), scene.roots.rend());
    while (!open.empty())
    {
        const fbx_node& node = scene.nodes[open.back()];
        if (node.type == fbx_node_type::skeleton)
            bones.push_back(open.back());
        open.pop_back();
        open.insert(open.end(), node.children.rbegin(), node.children.rend());
    }
    return bones;
}

bone_matching matchBones(const std::vector<std::string>& template_names, const fbx_scene& scene,
                         const std::vector<std::size_t>& nodes, const std::optional<std::string>& prefix)
{
    std::vector<std::string> wanted_names, names;
    for (const std::string& name : template_names)
        wanted_names.push_back(displayText(name));
    for (const std::size_t node : nodes)
        names.push_back(displayText(scene.nodes[node].name));
    const std::unordered_set<std::string_view> wanted(wanted_names.begin(), wanted_names.end());
    bone_matching result;
    result.prefix = prefix ? displayText(*prefix) : bestPrefix(names, wanted);
    std::unordered_map<std::string_view, std::vector<std::size_t>> by_name;
    for (std::size_t i = 0; i < nodes.size(); ++i)
    {
        const std::string_view name = behind(names[i], result.prefix);
        if (wanted.contains(name))
            by_name[name].push_back(nodes[i]);
        else
            result.surplus.push_back(names[i]);
    }
    const bone_company company(scene, nodes, by_name);
    for (const std::string& name : wanted_names)
    {
        const auto found = by_name.find(name);
        result.nodes.push_back(found == by_name.end() ? fbx_none : company.choose(found->second));
        if (found != by_name.end() && found->second.size() > 1)
            (company.tellsApart(found->second) ? result.told_apart : result.doubtful).push_back(name);
    }
    for (std::vector<std::string>* const list : {&result.told_apart, &result.doubtful})
    {
        std::sort(list->begin(), list->end());
        list->erase(std::unique(list->begin(), list->end()), list->end());
    }
    return result;
}

std::vector<std::string> nearestBones(const std::vector<std::string>& names, const std::vector<std::string>& others)
{
    std::vector<std::string> known;
    for (std::size_t i = 0; i < std::min(others.size(), compared_names); ++i)
        known.push_back(letters(others[i]));
    std::vector<std::string> nearest;
    for (const std::string& name : names)
    {
        const std::string wanted = letters(name);
        std::string found = nearestName(wanted, known);
        if (found.empty() && wanted.size() >= 3) // "arm" and "arm_deform"
            for (const std::string& each : known)
                if (found.empty() && each.size() >= 3 && (each.ends_with(wanted) || each.starts_with(wanted)))
                    found = each;
        const auto place = std::find(known.begin(), known.end(), found);
        nearest.push_back(found.empty() ? std::string() : others[static_cast<std::size_t>(place - known.begin())]);
    }
    return nearest;
}

std::vector<bool> movedNodes(const fbx_scene& scene, const fbx_stack& take)
{
    std::vector<bool> moved(scene.nodes.size(), false);
    for (const fbx_animation_layer& layer : take.layers)
        for (const fbx_curve_node& curve_node : layer.curve_nodes)
            if (curve_node.node != fbx_none && !moved[curve_node.node] &&
                (curve_node.property == fbx_property::translation || curve_node.property == fbx_property::rotation))
                moved[curve_node.node] = changes(scene, curve_node);
    return moved;
}

} // namespace korvane
