#pragma once

// What would go wrong with one model in the game or in an exchange: textures that are nowhere, numbers that nobody
// knows, weights and bones and boxes that do not fit, texts without an end. Reads the decoded model only; changes
// nothing.

#include "Korvane/jobs/finding.h"
#include "Korvane/jobs/known_files.h"
#include "Korvane/models/rmv2_file.h"

#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

class model_check
{
public:
    // file names the model in the findings; with "pack:" in front it has no disk around it.
    model_check(const rmv2_file& model, known_files& known, std::string file);

    // In the order of the file: header, then LOD after LOD, group after group.
    [[nodiscard]] std::vector<finding> run();

private:
    void checkHeader();
    void checkSkeleton();
    void reportSkeletonMissing(const std::string& id);
    void checkLods();
    void checkLod(std::size_t lod);
    void checkGroup(const group_data& group);
    void checkNumbers(const group_data& group);
    void checkTexts(const group_data& group);
    void checkTextures(const group_data& group);
    void checkTexture(const texture_entry& texture);
    void checkTexturePath(const texture_entry& texture);
    void reportTextureMissing(const texture_entry& texture, const std::string& hint);
    void checkIndices(const group_data& group);
    void checkPositions(const group_data& group);
    void checkWeights(const group_data& group);

    // name: of the text, whose field it is; a text that goes on to the field's end has no terminating zero.
    void checkEnd(std::span<const std::byte> field, const std::string& name, finding_severity severity);
    void add(finding_severity severity, const char* kind, std::string text);

    const rmv2_file& m_model;
    known_files& m_known;
    std::string m_file;
    std::string m_around;         // the model's path on the disk; empty without one
    std::size_t m_bone_count = 0; // of the skeleton; 0: not known
    finding_place m_place;
    std::vector<finding> m_found;
};

} // namespace korvane
