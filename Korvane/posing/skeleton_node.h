#pragma once

// The tree of a skeleton's bones and their places in the world. A node stands for one joint, whose translation and
// rotation it reads; the joints belong to somebody else and must stay where they are in memory as long as the tree is
// used. One thread at a time.
//
// A skeleton whose table is damaged still gives a tree of what hangs together: a bone without a usable parent floats,
// which means that its place in the world is its own translation and rotation, and its children hang on it.

#include "Korvane/posing/joint.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

namespace korvane
{

class skeleton_node
{
public:
    explicit skeleton_node(joint& source) : m_joint(&source) {}

    const std::string& name() const { return m_joint->name; }
    std::int32_t index() const { return static_cast<std::int32_t>(m_joint->index); }
    std::int32_t parentIndex() const { return m_joint->parent; }
    const glm::vec3& translation() const { return m_joint->translation; }
    const glm::quat& rotation() const { return m_joint->rotation; }

    const skeleton_node* parent() const { return m_parent; } // null: the root, or a floating bone
    const skeleton_node* root() const { return m_root; }     // of the skeleton; null when it has none
    std::span<skeleton_node* const> children() const { return m_children; }

    const glm::vec3& worldTranslation() const { return m_world_translation; }
    const glm::quat& worldRotation() const { return m_world_rotation; }
    const glm::mat4& worldMatrix() const { return m_joint->world; }

private:
    friend class skeleton_tree;
    void updateWorld();

    joint* m_joint;
    const skeleton_node* m_parent = nullptr;
    const skeleton_node* m_root = nullptr;
    std::vector<skeleton_node*> m_children; // in the order of the joints
    glm::vec3 m_world_translation{0};
    glm::quat m_world_rotation{1, 0, 0, 0};
};

class skeleton_tree
{
public:
    skeleton_tree() = default;
    skeleton_tree(const skeleton_tree&) = delete;
    skeleton_tree& operator=(const skeleton_tree&) = delete;

    // Replaces the tree; the joints may stand in any order. The root is the bone with index 0 and parent -1. False when
    // something does not fit: no root, a parent that names no bone or the bone itself, bones in a ring (each of its
    // bones then floats), two bones of one index (the first is the one that children find). No joints make an empty
    // tree, which is fine.
    [[nodiscard]] bool build(std::span<joint> joints);

    // Fills the matrices of all joints and the world places of all nodes from the joints' translations and rotations.
    // Allocates nothing.
    void updateWorld();

    const skeleton_node* root() const { return m_root; }
    const skeleton_node* find(std::uint32_t index) const;            // of a bone; null when there is none
    std::span<const skeleton_node> nodes() const { return m_nodes; } // in the order of the joints

private:
    bool linkParents();
    bool cutRings();
    void orderNodes();

    std::vector<skeleton_node> m_nodes;
    std::unordered_map<std::uint32_t, skeleton_node*> m_by_index;
    std::vector<skeleton_node*> m_order; // parents before their children
    skeleton_node* m_root = nullptr;
};

} // namespace korvane
