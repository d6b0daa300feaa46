#include "Korvane/document/open_model.h"

#include "EASY_GUI/services/text.h"
#include "EASY_GUI/services/version.h"

#include <utility>

namespace korvane
{

namespace
{

bool isDefinition(const std::string& path)
{
    return endsWithIgnoringCase(path, "variantmeshdefinition");
}

} // namespace

bool open_model::open(const std::string& path, failure& why)
{
    if (isDefinition(path))
        return fail(why, failure_kind::unsupported,
                    "this version of the program opens models (.rigid_model_v2), not variant mesh definitions", path);
    // A fresh reader each time: one that has read a version 5 file keeps that version's text widths.
    auto fresh = std::make_shared<rmv2_file>();
    if (!fresh->open(path, why))
        return false;
    m_po_file = std::move(fresh);
    select(m_selection);
    return true;
}

std::shared_ptr<const RMV2_FILE_DATA> open_model::data() const
{
    return m_po_file == nullptr ? nullptr : std::shared_ptr<const RMV2_FILE_DATA>(m_po_file, &m_po_file->data());
}

void open_model::select(model_selection wanted)
{
    m_selection = hasModel() ? clampSelection(m_po_file->data(), wanted) : model_selection{};
}

const group_data* open_model::selectedGroup() const
{
    if (!hasModel() || m_selection.lod < 0 || m_selection.group < 0)
        return nullptr;
    return &m_po_file->data()
                .lods[static_cast<std::size_t>(m_selection.lod)]
                .groups[static_cast<std::size_t>(m_selection.group)];
}

std::string open_model::title() const
{
    const std::string model = hasModel() ? std::string(fileName(m_po_file->path())) : "no file loaded";
    return std::string(program_name) + ' ' + std::string(program_version) + "   RMV2: [" + model +
           "] VMD: [no file loaded]";
}

open_error describeOpenFailure(const std::string& path, const failure& why)
{
    if (isDefinition(path)) // the doubled slips are the product's own text
        return {"Error!", "Loading .variantmeshdefintion failed. \r\nErro string: r\n" + describe(why)};
    return {"Error!", "The model could not be opened.\r\n\r\n" + describe(why)};
}

} // namespace korvane
