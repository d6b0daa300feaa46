#include "EASY_GUI/win32/save_question.h"

namespace korvane
{

namespace
{
constexpr int text_width = 420; // at 96 dots per inch
constexpr int result_save = 1, result_discard = 2;
} // namespace

save_answer save_question::ask(HWND owner, failure& why)
{
    switch (run(owner, why))
    {
    case result_save:
        return save_answer::save;
    case result_discard:
        return save_answer::discard;
    default:
        return save_answer::cancel;
    }
}

std::optional<layout> save_question::onFill(failure& why)
{
    if (!m_shown.create(handle(), 0, m_text) || !m_save.create(handle(), control_save, "&Save") ||
        !m_discard.create(handle(), control_discard, "Do&n't Save") || !m_stay.create(handle(), control_stay, "Cancel"))
    {
        fail(why, failure_kind::refused,
             "a control could not be created (error " + std::to_string(GetLastError()) + ")");
        return std::nullopt;
    }
    m_save.onClick = [this] { end(result_save); };
    m_discard.onClick = [this] { end(result_discard); };
    m_stay.onClick = [this] { end(cancelled); };
    setDefault(m_save);
    setFirstFocus(m_save);
    using way = layout::direction;
    layout rows(way::down, 12);
    rows.setMargins(12);
    rows.add(layout(way::across).add(m_shown, fixed(text_width)), lines(textLines(scaled(text_width))));
    rows.add(
        layout(way::across).add(share()).add(m_save, aligned(1)).add(m_discard, aligned(1)).add(m_stay, aligned(1)));
    return rows;
}

// A little more than a division says, since lines are broken between words.
int save_question::textLines(int width) const
{
    int count = 0;
    for (std::size_t start = 0; start <= m_text.size();)
    {
        const std::size_t end = std::min(m_text.find("\r\n", start), m_text.size());
        count += 1 + usedFont().widthOf(m_text.substr(start, end - start)) / (width - width / 10);
        start = end + 2;
    }
    return count;
}

} // namespace korvane
