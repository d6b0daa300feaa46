#pragma once

// The three archives of the demo data folder, in the order in which they are read; a later one overrides:
//
//   data_1.pack       PFH4: the props, and older copies of the guard's shield and definition
//   data.pack         PFH5: the guard, with entries of every compression
//   a_demo_mod.pack   PFH5 with time stamps: a mod that repaints the guard and gives it a spear

#include "tools/demo_data/demo_data.h"
#include "tools/demo_data/demo_math.h"
#include "tools/demo_data/pack_writer.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane::demo
{

enum class archive_kind
{
    older, // data_1.pack
    main,  // data.pack
    mod    // a_demo_mod.pack
};

// An archive that holds a material's diffuse image in another colour.
struct recolouring
{
    std::string_view material;
    archive_kind archive;
    vec3 colour; // as recoloured() of materials.h wants it
};

[[nodiscard]] std::span<const recolouring> recolourings();

// Collects the archives' files. Their bytes are compressed at once and can be freed after each call.
class demo_archives
{
public:
    demo_archives();

    // A file of the folder goes into the archive that it belongs to; some belong to none.
    void add(const std::string& path, std::span<const std::byte> bytes);
    // Other bytes for a path that some other archive holds, too.
    void addInstead(archive_kind archive, const std::string& path, std::span<const std::byte> bytes);

    // The archives; afterwards they are empty.
    [[nodiscard]] std::vector<file> take();

private:
    void addTexts();

    pack_writer m_older, m_main, m_mod;
};

} // namespace korvane::demo
