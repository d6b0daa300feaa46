#include "Korvane/jobs/self_check.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "EASY_GUI/services/version.h"
#include "Korvane/document/panel_contents.h"
#include "Korvane/game/game_model.h"
#include "Korvane/jobs/check_run.h"
#include "Korvane/models/rmv2_writer.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <iterator>
#include <system_error>
#include <utility>

namespace korvane
{

namespace
{

class part_digest
{
public:
    void add(std::span<const std::byte> bytes)
    {
        mix(bytes.size());
        for (std::size_t i = 0; i < bytes.size(); i += sizeof(std::uint64_t))
        {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes.data() + i, std::min(sizeof word, bytes.size() - i));
            mix(word);
        }
    }
    void add(const std::string& text) { add(std::as_bytes(std::span(text))); }
    template <typename Value>
    void addValue(const Value& value)
    {
        add(std::as_bytes(std::span(&value, 1)));
    }
    std::uint64_t value() const { return m_value; }

private:
    void mix(std::uint64_t word) // as FNV-1a, a word at a time, and the upper bits brought down
    {
        m_value = (m_value ^ word) * 0x100000001b3;
        m_value ^= m_value >> 29;
    }
    std::uint64_t m_value = 0xcbf29ce484222325;
};

model_part headerPart(const RMV2_FILE_DATA& model)
{
    part_digest digest;
    digest.add(model.magic);
    digest.add(model.skeleton_id);
    digest.add(model.second_text);
    for (const std::uint32_t value : {model.version, model.lod_count})
        digest.addValue(value);
    for (const lod_data& lod : model.lods)
    {
        const lod_header& header = lod.header;
        for (const std::uint32_t value : {header.group_count, header.vertices_size, header.indices_size,
                                          header.start_offset, header.lod_index, header.kept})
            digest.addValue(value);
        digest.addValue(header.lod_distance);
    }
    return {"header", digest.value()};
}

model_part groupPart(const group_data& group, const std::string& place)
{
    const group_header& header = group.header;
    part_digest digest;
    for (const std::uint32_t value :
         {header.material_id, header.group_size, header.vertex_offset, header.vertex_count, header.index_offset,
          header.index_count, std::uint32_t{header.vertex_format}, header.attachment_count, header.texture_count,
          group.material_flags, group.alpha_mode})
        digest.addValue(value);
    for (const glm::vec3& vector : {header.bbox_min, header.bbox_max, header.pivot})
        digest.addValue(vector);
    for (const std::string& text : {header.shader_name, header.group_name, header.texture_directory})
        digest.add(text);
    digest.addValue(header.shader_params);
    digest.addValue(header.matrices);
    for (const attachment_point& attachment : group.attachments)
    {
        digest.add(attachment.name);
        digest.addValue(attachment.matrix);
        digest.addValue(attachment.kept);
    }
    return {place + "description", digest.value()};
}

model_part texturePart(const group_data& group, const std::string& place)
{
    part_digest digest;
    for (const texture_entry& texture : group.textures)
    {
        digest.addValue(texture.type);
        digest.add(texture.path);
    }
    return {place + "textures", digest.value()};
}

std::vector<model_part> partsOf(const RMV2_FILE_DATA& model)
{
    std::vector<model_part> parts = {headerPart(model)};
    for (std::size_t lod = 0; lod < model.lods.size(); ++lod)
        for (std::size_t g = 0; g < model.lods[lod].groups.size(); ++g)
        {
            const group_data& group = model.lods[lod].groups[g];
            const std::string place = placeText({lod, g, {}}, first_number) + ": ";
            parts.push_back(groupPart(group, place));
            parts.push_back(texturePart(group, place));
            part_digest vertices, indices;
            vertices.add(std::as_bytes(group.store.vertices.records()));
            indices.add(std::as_bytes(std::span(group.store.indices)));
            parts.push_back({place + "vertices", vertices.value()});
            parts.push_back({place + "triangles", indices.value()});
        }
    return parts;
}

std::string withoutPath(failure why, const std::string& path)
{
    if (why.path == path)
        why.path.clear();
    return displayText(describe(why));
}

// In the system's temporary folder, gone with this.
class temporary_file
{
public:
    temporary_file()
    {
        std::error_code error;
        const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
        const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
        m_path = toUtf8(folder / toPath("korvane-test-" + std::to_string(ticks) + ".rigid_model_v2"));
    }
    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;
    ~temporary_file()
    {
        std::error_code error;
        std::filesystem::remove(toPath(m_path), error);
    }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

class self_check
{
public:
    explicit self_check(const self_check_request& request) : m_request(request) { m_report.path = request.model.path; }

    self_check_report run(const work_port& work)
    {
        using step = void (self_check::*)(const work_port&);
        struct named_step
        {
            const char* name;
            step run;
        };
        constexpr std::array steps = {named_step{"reading the file again", &self_check::compareFile},
                                      named_step{"decoding it again", &self_check::compareModel},
                                      named_step{"writing it without an edit", &self_check::compareSave},
                                      named_step{"looking at the edits", &self_check::lookAtEdits},
                                      named_step{"checking the model", &self_check::checkModel}};
        for (std::size_t i = 0; i < steps.size(); ++i)
        {
            work.report(i, steps.size(), steps[i].name);
            if ((m_report.is_stopped = work.isStopped()))
                break;
            (this->*steps[i].run)(work);
        }
        return std::move(m_report);
    }

private:
    void add(self_check_outcome outcome, const char* title, std::string text)
    {
        m_report.steps.push_back({outcome, title, std::move(text)});
    }

    void compareFile(const work_port&)
    {
        constexpr const char* title = "The file";
        memory_file now;
        failure why;
        if (!readModelBytes(*m_request.game, m_request.model.path, now, why))
            return add(self_check_outcome::failed, title,
                       "It cannot be read any more: " + withoutPath(why, m_request.model.path) +
                           ". What is open is complete: save it under a new name.");
        const std::span<const std::byte> open = m_request.image->bytes(), there = now.bytes();
        const auto [first, second] = std::mismatch(open.begin(), open.end(), there.begin(), there.end());
        if (first == open.end() && second == there.end())
            return add(self_check_outcome::passed, title,
                       "Read again: " + counted(open.size(), "byte") + ", the same as those that are open.");
        add(self_check_outcome::failed, title,
            "It is another one than the one that is open, from byte " +
                grouped(static_cast<std::uint64_t>(first - open.begin())) + " on (" + counted(there.size(), "byte") +
                ", " + grouped(open.size()) +
                " are open): another program has changed it, or the model was patched. Open it again to see what it "
                "holds now.");
    }

    void compareModel(const work_port&)
    {
        constexpr const char* title = "The decoded model";
        failure why;
        m_is_decoded = openSnapshot({m_request.model.path, m_request.image}, m_decoded, why);
        if (!m_is_decoded)
            return add(self_check_outcome::failed, title,
                       "Its bytes cannot be decoded again: " + withoutPath(why, m_request.model.path) + ".");
        const std::vector<model_part> parts = partsOf(m_decoded.data());
        const auto [open, again] = std::mismatch(m_request.parts.begin(), m_request.parts.end(), parts.begin(),
                                                 parts.end(), [](const model_part& left, const model_part& right) {
                                                     return left.digest == right.digest && left.name == right.name;
                                                 });
        if (open == m_request.parts.end() && again == parts.end())
            return add(self_check_outcome::passed, title,
                       "Decoded again: " + counted(parts.size(), "part") + ", the same as those that are open.");
        add(self_check_outcome::failed, title,
            "Decoded again it is not the same, first in: " +
                (open == m_request.parts.end() ? again->name : open->name) + ".");
    }

    void compareSave(const work_port&)
    {
        constexpr const char* title = "Saving without edits";
        if (!m_is_decoded)
            return add(self_check_outcome::noted, title, "Not done, for the file was not decoded.");
        const temporary_file target;
        memory_file written;
        failure why;
        if (!saveModel(m_decoded, target.path(), why) || !written.read(target.path(), why))
            return add(self_check_outcome::noted, title,
                       "Not done, for the temporary folder cannot be used: " + displayText(describe(why)) + ".");
        if (std::ranges::equal(written.bytes(), m_request.image->bytes()))
            return add(self_check_outcome::passed, title, "Byte for byte the file as it was read.");
        add(self_check_outcome::failed, title,
            "The file that was written differs from the one that was read. Keep a copy of the file.");
    }

    void lookAtEdits(const work_port&)
    {
        constexpr const char* title = "Unsaved edits";
        const std::size_t edits = m_request.unsaved_edits;
        const std::span<const std::byte> before = m_request.image->bytes(), after = m_request.model.image->bytes();
        std::size_t bytes = 0;
        for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i)
            bytes += before[i] != after[i];
        rmv2_file edited;
        failure why;
        if (edits == 0)
            return add(self_check_outcome::passed, title, "None: the file holds all that is open.");
        if (!openSnapshot(m_request.model, edited, why))
            return add(self_check_outcome::failed, title,
                       "With its edits the model could not be opened again: " + withoutPath(why, m_request.model.path) +
                           ".");
        add(self_check_outcome::noted, title,
            counted(edits, "field is", "fields are") + " edited; a save will change " + counted(bytes, "byte") +
                ", and the file can be read again. The comparisons above are with the file before the edits.");
    }

    void checkModel(const work_port& work)
    {
        check_run run(*m_request.game);
        run.addOpen(m_request.model);
        run.run(work, [this](const std::vector<finding>& found) {
            std::copy(found.begin(), found.end(), std::back_inserter(m_report.findings));
        });
        std::size_t errors = 0;
        for (const finding& each : m_report.findings)
            errors += each.severity == finding_severity::error;
        const std::size_t others = m_report.findings.size() - errors;
        add(errors > 0   ? self_check_outcome::failed
            : others > 0 ? self_check_outcome::noted
                         : self_check_outcome::passed,
            "Check",
            m_report.findings.empty()
                ? "Nothing that would go wrong in the game was found."
                : counted(errors, "error") + " and " + counted(others, "lesser finding") + "; they are listed below.");
    }

    const self_check_request& m_request;
    self_check_report m_report;
    rmv2_file m_decoded;
    bool m_is_decoded = false;
};

const char* wordOf(self_check_outcome outcome)
{
    return outcome == self_check_outcome::passed ? "passed" : outcome == self_check_outcome::noted ? "note" : "FAILED";
}

} // namespace

self_check_request selfCheckOf(const rmv2_file& model, std::shared_ptr<const game_data> game)
{
    std::size_t edits = 0;
    for (const lod_data& lod : model.data().lods)
        for (const group_data& group : lod.groups)
        {
            edits += group.alpha_mode_field.isEdited();
            for (const texture_entry& texture : group.textures)
                edits += texture.path_field.isEdited();
        }
    return {std::move(game), snapshotOf(model), std::make_shared<memory_file>(model.image().bytes()),
            partsOf(model.data()), edits};
}

self_check_outcome self_check_report::outcome() const
{
    self_check_outcome worst = self_check_outcome::passed;
    for (const self_check_step& step : steps)
        worst = std::max(worst, step.outcome);
    return worst;
}

std::string self_check_report::summary() const
{
    const auto failed =
        static_cast<std::size_t>(std::count_if(steps.begin(), steps.end(), [](const self_check_step& step) {
            return step.outcome == self_check_outcome::failed;
        }));
    const std::string done = is_stopped ? "The test was stopped" : "The test is done";
    return done + ": " + (failed == 0 ? "nothing failed" : counted(failed, "part") + " failed") + ".";
}

std::string self_check_report::text() const
{
    std::string lines = "Test of " + displayText(path) + "\r\n" + std::string(program_name) + " " +
                        std::string(program_version) + "\r\n\r\n";
    for (const self_check_step& step : steps)
        lines += step.title + ": " + wordOf(step.outcome) + ". " + step.text + "\r\n";
    if (is_stopped)
        lines += "Stopped: further parts were not tested.\r\n";
    if (!findings.empty())
        lines += "\r\n";
    for (const finding& each : findings)
        lines += describe(each, first_number) + "\r\n";
    return lines + "\r\n" + summary() + "\r\n";
}

self_check_report runSelfCheck(const self_check_request& request, const work_port& work)
{
    return self_check(request).run(work);
}

} // namespace korvane
