#pragma once

// What the commands that make pictures of pictures share: operands, output and report.

#include "Korvane/cli/cli_context.h"
#include "Korvane/jobs/picture_batch.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

constexpr const char* picture_operands_help =
    "Pictures: PNG, Targa or DDS; folders, or patterns with * and ?; on disk, or pack: and an internal path or pattern";

// Fills the batch, whose output is given, with the operands. False when that failed, which is said then. A wrong
// command line when the output is neither a folder nor, for a single picture, a file with one of the endings.
[[nodiscard]] bool takePictures(cli_context& context, const std::vector<std::string>& operands,
                                const std::vector<std::string_view>& endings, picture_batch& batch);

// "3 pictures converted" and how many were left, or as JSON the document with what was kept and what failed; then the
// failure of all, or of the
// only one.
void reportPictures(cli_context& context, json document, std::size_t made, std::string_view singular,
                    std::string_view plural, const picture_batch_result& left, const failure& only = {});

} // namespace korvane
