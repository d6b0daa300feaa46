#pragma once

// Reads a variant mesh definition: an XML text that says of which models a figure is put together
// (docs/formats/variantmeshdefinition.md). Definitions that it names are read out of the archives
// (pack_file::sm_poPathTree) and take the place of their references. Element and attribute names count without regard
// to ASCII case. For one thread at a time.

#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvane
{

enum class variant_tag_kind
{
    mesh,      // VARIANT_MESH: model is an internal path; may be empty
    slot,      // SLOT: name, attach_point, probability
    reference, // VARIANT_MESH_REFERENCE: definition is an internal path; its children are the definition's content
    other      // anything else: kept, passed over
};

// One element. Texts are UTF-8 as the document has them.
struct variant_tag
{
    variant_tag_kind kind = variant_tag_kind::other;
    std::string name; // of the element, as written
    std::vector<std::pair<std::string, std::string>> attributes; // in document order
    std::vector<variant_tag> children;

    // The value of an attribute, its name in any case; empty when there is none.
    std::string_view attribute(std::string_view wanted) const;
};

class variant_mesh_def
{
public:
    // Elements may be nested, and references may lead on, that deep; all of a definition, what it refers to included,
    // has at most so many elements.
    static constexpr std::size_t max_depth = 64;
    static constexpr std::size_t max_tags = 65536;

    // On failure what was open stays. why.field names the parser's error, why.offset is its position in the text.
    // A reference that cannot be followed (missing, damaged, in a circle) is no failure: see problems().
    [[nodiscard]] bool open(const std::string& path, failure& why);                      // a file on the disk
    [[nodiscard]] bool openFromInternalPath(const std::string& path, failure& why);      // out of the archives
    [[nodiscard]] bool openFromMemory(std::span<const std::byte> text, const std::string& name, failure& why);

    const std::string& path() const { return m_path; } // as it was given; empty: nothing is open
    const variant_tag& root() const { return m_root; }
    // The internal paths of all models in document order, lower case with '\'; meshes without a model are left out, a
    // model that is named twice stands there twice.
    std::vector<std::string> models() const;
    // What could not be followed, one line each.
    const std::vector<std::string>& problems() const { return m_problems; }

private:
    std::string m_path;
    variant_tag m_root;
    std::vector<std::string> m_problems;
};

} // namespace korvane
