#pragma once

// Commands of the main window that ask with a dialog or a picker, work, and say what came of it. Window thread.

#include "Korvane/app/page.h"
#include "Korvane/textures/normal_map.h"

namespace korvane
{

void showGuide(page_host& host);
void showLegal(page_host& host);
void testModel(page_host& host); // with a model open
void replacePathPrefix(page_host& host);
void convertNormalMaps(page_host& host, normal_form target);

} // namespace korvane
