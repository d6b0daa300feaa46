#include "Korvane/app/picture_dialog.h"

#include "Korvane/app/command_ids.h"
#include "Korvane/app/text_dialogs.h"
#include "Korvane/textures/picture_file.h"

namespace korvane
{

std::optional<layout> picture_dialog::onFill(failure& why)
{
    if (!createControls())
    {
        fail(why, failure_kind::refused,
             "a control could not be created (error " + std::to_string(GetLastError()) + ")");
        return std::nullopt;
    }
    connect();
    showSize();
    setDefault(m_save);
    using way = layout::direction;
    layout rows(way::down);
    rows.setMargins(10);
    rows.add(layout(way::across).add(m_size_name, aligned(1)).add(m_size, share(1, 260)));
    rows.add(layout(way::across)
                 .add(m_width_name, aligned(1))
                 .add(m_width, fixed(70))
                 .add(m_height_name)
                 .add(m_height, fixed(70)));
    rows.add(layout(way::across).add(layout(way::across), aligned(1)).add(m_proportions));
    rows.add(layout(way::across).add(m_background_name, aligned(1)).add(m_background, share(1, 260)));
    rows.add(layout(way::across).add(m_samples_name, aligned(1)).add(m_samples, share(1, 260)));
    rows.add(m_note);
    rows.add(layout(way::across).add(share()).add(m_save, aligned(2)).add(m_cancel, aligned(2)));
    return rows;
}

bool picture_dialog::createControls()
{
    using access = edit_box::access;
    return m_size_name.create(handle(), "&Size:") && m_size.create(handle(), control_picture_size) &&
           m_width_name.create(handle(), "&Width:") &&
           m_width.create(handle(), control_picture_width, access::editable) &&
           m_height_name.create(handle(), "&Height:") &&
           m_height.create(handle(), control_picture_height, access::editable) &&
           m_proportions.create(handle(), control_picture_proportions, "&Keep the proportions of the view") &&
           m_background_name.create(handle(), "&Background:") &&
           m_background.create(handle(), control_picture_background) &&
           m_samples_name.create(handle(), "S&moothing:") && m_samples.create(handle(), control_picture_samples) &&
           m_note.create(handle(), control_picture_note) && m_save.create(handle(), control_picture_save, "Sa&ve...") &&
           m_cancel.create(handle(), control_dialog_close, "Cancel");
}

void picture_dialog::connect()
{
    for (std::size_t i = 0; i < picture_settings::size_count; ++i)
        m_size.add(m_settings.sizeName(static_cast<picture_settings::size_choice>(i)));
    m_background.add("As shown");
    m_background.add("Transparent");
    for (const std::string_view name : picture_settings::sample_names)
        m_samples.add(name);
    m_background.select(m_settings.isTransparent() ? 1 : 0);
    m_samples.select(static_cast<int>(m_settings.samples()));
    m_size.onSelect = [this](int position) {
        m_settings.setSize(static_cast<picture_settings::size_choice>(position));
        showSize();
    };
    m_width.onChange = [this] {
        m_settings.typeWidth(m_width.text());
        m_height.setText(m_settings.height());
        showNote();
    };
    m_height.onChange = [this] {
        m_settings.typeHeight(m_height.text());
        m_width.setText(m_settings.width());
        showNote();
    };
    m_proportions.onClick = [this](bool keeps) {
        m_settings.keepProportions(keeps);
        showSize();
    };
    m_background.onSelect = [this](int position) { m_settings.setTransparent(position == 1); };
    m_samples.onSelect = [this](int position) {
        m_settings.setSamples(static_cast<std::size_t>(position));
        showNote();
    };
    m_save.onClick = [this] { end(accepted); };
    m_cancel.onClick = [this] { end(cancelled); };
}

void picture_dialog::showSize()
{
    m_width.setText(m_settings.width());
    m_height.setText(m_settings.height());
    m_proportions.check(m_settings.keepsProportions());
    showNote();
}

void picture_dialog::showNote()
{
    m_size.select(static_cast<int>(m_settings.size())); // typing makes it an own one
    m_proportions.setEnabled(m_settings.size() == picture_settings::size_choice::own);
    m_note.setText(m_settings.note());
    m_save.setEnabled(!m_settings.problem());
}

void savePicture(page_host& host, const picture_maker& maker, const std::string& suggestion)
{
    picture_settings settings(host.config(), maker.view);
    if (picture_dialog asked(settings); runDialog(host, asked) != picture_dialog::accepted)
        return;
    settings.remember();
    const auto path = host.prompt().pickSavePath("Save Picture", {{"PNG (*.png)", "*.png"}, {"Targa (*.tga)", "*.tga"}},
                                                 "png", {"", suggestion});
    if (!path || path->empty())
        return;
    failure why;
    bool is_saved = false;
    const bool is_through = host.work("Saving the picture", [&](const work_port& port) {
        picture made;
        is_saved = maker.draw(settings.request(), port, made, why) &&
                   writePictureFile(*path, pictureKind(*path).value_or(picture_kind::png), made, why);
    });
    if (is_saved)
        return host.setStatus("Saved " + *path);
    if (!is_through || !why)
        return host.setStatus("No picture was saved: it was stopped.");
    host.logLine("savePicture(). " + describe(why));
    host.prompt().show("Error!", "The picture could not be saved.\r\n\r\n" + describe(why), prompt_icon::error);
}

} // namespace korvane
