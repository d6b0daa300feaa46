#include "Korvane/app/take_out_dialog.h"

#include "Korvane/app/command_ids.h"

#include <utility>

namespace korvane
{

take_out_dialog::take_out_dialog(page_host& host, take_out_choices& choices, std::string note, bool has_textures)
    : dialog_box({"Take Out", {520, 0}, false, helpContext(help_topic::taking_out)})
    , m_host(host)
    , m_choices(choices)
    , m_files(std::move(note))
    , m_has_textures(has_textures)
{
}

std::optional<layout> take_out_dialog::onFill(failure& why)
{
    if (!createControls())
    {
        fail(why, failure_kind::refused,
             "a control could not be created (error " + std::to_string(GetLastError()) + ")");
        return std::nullopt;
    }
    connect();
    setDefault(m_ok);
    setFirstFocus(m_choices.folder().empty() ? static_cast<control&>(m_browse) : m_ok);
    using way = layout::direction;
    layout rows(way::down);
    rows.setMargins(10);
    rows.add(m_about);
    rows.add(layout(way::across).add(m_folder_name, aligned(1)).add(m_folder, share(1, 260)).add(m_browse));
    rows.add(layout(way::across).add(m_layout_name, aligned(1)).add(m_layout_choice, share(1, 260)));
    rows.add(layout(way::across).add(m_textures_name, aligned(1)).add(m_textures, share(1, 260)));
    rows.add(layout(way::across).add(m_there_name, aligned(1)).add(m_there, share(1, 260)));
    rows.add(m_note, lines(2));
    rows.add(layout(way::across).add(share()).add(m_ok, aligned(2)).add(m_cancel, aligned(2)));
    return rows;
}

bool take_out_dialog::createControls()
{
    return m_about.create(handle(), control_take_out_files, m_files) &&
           m_folder_name.create(handle(), "Into &folder:") &&
           m_folder.create(handle(), control_take_out_folder, edit_box::access::editable) &&
           m_browse.create(handle(), control_take_out_browse, "&Browse...") &&
           m_layout_name.create(handle(), "&Placed:") && m_layout_choice.create(handle(), control_take_out_layout) &&
           m_textures_name.create(handle(), "Te&xtures as:") &&
           m_textures.create(handle(), control_take_out_textures) &&
           m_there_name.create(handle(), "Files alrea&dy there:") && m_there.create(handle(), control_take_out_there) &&
           m_note.create(handle(), control_take_out_note) && m_ok.create(handle(), control_take_out_ok, "&Take Out") &&
           m_cancel.create(handle(), control_dialog_close, "Cancel");
}

void take_out_dialog::connect()
{
    for (const char* const name : {"In folders as in the game", "All in the folder itself"})
        m_layout_choice.add(name);
    for (const char* const name : {"DDS, as they are", "PNG", "Targa (.tga)"})
        m_textures.add(name);
    for (const char* const name : {"Keep those that differ, and list them", "Replace those that differ"})
        m_there.add(name);
    m_folder.setText(m_choices.folder());
    m_layout_choice.select(m_choices.isFlat() ? 1 : 0);
    m_textures.select(static_cast<int>(m_choices.textures()));
    m_textures.setEnabled(m_has_textures);
    m_there.select(m_choices.replaces() ? 1 : 0);
    m_layout_choice.setTip("Two files of one name: the second one becomes name_2");
    m_textures.setTip("A picture has the largest level and its alpha; normal maps keep the game's colours");
    m_folder.onChange = [this] { m_choices.setFolder(m_folder.text()); };
    m_browse.onClick = [this] {
        const auto picked = m_host.prompt().pickFolder("Choose the Folder for the Files");
        if (!picked)
            return;
        m_folder.setText(*picked);
        m_choices.setFolder(*picked);
        m_note.setText({});
        m_ok.focus();
    };
    m_layout_choice.onSelect = [this](int position) { m_choices.setFlat(position == 1); };
    m_textures.onSelect = [this](int position) {
        m_choices.setTextures(static_cast<take_out_choices::texture_form>(position));
    };
    m_there.onSelect = [this](int position) { m_choices.setReplaces(position == 1); };
    m_ok.onClick = [this] { accept(); };
    m_cancel.onClick = [this] { end(cancelled); };
}

void take_out_dialog::accept()
{
    const std::optional<std::string> problem = m_choices.problem();
    if (!problem)
        return end(accepted);
    m_note.setText(*problem);
    m_folder.focus();
}

} // namespace korvane
