#pragma once

// Reads rigid_model_v2 files (versions 5 to 8). The file image stays in memory as the master copy; the decoded model is
// a view of it. Layout: docs/formats/rigid_model_v2.md. Not thread-safe; a loaded model may be read from several
// threads.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"
#include "Korvane/models/rmv2_data.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

// Which bones a group's vertices hang on, from the weight bytes of formats 3 and 4. Influences with a weight byte of 0
// are left out, and so is the fourth one of format 4 (docs/formats/rigid_model_v2.md, "Influences").
struct influence_table
{
    struct influence
    {
        std::uint32_t bone;
        std::uint32_t vertex;
    };
    struct bone_weights
    {
        std::uint32_t bone;
        std::vector<float> weights; // one per influence, in vertex order, 0..1
        std::vector<std::uint32_t> vertices;
    };
    std::vector<std::vector<influence>> by_vertex;
    std::vector<bone_weights> bones; // distinct, in the order of their first use
    std::map<std::uint32_t, std::size_t> position_of_bone;
};

class rmv2_file
{
public:
    static constexpr std::uint32_t max_lods = 255;
    static constexpr std::uint32_t max_groups = 255;
    static constexpr std::uint32_t max_attachments = 255;
    static constexpr std::uint32_t max_textures = 255;

    // Reads, validates and decodes the file at a UTF-8 path. On failure isLoaded() is false and why says where.
    // Once a version 5 file was read, the same object reads every later file with version 5 header and text widths.
    [[nodiscard]] bool open(const std::string& path, failure& why);
    // The same for bytes that came out of an archive; the name stands for the path.
    [[nodiscard]] bool openFromMemory(memory_file image, const std::string& name, failure& why);

    bool isLoaded() const { return m_is_loaded; }
    const RMV2_FILE_DATA& data() const { return m_data; }
    RMV2_FILE_DATA& data() { return m_data; }
    const memory_file& image() const { return m_image; }
    memory_file& image() { return m_image; }

    std::uint32_t version() const { return m_data.version; }
    const std::string& path() const { return m_path; }
    void setPath(const std::string& path) { m_path = path; }
    const std::string& name() const { return m_name; } // file name up to its first '.'; empty for bytes from memory
    const std::string& status() const { return m_status; }
    const std::string& log() const { return m_log; }
    int errorCode() const { return m_error_code; }     // 4: the file could not be opened
    float modelScale() const { return m_model_scale; } // 1 until centred

    // The influences of one decoded group; empty for formats without weights. Computed from the image at each call.
    influence_table influences(const group_data& group) const;
    // Moves the vertices of a LOD so that the union of its groups' boxes is centred at the origin, and sets the model
    // scale to 1.8 / largest extent.
    void centre(std::size_t lod);

private:
    bool validateAndDecode(failure& why);

    memory_file m_image;
    RMV2_FILE_DATA m_data;
    std::string m_path;
    std::string m_name;
    std::string m_status;
    std::string m_log;
    int m_error_code = 0;
    float m_model_scale = 1.0f;
    bool m_is_loaded = false;
    bool m_wide_text = false; // never cleared
};

// Reads a model's bytes from the disk. Of a file that does not begin as a model does only the first bytes, of which
// opening them says what is wrong; one with more bytes than the format's 32-bit offsets reach is refused unread.
[[nodiscard]] bool readModelFile(const std::string& path, memory_file& image, failure& why);

// True for an image whose version word says 7 while its LOD headers have the 20 bytes of version 6: what a save makes
// of a model after it was patched (rmv2_writer.h). Such a file with several LODs cannot be read as it stands.
[[nodiscard]] bool isVersion7OverVersion6(std::span<const std::byte> image);

// The program-wide text of the last failed validation; empty before.
[[nodiscard]] const std::string& lastModelError();

} // namespace korvane
