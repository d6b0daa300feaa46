#pragma once

// The two ways in which a loaded model becomes a file. A model is never written from its decoded form: the file image
// that was read stays the master copy, edits are fixed-width fields with their place in it, and saving puts these into
// the image and writes it out, so that not one other byte changes. The version patch is the only change of structure.
// docs/formats/rigid_model_v2.md, "How files are written", and docs/known_behaviour.md. Not thread-safe.

#include "EASY_GUI/services/failure.h"
#include "Korvane/models/rmv2_file.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace korvane
{

// Bytes that an edit puts into the file image.
struct image_patch
{
    std::uint64_t file_offset;
    std::vector<std::byte> bytes;
};
// What saveModel would put into the image: with it the image is the file that a save would write.
[[nodiscard]] std::vector<image_patch> savedEdits(const rmv2_file& model);

// Writes the texture paths and alpha modes into the image, the image to the path, and makes the path the model's own.
// An alpha mode is written together with its group's textures: that of a group without textures never reaches the file.
// On failure the file at the path, the image, the decoded values and the model's path are what they were.
[[nodiscard]] bool saveModel(rmv2_file& model, const std::string& path, failure& why);

// Writes the image as it is, without edits, and makes the path the model's own. On failure nothing changes.
[[nodiscard]] bool writeImage(rmv2_file& model, const std::string& path, failure& why);

// Writes a version 7 copy of a version 6 model: 8 more bytes in each LOD header, and every start_offset moved by their
// sum. Edits that were not saved are not in it. The loaded model keeps its headers and its path, but its image's
// version word becomes 7 and its header offsets move: a later save writes a file that says 7 over version 6 headers, so
// ask hasMixedVersions() first. Other versions are refused, and a second time for the same model. On failure nothing
// changes.
[[nodiscard]] bool patchToVersion7(rmv2_file& model, const std::string& path, failure& why);

// Why patchToVersion7 would refuse the model; empty: it would not.
[[nodiscard]] std::string patchRefusal(const rmv2_file& model);

// True when a save would write, or has written, a version word of 7 over the LOD headers of version 6.
[[nodiscard]] bool hasMixedVersions(const rmv2_file& model);

// Reads an image for which isVersion7OverVersion6() is true by the headers that it has: version() is 6, and the image
// keeps its version word of 7, as after a patch.
[[nodiscard]] bool openMixedVersions(rmv2_file& model, memory_file image, const std::string& name, failure& why);

// Gives such an image the version word of its headers, 6: then it opens and can be patched.
void repairVersionWord(memory_file& image);

} // namespace korvane
