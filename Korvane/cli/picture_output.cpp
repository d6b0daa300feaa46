#include "Korvane/cli/picture_output.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/jobs/output_paths.h"

#include <algorithm>
#include <utility>

namespace korvane
{

bool takePictures(cli_context& context, const std::vector<std::string>& operands,
                  const std::vector<std::string_view>& endings, picture_batch& batch)
{
    const auto isNamedSo = [&batch](std::string_view ending) { return endsWithIgnoringCase(batch.output, ending); };
    const bool is_file = std::any_of(endings.begin(), endings.end(), isNamedSo) && !isFolder(batch.output);
    operand_list list(pictureOperands(), is_file ? std::string() : batch.output);
    if (!listOperands(context, operands, list))
        return false;
    if (!list.isOneFile())
        requireFolder(batch.output);
    else if (!is_file && !isFolder(batch.output))
    {
        std::string wanted;
        for (const std::string_view ending : endings)
            wanted.append(wanted.empty() ? "" : " or ").append(ending);
        throw CLI::ValidationError("-o",
                                   "the name must end in " + wanted + ", or be that of a folder: " + batch.output);
    }
    batch.inputs = list.files();
    batch.is_one_file = list.isOneFile();
    if (!list.isOneFile() && !isFolder(batch.output))
        batch.output += '/';
    return true;
}

void reportPictures(cli_context& context, json document, std::size_t made, std::string_view singular,
                    std::string_view plural, const picture_batch_result& left, const failure& only)
{
    json kept = json::array(), failed = json::array();
    for (const std::string& path : left.kept)
    {
        context.nameFailure(keptFailure(path));
        kept.push_back(displayText(path));
    }
    for (const failed_picture& each : left.failed)
        failed.push_back({{"input", displayText(each.input)}, {"reason", displayText(describe(each.why))}});
    document["kept"] = std::move(kept);
    document["failed"] = std::move(failed);
    if (context.is_json)
        context.printJson(document);
    else if (made + left.kept.size() > 0)
        context.print(counted(made, singular, plural) + keptText(left.kept.size()) + "\n");
    if (only)
        context.fail(only);
    else if (!left.failed.empty())
        context.fail({failure_kind::refused,
                      std::to_string(left.failed.size()) + " of " +
                          std::to_string(left.failed.size() + left.kept.size() + made) +
                          " pictures could not be converted",
                      {},
                      0,
                      ""});
}

} // namespace korvane
