#pragma once

// Which models of a definition make up its figure, and where each of them belongs. A slot's alternatives are the
// VARIANT_MESH and VARIANT_MESH_REFERENCE elements directly in it: one of them is shown, the first unless another one
// is chosen. Whatever stands in no slot is shown. Values; no file is read here.
//
// A slot is named by the path of the names of the slots around it and its own: "weapons/weapon_1". Where two of one
// place have the same name, the second is "weapon_1#2" and so on; a slot without a name is "slot".

#include "Korvane/archives/variant_mesh_def.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

// Which alternative a person wants to see: by a slot's path, counted from 0. Slots that are not named show their first
// one; a number that is too large means the last.
using figure_choice = std::map<std::string, std::size_t>;

// A slot around a model.
struct figure_place
{
    std::string slot;         // its path
    std::string attach_point; // as the definition says; empty: it says none
};

// A model of the figure.
struct figure_model
{
    figure_model(std::string internal_path, std::vector<figure_place> around = {}) // a path alone stands in no slot
        : path(std::move(internal_path))
        , places(std::move(around))
    {
    }

    std::string path;                 // internal, as normalInternalPath() gives it
    std::vector<figure_place> places; // the slots around it, the outermost first
};

// The models that are shown, in document order, in which they are drawn.
[[nodiscard]] std::vector<figure_model> figureModels(const variant_tag& root, const figure_choice& choice = {});

// A slot, and what may be shown in it. The tags belong to the definition.
struct figure_slot
{
    const variant_tag* tag = nullptr;
    std::string path;
    std::vector<const variant_tag*> alternatives;

    // What choice shows of it; 0 for a slot without alternatives.
    std::size_t shown(const figure_choice& choice) const;
    // How often the games fill the slot: 0 to 1; 1 where the definition does not say, or not in a number.
    double probability() const;
};

// All slots, also those in alternatives that are not shown, in document order.
[[nodiscard]] std::vector<figure_slot> figureSlots(const variant_tag& root);

} // namespace korvane
