#pragma once

// The window's size for a user scale, and the scale for a size the user dragged to.
// Everything inside works in canvas units (793 x 380); one transform on the root
// maps them to pixels.
namespace TRQEditorSize
{
constexpr int canvasWidth = 793;
constexpr int canvasHeight = 380;
constexpr int closedWidth = 457;

struct Size
{
    int width = 0;
    int height = 0;
    float uiScaleFactor = 1.0f; // canvas units to logical pixels, host scale aside
};

// scale is 1.0 at 100 %.
Size compute (float scale, bool advancedOpen, float hostScaleFactor, int minimumWidth);

// The percentage for a width the user dragged to, never under 80.
int percentForWidth (int newWidth, bool advancedOpen, float hostScaleFactor);
} // namespace TRQEditorSize
