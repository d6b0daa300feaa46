#pragma once

// Puts the models of a figure together: which skeleton moves each, and what hangs where. One use for each figure.

#include "Korvane/scene/figure.h"
#include "Korvane/scene/loaded_scene.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// A model that was read, and where the definition puts it.
struct figure_member
{
    std::shared_ptr<const scene_model> model;
    const figure_model* place = nullptr;
};

class figure_rigs
{
public:
    using rig_reader = std::function<scene_rig(const std::string& id)>;
    explicit figure_rigs(rig_reader reader) : m_reader(std::move(reader)) {}

    // A part for each, in their order; of parts only what says where they hang is set.
    [[nodiscard]] std::vector<scene_part> assemble(const std::vector<figure_member>& members);
    const std::vector<scene_rig>& rigs() const { return m_rigs; }
    // What could not be found, and what is wrong with skeletons; a line each.
    const std::vector<std::string>& problems() const { return m_problems; }

private:
    // Models whose skeletons stand together: the figure, and one for each figure that hangs on another.
    struct company
    {
        int outer = -1;                        // on which it hangs
        std::string slot;                      // in which it does
        std::vector<int> rigs = {};            // the first of an id counts
        std::vector<std::size_t> members = {}; // with skeletons
    };
    struct hook // a place to hang on
    {
        int rig = -1;
        int bone = -1;
        glm::mat4 place{1};
    };

    void placeMember(const std::vector<figure_member>& members, std::size_t number);
    int companyOf(const std::vector<figure_place>& places, std::size_t count) const;
    int openCompany(const std::vector<figure_member>& members, int outer, const figure_place& place,
                    const std::string& id);
    int findRig(int company, const std::string& id) const;
    int addRig(int company, const std::string& id);
    std::optional<hook> findHook(const std::vector<figure_member>& members, int company, const std::string& name);
    void hang(const std::vector<figure_member>& members, std::size_t number);
    const company& at(int number) const { return m_companies[static_cast<std::size_t>(number)]; }
    const scene_rig& rig(int number) const { return m_rigs[static_cast<std::size_t>(number)]; }
    void say(std::string line);

    rig_reader m_reader;
    std::vector<scene_rig> m_rigs;
    std::vector<company> m_companies{company{}};
    std::vector<scene_part> m_parts;
    std::vector<std::string> m_problems;
};

} // namespace korvane
