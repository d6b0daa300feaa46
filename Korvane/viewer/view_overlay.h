#pragma once

// What is written over the picture of the view: the help, which is made of the key table, counts, and the names of
// bones and attachment points beside their places. Portable; on the thread that draws. Takes no memory.

#include "D3D11_RENDER_LIB/overlay_text.h"
#include "Korvane/viewer/posed_scene.h"
#include "Korvane/viewer/view_state.h"

namespace korvane
{

struct overlay_subject
{
    const view_state& view;
    const posed_scene* pose = nullptr; // null: nothing is shown
    float width = 1;                   // of the picture, pixels
    float height = 1;
    float scale = 1; // pixels for each of 96 to the inch
};

void writeOverlay(const overlay_subject& subject, overlay_text& target);

} // namespace korvane
