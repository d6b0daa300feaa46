#include "Korvane/jobs/convert_job.h"

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/file_stamp.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/animation/bone_table.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/jobs/output_paths.h"

#include <memory>
#include <utility>

namespace korvane
{

namespace
{

class convert_run
{
public:
    convert_run(game_source& source, const convert_job_options& options, const work_port& work)
        : m_source(source)
        , m_options(options)
        , m_work(work)
    {
    }

    bool run(convert_job_result& result, failure& why);

private:
    bool load(failure& why);
    bool isReplaced() const { return stampOf(m_options.fbx) != m_fbx_stamp; }
    void remember();

    game_source& m_source;
    const convert_job_options& m_options;
    const work_port& m_work;
    std::shared_ptr<const anim_data> m_template;
    memory_file m_fbx;
    file_stamp m_fbx_stamp; // before it was read; of nothing for one out of the game
    anim_conversion m_request;
};

bool convert_run::load(failure& why)
{
    m_fbx_stamp = stampOf(m_options.fbx);
    if (!isFreeToWrite({m_options.fbx, m_options.template_anim, m_options.bone_table, m_options.config_path},
                       m_options.output, why) ||
        !(m_template = loadTemplate(m_source, m_options.template_anim, why)) ||
        !loadSelection(m_source, m_options.bone_table, m_request.bone_selection, why) ||
        !m_source.read(m_options.fbx, m_fbx, why))
        return false;
    m_request.fbx_path = m_options.fbx;
    m_request.fbx = m_fbx.bytes();
    m_request.template_data = m_template.get();
    m_request.version = m_options.version.value_or(m_template->version);
    m_request.frame_rate = m_options.rate;
    m_request.start_seconds = m_options.start_time;
    m_request.end_time = m_options.end_time;
    m_request.frame_count = m_options.frames;
    m_request.take = m_options.take;
    m_request.prefix = m_options.prefix;
    m_request.layout = m_options.layout;
    return true;
}

void convert_run::remember()
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(toPath(m_options.output), error);
    const std::string path = error ? m_options.output : toUtf8(absolute.lexically_normal());
    failure why;
    config_file config;
    const auto addPath = [&path](config_file& changed) {
        return !changed.contains(config_keys::converted_files, path) &&
               changed.add(config_keys::converted_files, {path}, false);
    };
    if (path.find('"') != std::string::npos)
        fail(why, failure_kind::refused, "its path has a quotation mark");
    else if (config.change(m_options.config_path, addPath, why))
        return;
    tell(m_work.log, "note: the file is not added to the list of converted files: " + displayText(describe(why)));
}

bool convert_run::run(convert_job_result& result, failure& why)
{
    if (!load(why))
        return false;
    result.version = m_request.version;
    work_port work = m_work;
    work.log = [this](const std::string& line) { tell(m_work.log, displayText(line)); };
    if (!convertToAnimFile(m_request, m_options.output, work, result.conversion, why))
    {
        if (why.path.empty())
            why.path = m_options.template_anim;
        if (isReplaced()) // half an old and half a new file, perhaps
            tell(m_work.log, "note: the FBX file was replaced while it was converted: try again");
        return false;
    }
    if (isReplaced())
        tell(m_work.log, "note: the FBX file was replaced while it was converted, and the older one was taken: convert "
                         "it again");
    remember();
    return true;
}

} // namespace

std::shared_ptr<const anim_data> loadTemplate(game_source& source, const game_path& path, failure& why)
{
    failure ignored; // a template may end behind its bones
    if (auto whole = loadAnim(source, path, anim_depth::animation, ignored))
        return whole;
    return loadAnim(source, path, anim_depth::bones_only, why);
}

bool loadSelection(game_source& source, const game_path& table, std::optional<std::vector<std::string>>& names,
                   failure& why)
{
    names.reset();
    if (table.empty())
        return true;
    memory_file bytes;
    if (!source.read(table, bytes, why))
        return false;
    if (readBoneTable(bytes.text(), names.emplace(), why))
        return true;
    names.reset();
    why.path = table.text();
    return false;
}

bool convertFbx(game_source& source, const convert_job_options& options, const work_port& work,
                convert_job_result& result, failure& why)
{
    result = {};
    return convert_run(source, options, work).run(result, why);
}

} // namespace korvane
