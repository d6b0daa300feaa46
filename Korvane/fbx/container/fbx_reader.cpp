#include "Korvane/fbx/container/fbx_reader.h"

#include <algorithm>

namespace korvane
{

bool isReadVersion(std::uint32_t version, std::uint64_t offset, failure& why)
{
    if (version >= fbx_oldest_version && version <= fbx_newest_version)
        return true;
    if (!why)
    {
        why.offset = offset;
        why.field = "version";
    }
    return fail(why, failure_kind::unsupported,
                "FBX version " + std::to_string(version) + " is not supported, only " +
                    std::to_string(fbx_oldest_version) + " to " + std::to_string(fbx_newest_version));
}

std::string recordPath(const std::vector<std::string_view>& names)
{
    std::string path;
    for (const std::string_view name : names)
        path.append(path.empty() ? "" : "/").append(name);
    return path;
}

bool readFbx(std::span<const std::byte> bytes, fbx_document& document, failure& why)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (text.empty())
        return fail(why, failure_kind::truncated, "the file is empty");
    // A file cut inside the mark is a cut binary file, not a strange text.
    const std::size_t compared = std::min(text.size(), fbx_binary_magic.size());
    if (text.substr(0, compared) == fbx_binary_magic.substr(0, compared))
        return readBinaryFbx(bytes, document, why);
    return readTextFbx(text, document, why);
}

} // namespace korvane
