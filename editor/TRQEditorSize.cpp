#include "editor/TRQEditorSize.h"

#include <algorithm>
#include <cmath>

namespace TRQEditorSize
{
Size compute (float scale, bool advancedOpen, float hostScaleFactor, int minimumWidth)
{
    const float base = advancedOpen ? (float)canvasWidth : (float)closedWidth;
    const float s = std::max (scale * hostScaleFactor, 0.0f);
    Size size;
    size.width = std::max ((int)std::floor (s * base), minimumWidth);
    const float r = (float)size.width / base;
    size.height = (int)std::floor (r * (float)canvasHeight);
    size.uiScaleFactor = r / hostScaleFactor;
    return size;
}

int percentForWidth (int newWidth, bool advancedOpen, float hostScaleFactor)
{
    const float base = advancedOpen ? (float)canvasWidth : (float)closedWidth;
    float r = (float)newWidth / base / hostScaleFactor;
    r = std::max (r, 0.79999995f);
    return (int)std::round (r * 100.0f);
}
} // namespace TRQEditorSize
