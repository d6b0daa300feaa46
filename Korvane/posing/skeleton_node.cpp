#include "Korvane/posing/skeleton_node.h"

#include "Korvane/posing/transform.h"

namespace korvane
{

void skeleton_node::updateWorld()
{
    joint& own = *m_joint;
    own.local = transformMatrix(own.translation, own.rotation);
    if (!m_parent)
    {
        m_world_rotation = own.rotation;
        m_world_translation = own.translation;
        own.world = own.local;
        return;
    }
    m_world_rotation = followedBy(own.rotation, m_parent->m_world_rotation);
    m_world_translation = m_parent->m_world_translation + rotated(own.translation, m_parent->m_world_rotation);
    own.world = transformMatrix(m_world_translation, m_world_rotation);
}

bool skeleton_tree::build(std::span<joint> joints)
{
    m_nodes.clear();
    m_by_index.clear();
    m_order.clear();
    m_root = nullptr;
    m_nodes.reserve(joints.size()); // nodes refer to each other
    bool fits = true;
    for (joint& record : joints)
    {
        skeleton_node& node = m_nodes.emplace_back(record);
        if (!m_by_index.try_emplace(record.index, &node).second)
            fits = false;
        if (!m_root && record.index == 0 && record.parent == -1)
            m_root = &node;
    }
    if (!m_root && !joints.empty())
        fits = false;
    fits = linkParents() && fits;
    fits = cutRings() && fits;
    orderNodes();
    updateWorld();
    return fits;
}

bool skeleton_tree::linkParents()
{
    bool fits = true;
    for (skeleton_node& node : m_nodes)
    {
        node.m_root = m_root;
        const std::int32_t parent = node.parentIndex();
        if (parent == -1)
            continue;
        const skeleton_node* const found = parent < 0 ? nullptr : find(static_cast<std::uint32_t>(parent));
        if (found && found != &node)
            node.m_parent = found;
        else
            fits = false;
    }
    return fits;
}

// From every node upwards until a node that was seen before. Seen on the same walk: the nodes from there on are a ring.
bool skeleton_tree::cutRings()
{
    bool fits = true;
    std::vector<std::size_t> walk_of(m_nodes.size(), 0); // 0: not seen yet
    const auto number = [this](const skeleton_node* node) { return static_cast<std::size_t>(node - m_nodes.data()); };
    for (std::size_t i = 0; i < m_nodes.size(); ++i)
    {
        const skeleton_node* node = &m_nodes[i];
        for (; node && walk_of[number(node)] == 0; node = node->m_parent)
            walk_of[number(node)] = i + 1;
        if (!node || walk_of[number(node)] != i + 1)
            continue;
        fits = false;
        while (node)
        {
            skeleton_node& member = m_nodes[number(node)];
            node = member.m_parent;
            member.m_parent = nullptr;
        }
    }
    return fits;
}

void skeleton_tree::orderNodes()
{
    m_order.reserve(m_nodes.size());
    for (skeleton_node& node : m_nodes)
    {
        if (node.m_parent)
            m_nodes[static_cast<std::size_t>(node.m_parent - m_nodes.data())].m_children.push_back(&node);
        else
            m_order.push_back(&node);
    }
    for (std::size_t i = 0; i < m_order.size(); ++i) // grows while it is walked
        m_order.insert(m_order.end(), m_order[i]->m_children.begin(), m_order[i]->m_children.end());
}

void skeleton_tree::updateWorld()
{
    for (skeleton_node* const node : m_order)
        node->updateWorld();
}

const skeleton_node* skeleton_tree::find(std::uint32_t index) const
{
    const auto found = m_by_index.find(index);
    return found == m_by_index.end() ? nullptr : found->second;
}

} // namespace korvane
