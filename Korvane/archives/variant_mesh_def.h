#pragma once

// Reads a variant mesh definition: an XML text that says of which models a figure is put together
// (docs/formats/variantmeshdefinition.md). Definitions that it names are read through a port and stand below their
// references. Element and attribute names count without regard to ASCII case. For one thread at a time.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"

#include <cstddef>
#include <cstdint>
#include <functional>
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
    reference, // VARIANT_MESH_REFERENCE: definition is an internal path; its children are the definition's content,
               // then whatever the reference itself encloses
    other      // anything else: kept, passed over
};

// One element. Texts are UTF-8, unless the document itself holds other bytes: displayText() before they are shown.
struct variant_tag
{
    variant_tag_kind kind = variant_tag_kind::other;
    std::string name; // of the element, as written; empty: only holds a document's several root elements together
    std::vector<std::pair<std::string, std::string>> attributes; // in document order
    std::vector<variant_tag> children;
    std::uint32_t line = 0; // of the text in which it stands, counted from 1

    // The value of an attribute, its name in any case; empty when there is none. Of several the first.
    std::string_view attribute(std::string_view wanted) const;
};

// A reference that could not be followed, or a limit that was met.
struct variant_problem
{
    enum class kind
    {
        not_found,  // no archive has the definition
        unreadable, // it is damaged, or no well-formed XML
        other       // a circle, too many of something, no archives at all
    };
    kind what = kind::other;
    std::string line;     // as problems() says it
    std::string path;     // the internal path of the definition, shortened when it is very long; empty: of none
    std::string named_in; // not_found: the definition that refers to it
};

// Reads the definition of an internal path out of the game, with at most so many bytes. not_found: it has none. Empty:
// there are no archives.
using definition_reader =
    std::function<bool(const std::string& internal_path, std::uint64_t limit, memory_file& text, failure& why)>;

class variant_mesh_def
{
public:
    // Elements of one definition may be nested, and references may lead on, that deep.
    static constexpr std::size_t max_depth = 64;
    // Elements of everything together may be nested that deep: whoever walks root() may do so by recursion.
    static constexpr std::size_t max_nesting = 256;
    // A definition and all that it refers to have at most so many elements,
    static constexpr std::size_t max_tags = 65536;
    // each of them at most so many attributes,
    static constexpr std::size_t max_attributes = 256;
    // which take at most so many bytes of memory,
    static constexpr std::size_t max_tree_bytes = std::size_t{64} << 20;
    // and come out of texts with at most so many bytes. A text that is referred to twice is read once.
    static constexpr std::size_t max_text_bytes = std::size_t{8} << 20;
    // So many of the texts that are referred to may be unreadable before no more are tried.
    static constexpr std::size_t max_unreadable = 32;
    // So many lines of problems() at most; one more says that there are more.
    static constexpr std::size_t max_problems = 256;

    // On failure what was open stays. For a text that is no XML, why.field is the parser's description of the error and
    // why.offset its position in the file's bytes. A reference that cannot be followed (missing, damaged, in a circle,
    // beyond the limits) is no failure: see problems().
    // A file on the disk.
    [[nodiscard]] bool open(const std::string& path, failure& why, const definition_reader& reader = {});
    // Read by the reader itself.
    [[nodiscard]] bool openFromInternalPath(const std::string& path, failure& why, const definition_reader& reader);
    [[nodiscard]] bool openFromMemory(std::span<const std::byte> text, const std::string& name, failure& why,
                                      const definition_reader& reader = {});

    const std::string& path() const { return m_path; } // as it was given; empty: nothing is open
    const variant_tag& root() const { return m_root; }
    // The internal paths of all models in document order, as normalInternalPath() of internal_path.h gives them; meshes
    // without a model are left out, a model that is named twice stands there twice.
    [[nodiscard]] std::vector<std::string> models() const;
    // What could not be followed, one line each, none twice.
    [[nodiscard]] std::vector<std::string> problems() const;
    const std::vector<variant_problem>& problemList() const { return m_problems; }

private:
    bool take(std::span<const std::byte> text, const std::string& path, const std::string& internal_path,
              const definition_reader& reader, failure& why);

    std::string m_path;
    variant_tag m_root;
    std::vector<variant_problem> m_problems;
};

} // namespace korvane
