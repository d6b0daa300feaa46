#pragma once

// The reading of one file image, used by rmv2_file and model_names. The headers are read twice: first to check every
// count, offset and size against the bytes that are there, keeping nothing, then to keep them. Vertices and indices are
// decoded last, which cannot fail. So a damaged file is refused before anything was allocated for what it claims to
// hold.

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/models/rmv2_data.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace korvane
{

class rmv2_reader
{
public:
    // Brings a part of the image that is about to be read, where not all of it is there. False: it cannot be had.
    using fetch_port = std::function<bool(std::uint64_t position, std::uint64_t size)>;

    rmv2_reader(std::span<const std::byte> image, RMV2_FILE_DATA& data, fetch_port fetch = {})
        : m_image(image)
        , m_in(image)
        , m_data(data)
        , m_fetch(std::move(fetch))
    {
    }

    // The file header. wide_text is set when the version is 5 (and never cleared), before the magic is looked at.
    [[nodiscard]] bool readHeader(bool& wide_text, failure& why);
    // LOD headers, group headers, attachment points and texture entries; checks all that decode() relies on.
    [[nodiscard]] bool readLayout(failure& why);
    // The same, kept as it is read, for those who do not decode: with a port no more of the image is there than this
    // takes. It takes memory for what the headers themselves hold.
    [[nodiscard]] bool readHeaders(failure& why) { return readAll(true, why); }
    void decode();

    static constexpr std::size_t max_shader_name = 4096; // bytes; a longer one is refused

private:
    void decodeGroup(group_data& group) const;
    bool readAll(bool is_kept, failure& why);
    void readLodHeader(std::uint32_t index);
    void readLod(std::uint32_t index);
    void readGroup(group_data& group, const std::string& place);
    void readGroupHeader(group_data& group);
    void readAttachments(group_data& group, const std::string& place);
    void readTextures(group_data& group, const std::string& place);
    void readMaterialWords(group_data& group);
    void locateVertexData(group_data& group);
    // Refuses an offset or size, whose field stands at field_position, that leads beyond the end of the file.
    void checkFits(std::uint64_t end, std::uint64_t field_position, std::string_view field);
    void seekNextGroup(const group_data& group);
    // Counts bytes against the budget: parts of a file that overlap a little are read, but a small file cannot pretend
    // to hold a large model.
    void need(std::uint64_t size, std::string_view field); // from here on, as far as the image goes
    void charge(std::uint64_t bytes, std::string_view field);
    std::string textOf(std::span<const std::byte> field) const;
    fixed_field fieldAt(std::uint64_t position, std::uint64_t width, field_mode mode, bool wide) const;

    std::span<const std::byte> m_image;
    byte_reader m_in;
    RMV2_FILE_DATA& m_data;
    fetch_port m_fetch;
    bool m_wide_text = false;
    bool m_is_kept = false;          // in the second reading
    std::uint64_t m_group_start = 0; // running: one block after the other, over all LODs
    std::uint64_t m_charged = 0;
};

} // namespace korvane
