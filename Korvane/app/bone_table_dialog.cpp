#include "Korvane/app/bone_table_dialog.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/app/archive_anim_dialog.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/jobs/anim_text_job.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/presenters/fbx_to_anim_form.h"

#include <memory>
#include <utility>

namespace korvane
{

bone_table_dialog::bone_table_dialog(page_host& host)
    : dialog_box({"Generate .bone_table From .ANIM", {620, 420}, true, helpContext(help_topic::bone_tables)})
    , m_host(host)
    , m_reading(host.thread(), {})
{
}

std::optional<layout> bone_table_dialog::onFill(failure&)
{
    if (!m_path_name.create(handle(), ".&ANIM file:") ||
        !m_path.create(handle(), control_bone_table_path, edit_box::access::editable) ||
        !m_browse.create(handle(), control_bone_table_browse, "&Browse...") ||
        !m_archives.create(handle(), control_bone_table_archives, "A&rchives...") ||
        !m_list.create(handle(), control_bone_table_list, m_form) ||
        !m_status.create(handle(), control_bone_table_status) ||
        !m_write.create(handle(), control_bone_table_write, "&Write...") ||
        !m_close.create(handle(), control_dialog_close, "Close"))
        return std::nullopt;
    m_path.setTip("A path on the disk, or pack: and an internal path");
    m_path.onTyped = [this] { choose(typedPath(m_path.text())); };
    m_browse.onClick = [this] { browse(); };
    m_archives.onClick = [this] {
        if (const auto path = pickArchiveAnimation(m_host))
            choose(*path);
    };
    m_write.onClick = [this] { write(); };
    m_close.onClick = [this] { onCancel(); };
    setDefault(m_write);
    setFirstFocus(m_path);
    show();
    using way = layout::direction;
    layout rows(way::down);
    rows.setMargins(10);
    rows.add(layout(way::across).add(m_path_name).add(m_path, share(1, 200)).add(m_browse).add(m_archives));
    rows.add(m_list, share(1, 160));
    rows.add(layout(way::across).add(m_status, share(1, 200)).add(m_write, aligned(1)).add(m_close, aligned(1)));
    return rows;
}

void bone_table_dialog::browse()
{
    const fbx_to_anim_form::picker picker = fbx_to_anim_form::pickerOf(fbx_to_anim_form::file::template_anim);
    fbx_to_anim_form folders(m_host.config()); // the templates' is the skeletons', too
    const auto path = m_host.prompt().pickOpenPath(picker.title, picker.filters,
                                                   folders.folderOf(fbx_to_anim_form::file::template_anim));
    if (!path)
        return;
    folders.choose(fbx_to_anim_form::file::template_anim, *path);
    choose(*path);
}

void bone_table_dialog::choose(const std::string& path)
{
    m_path.setText(path);
    m_status.setText("Reading...");
    m_reading.start([this, path, game = m_host.document().game()](const work_port&) {
        loaded_game source(game);
        failure why;
        auto anim = path.empty() ? nullptr : loadAnim(source, path, anim_depth::bones_only, why);
        return background_task::answer([this, path, anim, why] {
            m_form.show(path, anim, why);
            if (isOpen())
                show();
        });
    });
}

void bone_table_dialog::show()
{
    m_list.refresh();
    m_status.setText(m_form.summary());
    m_write.setEnabled(m_form.canWrite());
    if (m_form.canWrite())
        m_write.focus();
}

void bone_table_dialog::write()
{
    const fbx_to_anim_form::picker picker = fbx_to_anim_form::pickerOf(fbx_to_anim_form::file::bone_table);
    const auto path = m_host.prompt().pickSavePath(picker.title, picker.filters, "bone_table", m_form.suggestion());
    if (!path || path->empty())
        return;
    loaded_game source(m_host.document().game());
    failure why;
    if (tabulateBones(source, m_form.path(), *path, why))
    {
        m_status.setText("Written: " + *path);
        return m_host.setStatus("Written: " + *path);
    }
    m_status.setText("Not written: " + displayText(describe(why)));
    m_host.logLine("bone_table_dialog::write(). " + displayText(describe(why)));
}

} // namespace korvane
