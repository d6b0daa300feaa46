#include "Korvane/presenters/fbx_report.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace korvane
{

namespace
{

// At most two digits behind the point, which most lengths of takes and units have.
std::string shortNumber(double number)
{
    return floatText(static_cast<float>(std::round(number * 100) / 100));
}

bool isMesh(const fbx_node& node)
{
    return node.type == fbx_node_type::mesh && node.mesh != fbx_none;
}

std::string nameOf(const std::string& name)
{
    return name.empty() ? "(without a name)" : displayText(name);
}

std::string meshText(const fbx_scene& scene, const fbx_node& node)
{
    const fbx_mesh& mesh = scene.meshes[node.mesh];
    std::string text = nameOf(node.name) + ": " + counted(mesh.pointCount(), "control point") + ", " +
                       counted(mesh.polygon_ends.size(), "polygon");
    for (const std::string& material : node.materials)
        text += (&material == &node.materials.front() ? ", material " : ", ") + nameOf(material);
    return text;
}

// Skeleton nodes below the node.
std::size_t bonesBelow(const fbx_scene& scene, std::size_t top)
{
    std::size_t count = 0;
    std::vector<std::size_t> open = scene.nodes[top].children;
    while (!open.empty())
    {
        const fbx_node& node = scene.nodes[open.back()];
        open.pop_back();
        count += node.type == fbx_node_type::skeleton ? 1 : 0;
        open.insert(open.end(), node.children.begin(), node.children.end());
    }
    return count;
}

std::string takeText(const fbx_scene& scene, const fbx_stack& stack)
{
    fbx_ticks first = 0;
    fbx_ticks last = 0;
    std::string text = nameOf(stack.name) + ": ";
    if (!scene.keySpan(stack, first, last))
        return text + "no keys";
    const double seconds = scene.seconds(last) - scene.seconds(first);
    const double frames = std::floor(seconds * scene.frames_per_second + 1e-6) + 1;
    text += shortNumber(seconds) + " s";
    if (frames < 1e9)
        text += ", " + counted(static_cast<std::uint64_t>(frames), "frame") + " at " +
                shortNumber(scene.frames_per_second) + " a second";
    return text;
}

std::string_view kindOf(const fbx_node& node)
{
    static constexpr std::array<std::string_view, 6> kinds = {"mesh",  "skeleton node", "camera",
                                                              "light", "group",         "other"};
    return kinds[static_cast<std::size_t>(node.type)];
}

std::string lengthText(double metres)
{
    if (metres >= 1)
        return shortNumber(metres) + " m";
    return metres >= 0.0001 ? shortNumber(metres * 100) + " cm" : floatText(static_cast<float>(metres)) + " m";
}

std::string summaryOf(const fbx_scene& scene)
{
    return "One unit is " + lengthText(scene.unit_metres) + ", up is " + (scene.up.sign < 0 ? "-" : "+") +
           "XYZ"[scene.up.axis] + ".";
}

} // namespace

fbx_report::fbx_report(const std::string& path, const fbx_scene& scene) : m_path(path), m_entries(1)
{
    addTop(scene);
    addTakes(scene);
    addDeeper(scene);
    addNotes(scene);
}

tree_model::node fbx_report::add(node parent, std::string text)
{
    m_entries.push_back({std::move(text)});
    m_entries[parent].children.push_back(m_entries.size() - 1);
    return m_entries.size() - 1;
}

void fbx_report::addTop(const fbx_scene& scene)
{
    std::vector<std::size_t> meshes;
    std::vector<std::size_t> skeletons;
    for (const std::size_t root : scene.roots)
        if (isMesh(scene.nodes[root]))
            meshes.push_back(root);
        else if (scene.nodes[root].type == fbx_node_type::skeleton)
            skeletons.push_back(root);
    const std::string mesh_count = counted(meshes.size(), "mesh", "meshes");
    const std::string skeleton_count = counted(skeletons.size(), "skeleton node");
    const std::string name = displayText(fileName(m_path));
    m_status = name + ": " + mesh_count + ", " + skeleton_count + " at the top of the scene. No model was made of it.";
    m_summary = name + ": " + mesh_count + ", " + skeleton_count + ", " + counted(scene.stacks.size(), "take") + ". " +
                summaryOf(scene);

    const node mesh_list = add(root, "At the top of the scene: " + mesh_count);
    for (const std::size_t mesh : meshes)
        add(mesh_list, meshText(scene, scene.nodes[mesh]));
    const node skeleton_list = add(root, "At the top of the scene: " + skeleton_count);
    for (const std::size_t skeleton : skeletons)
    {
        const std::size_t below = bonesBelow(scene, skeleton);
        add(skeleton_list,
            nameOf(scene.nodes[skeleton].name) + (below == 0 ? "" : ": " + counted(below, "bone") + " below it"));
    }
}

void fbx_report::addTakes(const fbx_scene& scene)
{
    const node list = add(root, "Animation: " + counted(scene.stacks.size(), "take"));
    for (const fbx_stack& stack : scene.stacks)
        add(list, takeText(scene, stack));
}

// What a person looks for when a mesh is missing among the imported ones: it hangs below a group.
void fbx_report::addDeeper(const fbx_scene& scene)
{
    std::array<std::size_t, 3> counts{}; // meshes, skeleton nodes, others
    std::vector<std::size_t> deeper;
    for (std::size_t i = 0; i < scene.nodes.size(); ++i)
    {
        const fbx_node& node = scene.nodes[i];
        if (node.parent == fbx_none)
            continue;
        deeper.push_back(i);
        ++counts[isMesh(node) ? 0 : node.type == fbx_node_type::skeleton ? 1 : 2];
    }
    if (deeper.empty())
        return;
    const node list = add(root, "Deeper, not imported: " + counted(counts[0], "mesh", "meshes") + ", " +
                                    counted(counts[1], "skeleton node") + ", " + counted(counts[2], "other node"));
    m_entries[list].is_open = counts[0] > 0;
    m_entries[list].is_left_out = true;
    std::stable_partition(deeper.begin(), deeper.end(), [&](std::size_t i) { return isMesh(scene.nodes[i]); });
    for (const std::size_t i : deeper)
        m_entries[add(list, nameOf(scene.path(i)) + " (" + std::string(kindOf(scene.nodes[i])) + ")")].is_left_out =
            true;
}

void fbx_report::addNotes(const fbx_scene& scene)
{
    if (scene.notes.empty())
        return;
    const node list = add(root, "Left out while reading");
    for (const std::string& note : scene.notes)
        add(list, displayText(note));
}

std::size_t fbx_report::childCount(node parent) const
{
    return parent < m_entries.size() ? m_entries[parent].children.size() : 0;
}

row_mark fbx_report::mark(node of) const
{
    return of < m_entries.size() && m_entries[of].is_left_out ? row_mark::dimmed : row_mark::plain;
}

std::string fbx_report::copyText() const
{
    std::string text = m_summary + "\r\n";
    for (const node list : m_entries.empty() ? std::vector<node>() : m_entries[root].children)
    {
        text += m_entries[list].text + "\r\n";
        for (const node row : m_entries[list].children)
            text += "  " + m_entries[row].text + "\r\n";
    }
    return text;
}

bool readFbxReport(const std::string& path, std::span<const std::byte> bytes, fbx_report& report, failure& why)
{
    fbx_document document;
    fbx_scene scene;
    if (!readFbx(bytes, document, why) || !readScene(std::move(document), scene, why))
        return false;
    report = fbx_report(path, scene);
    return true;
}

} // namespace korvane
