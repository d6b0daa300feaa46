#pragma once

// The page "FBX": what opening an FBX file has read, as a tree of names and counts. The import itself is what stands
// first: the meshes and skeleton nodes that are direct children of the scene's root; then the takes, what lies deeper,
// which is not imported, and what could not be read. A value of its own, made by a worker; texts are UTF-8.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/tree_model.h"
#include "Korvane/fbx/scene/fbx_scene.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

class fbx_report : public tree_model
{
public:
    fbx_report() = default; // empty
    fbx_report(const std::string& path, const fbx_scene& scene);

    bool hasFile() const { return !m_path.empty(); }
    const std::string& path() const { return m_path; } // as it was opened
    // "walk.fbx: 1 mesh, 1 skeleton node, 2 takes. One unit is 1 cm, up is +Y."
    std::string summary() const { return m_summary; }
    // For the status line: what the import read.
    std::string status() const { return m_status; }
    // All of it, a line for each row, indented.
    std::string copyText() const;

    std::size_t childCount(node parent) const override;
    node child(node parent, std::size_t position) const override { return m_entries[parent].children[position]; }
    std::string text(node of) const override { return of < m_entries.size() ? m_entries[of].text : std::string(); }
    row_mark mark(node of) const override;
    bool isOpenAtFirst(node of) const override { return of < m_entries.size() && m_entries[of].is_open; }

private:
    struct entry
    {
        std::string text;
        bool is_open = true;
        bool is_left_out = false;
        std::vector<node> children = {};
    };
    node add(node parent, std::string text);
    void addTop(const fbx_scene& scene);
    void addTakes(const fbx_scene& scene);
    void addDeeper(const fbx_scene& scene);
    void addNotes(const fbx_scene& scene);

    std::string m_path;
    std::string m_summary;
    std::string m_status;
    std::vector<entry> m_entries; // by their numbers; the first is the root
};

// False, with the reason and the position, for what is no FBX file or a damaged one; the report stays as it is.
[[nodiscard]] bool readFbxReport(const std::string& path, std::span<const std::byte> bytes, fbx_report& report,
                                 failure& why);

} // namespace korvane
