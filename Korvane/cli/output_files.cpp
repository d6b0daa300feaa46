#include "Korvane/cli/output_files.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/jobs/operand_list.h"
#include "Korvane/jobs/output_paths.h"

#include <filesystem>
#include <new>
#include <system_error>
#include <utility>

namespace korvane
{

namespace
{

bool attempt(const model_work& work, const std::string& model, const std::string& output, json& row, failure& why)
{
    try
    {
        return work(model, output, row, why);
    }
    catch (const std::bad_alloc&)
    {
        return fail(why, failure_kind::unreadable, "not enough memory", model);
    }
}

} // namespace

void addOverwriteOption(CLI::App& command, bool& overwrites)
{
    command.add_flag("--overwrite", overwrites,
                     "Write over files in the folder that differ; without it they are named and left as they are");
}

const char* outcomeName(output_outcome outcome)
{
    switch (outcome)
    {
    case output_outcome::unchanged:
        return "unchanged";
    case output_outcome::kept:
        return "kept";
    case output_outcome::written:
        break;
    }
    return "written";
}

bool listOperands(cli_context& context, const std::vector<std::string>& operands, operand_list& list)
{
    failure why;
    const bool is_done = addOperands(context.game(), operands, list, why);
    for (const failure& left_out : list.leftOut())
        context.nameFailure(left_out);
    if (!is_done)
        context.fail(why);
    return is_done;
}

void requireFolder(const std::string& output)
{
    if (isNamedLikeFile(output) && !isFolder(output))
        throw CLI::ValidationError("-o", "a folder is wanted (with / at its end it is one), not the file " + output);
}

namespace
{

class model_batch
{
public:
    model_batch(cli_context& context, const model_output& output, const model_work& work)
        : m_context(context)
        , m_output(output)
        , m_work(work)
        , m_folder(output.path)
    {
    }

    void run(const operand_list& list)
    {
        const bool is_file = list.isOneFile() && !isFolder(m_output.path);
        if (!is_file)
            requireFolder(m_output.path);
        failure why;
        if (!is_file && !m_output.path.empty() &&
            !(m_output.is_dry_run ? canWriteBelow(m_output.path, why) : createFolder(m_output.path, why)))
            return m_context.fail(why);
        for (const operand_file& model : list.files())
        {
            m_context.progress("model " + std::to_string(m_rows.size() + 1) + " of " +
                               std::to_string(list.files().size()) + ": " + displayText(model.path));
            runOne(model, is_file, !list.isOneFile());
        }
        finish(list);
    }

private:
    void runOne(const operand_file& model, bool is_file, bool is_named)
    {
        failure why;
        std::string target = m_output.path;
        json row;
        const bool is_done = (is_file || place(model, target, why)) &&
                             (!m_output.is_dry_run || target.empty() || canWrite(target, is_file, why)) &&
                             attempt(m_work, model.path, target, row, why);
        json head = {{"input", displayText(model.path)},
                     {"path", target.empty() ? json() : json(displayText(target))},
                     {"outcome", "failed"},
                     {"reason", why ? json(displayText(describe(why))) : json()}};
        if (is_done)
            head.update(row);
        m_rows.push_back(std::move(head));
        if (is_done)
            return;
        if (is_named)
            m_context.nameFailure(why);
        m_failures.push_back(std::move(why));
    }

    bool place(const operand_file& model, std::string& target, failure& why)
    {
        if (m_output.path.empty()) // a dry run
            return true;
        if (m_output.is_dry_run ? m_folder.locate(model.below, target, why) : m_folder.place(model.below, target, why))
            return true;
        target.clear();
        if (why.path == model.below) // of the folder's refusals: say which of the models it is
            why.path = model.path;
        return false;
    }

    // A folder that is to come was looked at before.
    static bool canWrite(const std::string& target, bool is_file, failure& why)
    {
        std::error_code ignored;
        return (!is_file && !std::filesystem::exists(toPath(target).parent_path(), ignored)) ||
               canWriteWholeFile(target, why);
    }

    void finish(const operand_list& list)
    {
        if (m_context.is_json)
            m_context.printJson({{"files", std::move(m_rows)}});
        if (m_failures.empty())
            return;
        if (list.isOneFile())
            return m_context.fail(m_failures.front());
        m_context.fail(
            {failure_kind::refused,
             std::to_string(m_failures.size()) + " of " + std::to_string(list.files().size()) + " models failed",
             m_output.path, 0, ""});
    }

    cli_context& m_context;
    const model_output& m_output;
    const model_work& m_work;
    extraction_folder m_folder;
    json m_rows = json::array();
    std::vector<failure> m_failures;
};

} // namespace

void forEachModel(cli_context& context, const std::vector<std::string>& operands, const model_output& output,
                  const model_work& work)
{
    operand_list list(modelOperands(), output.path);
    if (listOperands(context, operands, list))
        model_batch(context, output, work).run(list);
}

} // namespace korvane
