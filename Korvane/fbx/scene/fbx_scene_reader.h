#pragma once

// The steps of readScene(), in their order; each is a file. Not for use outside this folder.

#include "Korvane/fbx/scene/fbx_objects.h"
#include "Korvane/fbx/scene/fbx_scene.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

struct fbx_scene_work
{
    fbx_document& document;
    fbx_object_table objects;
    fbx_scene scene;
    // For each object what became of it; fbx_none: nothing.
    std::vector<std::size_t> node_of;
    std::vector<std::size_t> mesh_of;
    std::vector<std::size_t> curve_of;

    bool isNumbered() const { return document.version >= 7000; }
    void note(std::string text) { addNote(scene.notes, std::move(text)); }
    std::string label(std::size_t object) const; // Geometry "body"
    // The failure of an object, or of its child of that name when there is one; always false.
    bool malformed(std::size_t object, std::string_view child, std::string what, failure& why) const;
};

void readSettings(fbx_scene_work& work);
[[nodiscard]] bool readNodes(fbx_scene_work& work, failure& why);
[[nodiscard]] bool readMeshes(fbx_scene_work& work, failure& why);
[[nodiscard]] bool readSkins(fbx_scene_work& work, failure& why);
void readPoses(fbx_scene_work& work);
[[nodiscard]] bool readAnimation(fbx_scene_work& work, failure& why); // from version 7000 on
[[nodiscard]] bool readTakes(fbx_scene_work& work, failure& why);     // before

// All numbers of a record; a single array is moved out of it. Null: none.
[[nodiscard]] std::vector<double> takeNumbers(fbx_record* record);
// As 32-bit numbers; what does not fit becomes the largest one.
[[nodiscard]] std::vector<std::int32_t> takeIntegers(fbx_record* record);
[[nodiscard]] fbx_record* findChild(fbx_record& record, std::string_view wanted);
// Sixteen numbers, column after column; false: not so many.
[[nodiscard]] bool readMatrix(const fbx_record* record, glm::dmat4& matrix);
// What lies before and behind the keys.
void readExtrapolation(const fbx_record& record, fbx_curve& curve);
// False with the reason, the fault of that record, when times run back.
[[nodiscard]] bool checkKeyTimes(const fbx_curve& curve, const fbx_record& record, const std::string& field,
                                 const std::string& label, failure& why);

} // namespace korvane
