#include "Korvane/archives/variant_mesh_def.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/variant_mesh_def_text.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>

namespace korvane
{

namespace
{

// Spelled so for ever: people search for them.
constexpr const char* no_tree = "variant_mesh_def::fillTag(): pack_file::sm_poPathTree == nullptr";
constexpr const char* not_in_tree = "variant_mesh_def::fillTag(): pfn = nullptr: problem findinh path";

constexpr std::size_t longest_quotation = pack_file::max_path;

std::string quotation(std::string_view text)
{
    return text.size() <= longest_quotation ? std::string(text)
                                            : std::string(text.substr(0, longest_quotation)) + "...";
}

// The definitions that are being read, from the innermost outwards.
struct chain_link
{
    std::string path;                  // internal; for a definition on the disk, its path there
    const chain_link* outer = nullptr; // null: the one that was opened
    std::size_t length = 0;            // references followed so far
};

// Puts the content of definitions below the references to them.
class reference_resolver
{
public:
    reference_resolver(std::size_t text_bytes, const variant_tag& root, const definition_reader& reader,
                       std::vector<variant_problem>& problems)
        : m_reader(reader)
        , m_text_bytes(text_bytes)
        , m_problems(problems)
    {
        const variant_tag_extent extent = extentOf(root);
        m_tags = extent.tags;
        m_tree_bytes = extent.bytes;
    }

    // level: of the tag, the root's is 1.
    void resolve(variant_tag& tag, std::size_t level, const chain_link& chain)
    {
        std::size_t resolved = 0;
        if (tag.kind == variant_tag_kind::reference && !m_is_full)
            resolved = follow(tag, level, chain);
        for (std::size_t i = resolved; i < tag.children.size() && !m_is_full; ++i)
            resolve(tag.children[i], level + 1, chain);
    }

private:
    struct definition
    {
        variant_tag root;
        variant_tag_extent extent;
    };

    // Returns how many children were put below the reference; references in them are resolved.
    std::size_t follow(variant_tag& reference, std::size_t level, const chain_link& chain)
    {
        const std::string path = normalInternalPath(reference.attribute("definition"));
        if (path.empty())
            return problem(quotation(chain.path) + ": a reference names no definition");
        if (!m_reader)
            return problem(no_tree);
        if (isInCircle(path, chain))
            return 0;
        const definition* const found = find(path, chain);
        if (!found || !hasRoom(*found, level, path, chain))
            return 0;
        const std::size_t count = insert(found->root, reference);
        const chain_link link{path, &chain, chain.length + 1};
        for (std::size_t i = 0; i < count && !m_is_full; ++i)
            resolve(reference.children[i], level + 1, link);
        return count;
    }

    bool isInCircle(const std::string& path, const chain_link& chain)
    {
        const chain_link* first = &chain;
        while (first && first->path != path)
            first = first->outer;
        if (!first)
            return false;
        if (!m_circles.emplace(chain.path, path).second)
            return true;
        constexpr std::size_t shown = 6; // of a long circle: those next to where it closes
        std::string circle = quotation(path);
        std::size_t count = 0;
        for (const chain_link* link = &chain; link != first->outer; link = link->outer, ++count)
            if (count < shown || link == first)
                circle.insert(0, quotation(link->path) + (count > shown ? " -> ... -> " : " -> "));
        problem("definitions refer to each other in a circle: " + circle, variant_problem::kind::other, path);
        return true;
    }

    const definition* find(const std::string& path, const chain_link& chain)
    {
        const auto [place, is_new] = m_definitions.try_emplace(path);
        if (is_new && !read(path, place->second, chain))
        {
            m_definitions.erase(place); // whoever else names it is told, too
            return nullptr;
        }
        if (is_new && !place->second && ++m_unreadable == variant_mesh_def::max_unreadable)
        {
            problem("more than " + std::to_string(variant_mesh_def::max_unreadable) +
                    " definitions cannot be read; the rest is left out");
            m_is_full = true;
        }
        return place->second ? &*place->second : nullptr;
    }

    // False when there is none; one that cannot be read is without a value.
    bool read(const std::string& path, std::optional<definition>& found, const chain_link& chain)
    {
        memory_file text;
        failure why;
        definition read;
        if (!m_reader(path, variant_mesh_def::max_text_bytes - m_text_bytes, text, why))
        {
            if (why.kind == failure_kind::not_found)
                problem(std::string(not_in_tree) + ": " + quotation(path) + " (named in " + quotation(chain.path) + ")",
                        variant_problem::kind::not_found, path, chain.path);
            else
                problem(describe(why), variant_problem::kind::unreadable, path);
            return why.kind != failure_kind::not_found;
        }
        m_text_bytes += text.size();
        if (!parseVariantMeshDef(text.bytes(), read.root, why))
        {
            why.path = path;
            problem(describe(why), variant_problem::kind::unreadable, path);
            return true;
        }
        read.extent = extentOf(read.root);
        found = std::move(read);
        return true;
    }

    bool hasRoom(const definition& found, std::size_t level, const std::string& path, const chain_link& chain)
    {
        if (chain.length >= variant_mesh_def::max_depth || level + found.extent.height > variant_mesh_def::max_nesting)
        {
            problem(path + ": definitions refer to each other too deeply (at most " +
                        std::to_string(variant_mesh_def::max_depth) + " references in a row, " +
                        std::to_string(variant_mesh_def::max_nesting) + " elements)",
                    variant_problem::kind::other, path);
            return false;
        }
        if (m_tags + found.extent.tags > variant_mesh_def::max_tags ||
            m_tree_bytes + found.extent.bytes > variant_mesh_def::max_tree_bytes)
        {
            problem(path + ": all definitions together have more than " + std::to_string(variant_mesh_def::max_tags) +
                        " elements or take more than " + std::to_string(variant_mesh_def::max_tree_bytes) +
                        " bytes of memory; the rest is left out",
                    variant_problem::kind::other, path);
            m_is_full = true;
            return false;
        }
        m_tags += found.extent.tags;
        m_tree_bytes += found.extent.bytes;
        return true;
    }

    static std::size_t insert(const variant_tag& content, variant_tag& reference)
    {
        if (!content.name.empty())
        {
            reference.children.insert(reference.children.begin(), content);
            return 1;
        }
        reference.children.insert(reference.children.begin(), content.children.begin(), content.children.end());
        return content.children.size();
    }

    // Returns 0, for the number of children.
    std::size_t problem(std::string text, variant_problem::kind kind = variant_problem::kind::other,
                        const std::string& path = {}, const std::string& named_in = {})
    {
        const auto isTold = [&text](const variant_problem& told) { return told.line == text; };
        if (m_problems.size() > variant_mesh_def::max_problems ||
            std::any_of(m_problems.begin(), m_problems.end(), isTold))
            return 0;
        if (m_problems.size() == variant_mesh_def::max_problems)
            m_problems.push_back({variant_problem::kind::other,
                                  "there are more problems than the " + std::to_string(variant_mesh_def::max_problems) +
                                      " that are listed",
                                  {},
                                  {}});
        else
            m_problems.push_back({kind, std::move(text), quotation(path), quotation(named_in)});
        return 0;
    }

    const definition_reader& m_reader;
    // Each definition is read once; those that cannot be read are without a value.
    std::unordered_map<std::string, std::optional<definition>> m_definitions;
    std::size_t m_text_bytes;
    std::size_t m_unreadable = 0;
    std::size_t m_tags = 0;
    std::size_t m_tree_bytes = 0;
    std::set<std::pair<std::string, std::string>> m_circles; // that were told: from, to
    bool m_is_full = false;
    std::vector<variant_problem>& m_problems;
};

void collectModels(const variant_tag& tag, std::vector<std::string>& models)
{
    if (tag.kind == variant_tag_kind::mesh)
    {
        std::string path = normalInternalPath(tag.attribute("model"));
        if (!path.empty())
            models.push_back(std::move(path));
    }
    for (const variant_tag& child : tag.children)
        collectModels(child, models);
}

} // namespace

std::string_view variant_tag::attribute(std::string_view wanted) const
{
    for (const auto& [attribute_name, value] : attributes)
        if (equalsIgnoringCase(attribute_name, wanted))
            return value;
    return {};
}

std::vector<std::string> variant_mesh_def::models() const
{
    std::vector<std::string> models;
    collectModels(m_root, models);
    return models;
}

std::vector<std::string> variant_mesh_def::problems() const
{
    std::vector<std::string> lines;
    for (const variant_problem& each : m_problems)
        lines.push_back(each.line);
    return lines;
}

bool variant_mesh_def::take(std::span<const std::byte> text, const std::string& path, const std::string& internal_path,
                            const definition_reader& reader, failure& why)
{
    variant_tag root;
    if (!parseVariantMeshDef(text, root, why))
    {
        why.path = path;
        return false;
    }
    std::vector<variant_problem> problems;
    reference_resolver(text.size(), root, reader, problems).resolve(root, 1, {internal_path});
    m_path = path;
    m_root = std::move(root);
    m_problems = std::move(problems);
    return true;
}

bool variant_mesh_def::open(const std::string& path, failure& why, const definition_reader& reader)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(toPath(path), error);
    if (!error && size > max_text_bytes) // before memory is taken for it; other errors are the reader's to tell
        return fail(why, failure_kind::malformed,
                    std::to_string(size) + " bytes are more than the " + std::to_string(max_text_bytes) +
                        " that a definition may have",
                    path);
    memory_file text;
    return text.read(path, why) && take(text.bytes(), path, path, reader, why);
}

bool variant_mesh_def::openFromInternalPath(const std::string& path, failure& why, const definition_reader& reader)
{
    if (!reader)
        return fail(why, failure_kind::not_found, no_tree, path);
    const std::string internal_path = normalInternalPath(path);
    memory_file text;
    if (reader(internal_path, max_text_bytes, text, why))
        return take(text.bytes(), path, internal_path, reader, why);
    if (why.kind == failure_kind::not_found)
        why.path = path;
    return false;
}

bool variant_mesh_def::openFromMemory(std::span<const std::byte> text, const std::string& name, failure& why,
                                      const definition_reader& reader)
{
    return take(text, name, name, reader, why);
}

} // namespace korvane
