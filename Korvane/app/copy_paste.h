#pragma once

// The commands Copy and Paste of the main window. Pasted is text alone.

#include "Korvane/app/page.h"

#include <string>

namespace korvane
{

// Says in the status bar what became of it; empty: nothing happens, but that is said as well.
void copyText(page_host& host, const std::string& text);

// The selected text of the field that has the focus, else what is selected on the page.
void copySelection(page_host& host, page& shown);
// To the page when it has a use for the text, else into the field that has the focus; without one, what the text names
// is opened.
void pasteText(page_host& host, page& shown);

} // namespace korvane
