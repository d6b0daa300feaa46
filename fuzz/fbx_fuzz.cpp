// Reads any bytes as an FBX document, binary or text. What is read must be written, the written file must be read, and
// writing that again must give the same bytes.

#include "Korvane/fbx/container/fbx_document.h"

#include <cstdint>
#include <cstdlib>
#include <span>

using namespace korvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fbx_document document;
    failure why;
    if (!readFbx(std::as_bytes(std::span(data, size)), document, why))
    {
        if (!why || why.what.empty() || why.offset > size || !document.records.empty())
            std::abort();
        return 0;
    }
    if (document.version < 6100 || document.version > 7700 || dumpFbx(document, 4).empty())
        std::abort();
    for (const fbx_record& record : document.records)
        if (record.numbers().size() != record.integers().size())
            std::abort();
    const std::vector<std::byte> written = writeFbx(document);
    fbx_document back;
    if (!readFbx(written, back, why) || back.version != 7400 || writeFbx(back) != written)
        std::abort();
    return 0;
}
