#pragma once

// The guard: a foot soldier in armour with helmet, cape, shield and sword, about 1.8 metres high, rigged to the
// skeleton of humanoid_skeleton.h. It stands on y = 0 and looks along -z; sword in the right hand, at -x.

#include "tools/demo_data/mesh.h"

#include <string>
#include <vector>

namespace korvane::demo
{

struct figure_part
{
    std::string name;    // of the group
    std::string texture; // of the set of textures: "guard_steel"
    mesh shape;
};

// density multiplies rows and columns: 1 is LOD 0.
[[nodiscard]] std::vector<figure_part> buildGuard(double density);

// The same guard in pieces, each in its place on the whole figure. The spear is for the sword's hand; buildGuard leaves
// it out.
enum class guard_piece
{
    body,
    cape,
    head, // with the helmet
    shield,
    sword,
    spear,
    loose_sword, // these two hold on no skeleton: the grip is where their space begins, the point is above it
    loose_mace
};

[[nodiscard]] std::vector<figure_part> buildGuardPiece(guard_piece piece, double density);

} // namespace korvane::demo
