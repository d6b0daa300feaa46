#pragma once

// The parts of the guard, each added to the mesh of the texture set it uses. Used by figure.cpp only.

#include "tools/demo_data/humanoid_skeleton.h"
#include "tools/demo_data/mesh.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace korvane::demo
{

// One side of the body: 1 is the left (+x), -1 the right.
struct body_side
{
    double sign;
    std::string suffix; // "_l" or "_r"

    int bone(const std::string& name) const { return boneIndex(name + suffix); }
    vec3 at(const std::string& name) const { return humanoidBones()[static_cast<std::size_t>(bone(name))].position; }
};

[[nodiscard]] const body_side& leftSide();
[[nodiscard]] const body_side& rightSide();

// Bones by name, as a mesh_builder wants them.
[[nodiscard]] std::vector<int> bonesNamed(std::initializer_list<const char*> names);

// A round section with the given radius.
[[nodiscard]] section disc(vec3 centre, double radius);
void addBall(mesh_builder& out, vec3 centre, vec3 radii, bone_choice bones, int around = 14);

void addHead(mesh_builder& skin);
void addHelmet(mesh_builder& steel, mesh_builder& plume);
void addCuirass(mesh_builder& steel);
void addSkirt(mesh_builder& cloth, mesh_builder& leather);
void addBelt(mesh_builder& leather, mesh_builder& steel);
void addScarf(mesh_builder& cloth);
void addCape(mesh_builder& cape, mesh_builder& steel);
void addArm(const body_side& side, mesh_builder& skin, mesh_builder& cloth, mesh_builder& leather);
void addHand(const body_side& side, mesh_builder& skin);
void addPauldron(const body_side& side, mesh_builder& steel);
void addLeg(const body_side& side, mesh_builder& trousers, mesh_builder& leather, mesh_builder& steel);
void addShield(mesh_builder& front, mesh_builder& wood, mesh_builder& steel, mesh_builder& leather);

// Where a weapon is held, and what moves it.
struct weapon_grip
{
    vec3 hold;
    vec3 up, edge; // towards the point; towards the edge that strikes, across it
    std::vector<int> bones;
};
[[nodiscard]] weapon_grip handGrip(); // in the guard's right hand
[[nodiscard]] weapon_grip ownGrip();  // of a weapon without a skeleton: it is held where its space begins
void addSword(const weapon_grip& grip, mesh_builder& blade, mesh_builder& leather, mesh_builder& steel);
void addMace(const weapon_grip& grip, mesh_builder& wood, mesh_builder& leather, mesh_builder& steel);
void addSpear(mesh_builder& wood, mesh_builder& blade, mesh_builder& leather, mesh_builder& steel);

} // namespace korvane::demo
