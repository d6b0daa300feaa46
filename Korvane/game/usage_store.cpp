#include "EASY_GUI/services/byte_reader.h"
#include "EASY_GUI/services/byte_writer.h"
#include "EASY_GUI/services/file_stamp.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/positioned_file.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/checksum.h"
#include "Korvane/archives/pack_cache.h"
#include "Korvane/game/usage_section.h"

#include <algorithm>
#include <array>

namespace korvane
{

namespace
{

using section = usage_index::section;

constexpr std::size_t checksum_size = 8;
constexpr std::size_t place_size = 8, name_size = 12, use_size = 12;

void writeText(byte_writer& out, std::string_view text)
{
    out.u32(static_cast<std::uint32_t>(text.size()));
    out.text(text);
}

void write(byte_writer& out, const section& made)
{
    writeText(out, made.archive_path);
    out.u64(made.archive_size);
    out.u64(static_cast<std::uint64_t>(made.archive_time));
    writeText(out, made.text);
    out.u32(static_cast<std::uint32_t>(made.users.size()));
    out.u32(static_cast<std::uint32_t>(made.names.size()));
    out.u32(static_cast<std::uint32_t>(made.uses.size()));
    out.u32(static_cast<std::uint32_t>(made.damaged.size()));
    for (const section::text_place& user : made.users)
    {
        out.u32(user.at);
        out.u32(user.length);
    }
    for (const section::name& name : made.names)
    {
        out.u32(name.path.at);
        out.u32(name.path.length);
        out.u32(name.first_use);
    }
    for (const section::use& use : made.uses)
    {
        out.u32(use.user);
        out.u32(use.texture_type);
        out.u32(static_cast<std::uint32_t>(use.kind));
    }
    for (const std::string& line : made.damaged)
        writeText(out, line);
}

std::string readText(byte_reader& in, std::string_view field)
{
    const std::span<const std::byte> text = in.bytes(in.u32(field), field);
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

section::text_place readPlace(byte_reader& in, const section& made)
{
    section::text_place place;
    place.at = in.u32("place of a text");
    place.length = in.u32("length of a text");
    if (place.at > made.text.size() || place.length > made.text.size() - place.at)
        in.fail(failure_kind::malformed, "a text lies outside of the texts", "place of a text");
    return place;
}

// Every number is checked, so that wrong bytes may give wrong answers but nothing worse.
std::shared_ptr<const section> readSection(byte_reader& in)
{
    auto made = std::make_shared<section>();
    made->archive_path = readText(in, "archive");
    made->archive_size = in.u64("size");
    made->archive_time = static_cast<std::int64_t>(in.u64("modification time"));
    made->text = readText(in, "texts");
    const std::uint32_t users = in.u32("count of users");
    const std::uint32_t names = in.u32("count of names");
    const std::uint32_t uses = in.u32("count of uses");
    const std::uint32_t damaged = in.u32("count of damaged files");
    if (!in.fits(users, place_size) || !in.fits(names, name_size) || !in.fits(uses, use_size) || !in.fits(damaged, 4))
        in.fail(failure_kind::malformed, "there are more records than bytes", "counts");
    if (!in.ok())
        return made;
    made->users.resize(users);
    for (section::text_place& user : made->users)
        user = readPlace(in, *made);
    made->names.resize(names);
    for (std::uint32_t least = 0; section::name & name : made->names)
    {
        name.path = readPlace(in, *made);
        name.first_use = in.u32("first use");
        if (name.first_use < least || name.first_use > uses)
            in.fail(failure_kind::malformed, "the uses are not in order", "first use");
        least = name.first_use;
    }
    made->uses.resize(uses);
    for (section::use& use : made->uses)
    {
        use.user = in.u32("user");
        use.texture_type = in.u32("kind of texture");
        const std::uint32_t kind = in.u32("kind");
        if (use.user >= users || kind > static_cast<std::uint32_t>(use_kind::definition))
            in.fail(failure_kind::malformed, "a use says nothing known", "kind");
        use.kind = static_cast<use_kind>(kind);
    }
    for (std::uint32_t i = 0; i < damaged && in.ok(); ++i)
        made->damaged.push_back(readText(in, "damaged file"));
    return made;
}

bool isStore(std::span<const std::byte> bytes)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return text.starts_with(usage_store::identification);
}

} // namespace

usage_store usage_store::of(const config_file& config, const std::string& config_path)
{
    const std::filesystem::path cache = toPath(pack_cache::of(config, config_path).path());
    return usage_store(toUtf8(cache.parent_path() / toPath(file_name)));
}

usage_index usage_store::load(failure& why) const
{
    usage_index index;
    memory_file file;
    if (!file.read(m_path, why))
        return index;
    const std::span<const std::byte> all = file.bytes();
    const bool is_right = isStore(all) && all.size() >= identification.size() + checksum_size &&
                          littleEndian<std::uint64_t>(all.last(checksum_size).data()) ==
                              checksumOf(all.first(all.size() - checksum_size));
    if (!is_right)
        return fail(why, failure_kind::malformed, "this is no usage index, or it is damaged", m_path), index;
    byte_reader in(all.first(all.size() - checksum_size));
    in.skip(identification.size(), "identification");
    const std::uint32_t sections = in.u32("archive count");
    for (std::uint32_t i = 0; i < sections && in.ok(); ++i)
        index.m_sections.push_back(readSection(in));
    if (!in.finish(why))
    {
        why.path = m_path;
        return {};
    }
    return index;
}

bool usage_store::mayReplace(failure& why) const
{
    if (!stampOf(m_path).is_there)
        return true;
    positioned_file former;
    failure ignored;
    std::array<std::byte, identification.size()> start;
    return (former.open(m_path, ignored) && former.readAt(0, start) && isStore(start)) ||
           fail(why, failure_kind::refused, "what stands there is no usage index", m_path);
}

bool usage_store::remove(failure& why) const
{
    if (!mayReplace(why))
        return false;
    std::error_code error;
    std::filesystem::remove(toPath(m_path), error);
    return !error || fail(why, failure_kind::refused, "it cannot be deleted: " + displayText(error.message()), m_path);
}

bool usage_store::write(const usage_index& index, failure& why) const
{
    if (!mayReplace(why))
        return false;
    byte_writer out;
    out.text(identification);
    std::vector<const section*> kept;
    for (const std::shared_ptr<const section>& each : index.m_sections)
        if (each->archive_size != 0) // a mod folder is read anew each time
            kept.push_back(each.get());
    out.u32(static_cast<std::uint32_t>(kept.size()));
    for (const section* const each : kept)
        korvane::write(out, *each);
    out.u64(checksumOf(out.view()));
    return writeWholeFile(m_path, out.view(), why, write_safety::replaceable);
}

} // namespace korvane
