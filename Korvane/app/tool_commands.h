#pragma once

// Commands of the main window that ask with a dialog or a picker, work, and say what came of it. Window thread.

#include "Korvane/app/page.h"
#include "Korvane/textures/normal_map.h"

#include <string>

namespace korvane
{

void showLegal(page_host& host);
void testModel(page_host& host); // with a model open
void replacePathPrefix(page_host& host);
void convertAnimation(page_host& host, const std::string& fbx = {}); // with the file chosen
void generateBoneTable(page_host& host);
void showIndexCache(page_host& host);
void dumpAnimation(page_host& host, const std::string& anim); // on the disk or, with "pack:", in the archives
void convertNormalMaps(page_host& host, normal_form target);

} // namespace korvane
