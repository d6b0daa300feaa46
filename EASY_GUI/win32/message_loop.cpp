#include "EASY_GUI/win32/message_loop.h"

namespace korvane
{

void message_loop::dispatch(MSG& message) const
{
    if (m_accelerators != nullptr && m_main.isOpen())
        TranslateAcceleratorW(m_main.handle(), m_accelerators, &message);
    if (m_main.isOpen() && IsDialogMessageW(m_main.handle(), &message))
        return; // it has translated and dispatched the message itself
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

int message_loop::run()
{
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        dispatch(message);
    return static_cast<int>(message.wParam);
}

} // namespace korvane
